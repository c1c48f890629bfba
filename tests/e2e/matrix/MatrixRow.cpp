#include "MatrixRow.h"

#include <algorithm>
#include <set>
#include <stdexcept>
#include <utility>

namespace {
// Systems without drivers still have the files of some kit.
constexpr KitSystem kSomeKit = {"WinVistax64", "60"};

MatrixSystem Unserved(const char* name, const SystemVersion& version, const char* family, unsigned refusal)
{
    return {name, version, family, Flow::Refused, refusal, false, "", "", "", kSomeKit};
}

MatrixSystem Driverless(const char* name, const SystemVersion& version, const char* family, Flow flow)
{
    return {name, version, family, flow, 0, false, "unsupported os detected\n", "", "", kSomeKit};
}

MatrixSystem Served(const char* name, const SystemVersion& version, const char* family, const char* detection,
                    const char* section, const char* modelSection, const KitSystem& kit)
{
    return {name, version, family, Flow::WindowsNT, 0, true, detection, section, modelSection, kit};
}

constexpr KitSystem kKitXp = {"WinXPx64", "51"};
constexpr KitSystem kKitVista = {"WinVistax64", "60"};
constexpr KitSystem kKit7 = {"Win7x64", "62"};
constexpr KitSystem kKit8 = {"Win8x64", "63"};

using Pair = std::pair<size_t, size_t>;

// What a choice of rows has to contain, as pairs of places on two sides.
struct Coverage
{
    std::set<Pair> systemMode;
    std::set<Pair> systemMachine;
    std::set<Pair> optionsMachine;

    void Add(const MatrixRow& row)
    {
        systemMode.insert(SystemMode(row));
        systemMachine.insert(SystemMachine(row));
        optionsMachine.insert(OptionsMachine(row));
    }

    [[nodiscard]] int NewIn(const MatrixRow& row) const
    {
        return (systemMode.contains(SystemMode(row)) ? 0 : 1) + (systemMachine.contains(SystemMachine(row)) ? 0 : 1) +
               (optionsMachine.contains(OptionsMachine(row)) ? 0 : 1);
    }

private:
    static size_t System(const MatrixRow& row) { return static_cast<size_t>(row.system - kMatrixSystems.data()); }
    static size_t Options(const MatrixRow& row) { return static_cast<size_t>(row.options - kMatrixOptions.data()); }
    static Pair SystemMode(const MatrixRow& row) { return {System(row), static_cast<size_t>(row.options->mode)}; }
    static Pair SystemMachine(const MatrixRow& row) { return {System(row), static_cast<size_t>(row.machine)}; }
    static Pair OptionsMachine(const MatrixRow& row) { return {Options(row), static_cast<size_t>(row.machine)}; }
};
} // namespace

const std::vector<MatrixSystem> kMatrixSystems = {
    Unserved("Windows95", {"win95", "4.0", "950", "WinNT"}, "", 7),
    Driverless("Windows98", {"win98", "4.10", "2222", "WinNT"}, "Windows 98", Flow::Windows98),
    Driverless("WindowsMe", {"winme", "4.90", "3000", "WinNT"}, "Windows Millenium", Flow::WindowsMe),
    Unserved("WindowsNT351", {"nt351", "3.51", "1057", "WinNT"}, "Windows NT", 6),
    Unserved("WindowsNT4", {"nt40", "4.0", "1381", "WinNT"}, "Windows NT", 6),
    Driverless("Windows2000", {"win2k", "5.0", "2195", "WinNT"}, "Windows 2000", Flow::WindowsNT),
    Served("WindowsXP", {"winxp", "5.1", "2600", "WinNT"}, "Windows Whistler", "osWINXP32 detected\n", "WinXP32",
           "Norda.NTamd64", kKitXp),
    Served("WindowsXPx64", {"winxp64", "5.2", "3790", "WinNT"}, "Windows Whistler", "osWINXP32E detected\n", "WinXP32E",
           "Norda.NTamd64", kKitXp),
    Served("WindowsServer2003", {"win2003", "5.2", "3790", "ServerNT"}, "Windows Whistler", "osWIN2K3SRV32E detected\n",
           "WinSrv2K332E", "Norda.NTamd64", kKitXp),
    Served("WindowsVista", {"vista", "6.0", "6002", "WinNT"}, "Windows Vista", "osWINVISTA32E detected\n",
           "WinVista32E", "Norda.NTamd64.6.0", kKitVista),
    Served("WindowsServer2008", {"win2008", "6.0", "6002", "ServerNT"}, "Windows Vista", "osLONGHORN32E detected\n",
           "WinSrv2K832E", "Norda.NTamd64.6.0", kKitVista),
    Served("Windows7", {nullptr, "6.1", "7601", "WinNT"}, "Windows Vista", "osWINSEVEN32E detected\n", "Win732E",
           "Norda.NTamd64.6.1", kKit7),
    Served("WindowsServer2008R2", {nullptr, "6.1", "7601", "ServerNT"}, "Windows Vista", "osWIN2K8R232E detected\n",
           "WinSrv2K8R232E", "Norda.NTamd64.6.1", kKit7),
    Served("Windows8", {"win8", "6.2", "9200", "WinNT"}, "Windows Vista", "osWINEIGHT32E detected\n", "Win832E",
           "Norda.NTamd64.6.2", kKit8),
    // Shares its section and its line with the workstation.
    Served("Windows8Server", {nullptr, "6.2", "9200", "ServerNT"}, "Windows Vista", "osWINEIGHT32E detected\n",
           "Win832E", "Norda.NTamd64.6.2", kKit8),
    // The program's manifest names no later system than 6.2, so the platform reports this.
    Served("Windows10", {"win10", "10.0", "19045", "WinNT"}, "Windows Vista", "osWINEIGHT32E detected\n", "Win832E",
           "Norda.NTamd64.6.2", kKit8),
};

const std::vector<MatrixOptions> kMatrixOptions = {
    {"none", "", Mode::Interactive, false, false},
    {"s", "/s", Mode::Silent, false, true},
    {"s_r", "/s /r", Mode::SilentRestart, false, true},
    {"s_nr", "/s /nr", Mode::SilentNoRestart, false, true},
    {"m", "/m", Mode::Installer, false, true},
    {"s_m", "/s /m", Mode::SilentInstaller, false, true},
    {"md", "/md", Mode::Oem, false, true},
    {"s_md", "/s /md", Mode::SilentOem, false, true},
    {"n", "/n", Mode::Interactive, true, true},
    {"s_n", "/s /n", Mode::Silent, true, true},
    {"s_r_n", "/s /r /n", Mode::SilentRestart, true, true},
    {"n_s_nr", "/n /s /nr", Mode::SilentNoRestart, true, true},
    {"m_n", "/m /n", Mode::Installer, true, true},
    {"s_m_n", "/s /m /n", Mode::SilentInstaller, true, true},
    {"n_md", "/n /md", Mode::Oem, true, true},
    {"s_md_n", "/s /md /n", Mode::SilentOem, true, true},
    // Every option in its other spelling.
    {"S_N", "/S /N", Mode::Silent, true, true},
    {"S_R", "/S /R", Mode::SilentRestart, false, true},
    {"S_M", "/M /S", Mode::SilentInstaller, false, true},
    {"MD", "/MD", Mode::Oem, false, true},
    {"M", "/M", Mode::Installer, false, true},
    {"S_MD_N", "/S /MD /N", Mode::SilentOem, true, true},
    // What wins and what cancels.
    {"S_NR_m", "/S /NR /m", Mode::SilentNoRestart, false, true},
    {"s_nr_r", "/s /nr /r", Mode::SilentRestart, false, true},
    {"s_R_MD", "/s /R /MD", Mode::SilentRestart, false, true},
    {"md_m", "/md /m", Mode::Installer, false, true},
    {"s_MD_m", "/s /MD /m", Mode::SilentInstaller, false, true},
    // Restart options mean nothing outside a silent run.
    {"r", "/r", Mode::Interactive, false, true},
    {"NR_m", "/NR /m", Mode::Installer, false, true},
    // Mixed case, a wrong sign, or extra characters: not an option.
    {"Md", "/Md", Mode::Interactive, false, true},
    {"s_Nr_mD", "/s /Nr /mD", Mode::Silent, false, true},
    {"silent", "/silent", Mode::Interactive, false, true},
    {"minus_s", "-s", Mode::Interactive, false, false},
    // A slash and a digit are a value; what comes before the first option is ignored, and values change nothing.
    {"digit", "/1", Mode::Interactive, false, false},
    {"value_S", "value /S", Mode::Silent, false, true},
    {"s_digit_m_value_n", "/s /1 /m value more /n", Mode::SilentInstaller, true, true},
    {"s_s_s", "/s /S /s", Mode::Silent, false, true},
    // Help ends the run regardless of other options.
    {"h", "/h", Mode::Help, false, true},
    {"s_H_n", "/s /H /n", Mode::Help, false, true},
    {"md_question", "/md /?", Mode::Help, false, true},
};

const std::vector<Machine> kMachines = {Machine::Match, Machine::NoMatch, Machine::InterfaceRefuses,
                                        Machine::FilesMissing, Machine::NoAdapter};

const char* NameOf(Machine machine)
{
    constexpr const char* kNames[] = {"Match", "NoMatch", "InterfaceRefuses", "FilesMissing", "NoAdapter"};
    return kNames[static_cast<size_t>(machine)];
}

std::string NameOf(const MatrixRow& row)
{
    return std::string(row.system->name) + "_" + row.options->name + "_" + NameOf(row.machine);
}

MatrixRow RowOf(const std::string& system, const std::string& options, Machine machine)
{
    const auto foundSystem = std::ranges::find(kMatrixSystems, system, &MatrixSystem::name);
    const auto foundOptions = std::ranges::find(kMatrixOptions, options, &MatrixOptions::name);
    if (foundSystem == kMatrixSystems.end() || foundOptions == kMatrixOptions.end()) {
        throw std::runtime_error("there is no row of " + system + " with " + options);
    }
    return {&*foundSystem, &*foundOptions, machine};
}

std::vector<MatrixRow> AllRows()
{
    std::vector<MatrixRow> rows;
    for (const MatrixSystem& system : kMatrixSystems) {
        for (const MatrixOptions& options : kMatrixOptions) {
            for (const Machine machine : kMachines) {
                rows.push_back({&system, &options, machine});
            }
        }
    }
    return rows;
}

std::vector<MatrixRow> CoveringRows()
{
    const std::vector<MatrixRow> all = AllRows();
    std::vector<const MatrixRow*> chosen;
    Coverage covered;
    // Rows that bring three new pairs first, then those with two, then what is left.
    for (int wanted = 3; wanted > 0; --wanted) {
        for (const MatrixRow& row : all) {
            if (covered.NewIn(row) >= wanted) {
                covered.Add(row);
                chosen.push_back(&row);
            }
        }
    }
    std::ranges::sort(chosen);
    std::vector<MatrixRow> rows;
    for (const MatrixRow* row : chosen) {
        rows.push_back(*row);
    }
    return rows;
}
