#include "ExpectedRun.h"

namespace {
// The texts that a run can end with.
constexpr unsigned kTextWelcome = 1, kTextNoAdapter = 5, kTextDone = 9, kTextAdvice = 20, kTextSomeFailed = 24;

bool IsSilent(Mode mode)
{
    return mode == Mode::Silent || mode == Mode::SilentRestart || mode == Mode::SilentNoRestart ||
           mode == Mode::SilentInstaller || mode == Mode::SilentOem;
}

std::vector<std::string> LinesAbout(const MatrixOptions& options)
{
    if (!options.anyOption) {
        return {"command line: no options, install in GUI mode\n"};
    }
    std::vector<std::string> lines;
    if (IsSilent(options.mode)) {
        lines.emplace_back("command line: '/s', install silently\n");
    }
    switch (options.mode) {
        case Mode::Interactive:
        case Mode::Silent:
            break;
        case Mode::SilentRestart:
            lines.emplace_back("command line: '/r', force a reboot\n");
            break;
        case Mode::SilentNoRestart:
            // Two blanks and no line feed.
            lines.emplace_back("command line:  '/nr', suppress a reboot request");
            break;
        case Mode::Installer:
            lines.emplace_back("command line: '/m', install MSI\n");
            break;
        case Mode::SilentInstaller:
            lines.emplace_back("command line: '/s /m', install MSI\n");
            break;
        case Mode::Oem:
            lines.emplace_back("command line: '/md', install MSI, OEM variant\n");
            break;
        case Mode::SilentOem:
            lines.emplace_back("command line: '/s /md', install MSI, OEM variant\n");
            break;
        case Mode::Help:
            return {"command line: '/h', display help\n"};
    }
    if (options.forceInfScan) {
        lines.emplace_back("command line: '/n', force scan of all INF files\n");
    }
    return lines;
}

ExpectedFile KitFile(const char* driver, const KitSystem& kit)
{
    const std::string name = KitDriverFile(driver, kit);
    return {name, std::string("Drv\\") + kit.folder + "\\" + name};
}

// The drivers of another system than that of the kit in use.
KitSystem OtherKit(const KitSystem& kit)
{
    return std::string(kit.number) == "60" ? KitSystem{"WinXPx64", "51"} : KitSystem{"WinVistax64", "60"};
}

std::vector<ExpectedFile> FilesLaidDown(const MatrixRow& row)
{
    const KitSystem& kit = row.system->kit;
    switch (row.machine) {
        case Machine::InterfaceRefuses:
            return {KitFile("ngea", kit), KitFile("nxga", kit)};
        case Machine::FilesMissing:
            return {KitFile("ngea", OtherKit(kit)), KitFile("nxga", OtherKit(kit))};
        default:
            return {};
    }
}

bool HasAdapter(Machine machine)
{
    return machine != Machine::NoAdapter;
}

bool HasServedAdapter(Machine machine)
{
    return HasAdapter(machine) && machine != Machine::NoMatch;
}

ExpectedDriver DriverFor(const MatrixRow& row)
{
    const KitSystem& kit = row.system->kit;
    if (row.options->forceInfScan) {
        // The excluded INF counts too, and its directory comes first.
        return {std::string("Spare\\") + row.system->section + "\\" + kSpareInf, "NXGA", KitDriverFile("nxga", kit),
                "TAVX_"};
    }
    return {std::string("Drv\\") + kit.folder + "\\ngea" + kit.number + "x64.inf", "NGEA", KitDriverFile("ngea", kit),
            "TAVG_PCIE_"};
}

// Every qualified INF goes to the store when it is reached, and the search ends at the first that lists the adapter.
std::vector<std::string> StoredInfs(const MatrixRow& row)
{
    const std::string ending = std::string(row.system->kit.number) + "x64.inf";
    const std::vector<std::string> upToTheMatch = {"nf6a" + ending, "ngea" + ending};
    if (HasServedAdapter(row.machine)) {
        return row.options->forceInfScan ? std::vector<std::string>{kSpareInf} : upToTheMatch;
    }
    std::vector<std::string> all;
    if (row.options->forceInfScan) {
        all.emplace_back(kSpareInf);
    }
    all.insert(all.end(), upToTheMatch.begin(), upToTheMatch.end());
    all.insert(all.end(), {"ngp1" + ending, "nxga" + ending, "qdatdma.inf"});
    return all;
}

// A driver that could not be installed is a failure, even when an older driver file is on the system.
void ExpectResult(const MatrixRow& row, ExpectedRun& expected)
{
    if (row.machine == Machine::Match) {
        expected.result = "SUCCESS";
        expected.versionFile = KitFile(row.options->forceInfScan ? "nxga" : "ngea", row.system->kit);
    } else {
        expected.result = "FAILURE";
    }
}

void ExpectDevicePass(const MatrixRow& row, ExpectedRun& expected)
{
    const MatrixSystem& system = *row.system;
    expected.detection = system.detection;
    expected.directoryLookUps = HasAdapter(row.machine) ? 1 : 0;
    const bool matches = system.hasDrivers && HasServedAdapter(row.machine);
    expected.passes = !HasAdapter(row.machine) ? 0 : matches ? 1 : 4;
    if (system.hasDrivers && HasAdapter(row.machine)) {
        expected.storedInfs = StoredInfs(row);
    }
    if (!matches) {
        return;
    }
    expected.driver = {DriverFor(row)};
    expected.interfaceAsked = row.machine == Machine::InterfaceRefuses;
    expected.installed = row.machine == Machine::Match;
    if (expected.installed) {
        expected.filesAfter = {KitFile(row.options->forceInfScan ? "nxga" : "ngea", system.kit)};
    }
    ExpectResult(row, expected);
}

// The NT flow shows the result to whoever watches: a user, or an OEM's own installation.
void ExpectWindowsNT(const MatrixRow& row, ExpectedRun& expected)
{
    expected.hardwareScans = 2;
    const Mode mode = row.options->mode;
    if (IsSilent(mode) || mode == Mode::Installer) {
        expected.end = End::ByItself;
        return;
    }
    expected.end = End::FinishButton;
    const bool refused = row.machine == Machine::InterfaceRefuses || row.machine == Machine::FilesMissing;
    expected.lastText = expected.driver.empty() ? kTextNoAdapter : refused ? kTextSomeFailed : kTextDone;
}

// These systems stage their files after the pass, in the fallback directory, since nothing could be copied: they have
// no drivers. That reads the directories twice more.
void ExpectWindows9x(const MatrixRow& row, ExpectedRun& expected)
{
    expected.directoryLookUps += 2;
    expected.staged = true;
    expected.helperRuns = row.system->flow == Flow::Windows98;
    if (IsSilent(row.options->mode)) {
        expected.end = End::ByItself;
    } else if (row.system->flow == Flow::WindowsMe) {
        expected.end = End::FinishButton;
        expected.lastText = kTextNoAdapter;
    } else {
        expected.end = End::RestartButtons;
    }
}
} // namespace

ExpectedRun ExpectedOf(const MatrixRow& row)
{
    const Mode mode = row.options->mode;
    ExpectedRun expected;
    expected.commandLine = LinesAbout(*row.options);
    expected.filesBefore = FilesLaidDown(row);
    expected.filesAfter = expected.filesBefore;
    expected.everVisible = !IsSilent(mode) && mode != Mode::Help;
    if (mode == Mode::Help) {
        expected.end = End::Help;
        return expected;
    }
    expected.asksForManagementSoftware = std::string(row.system->name) == "WindowsNT4";
    if (row.system->flow == Flow::Refused) {
        expected.end = End::Refusal;
        expected.exitCode = -1;
        expected.lastText = row.system->refusal;
        return expected;
    }
    expected.installRuns = true;
    if (mode == Mode::Interactive) {
        expected.welcome = {kTextWelcome};
        if (row.system->flow == Flow::Windows98) {
            expected.welcome.push_back(kTextAdvice);
        }
    }
    // No machine here has a reason for a restart, so only the forcing option restarts.
    expected.restart = mode == Mode::SilentRestart;
    ExpectDevicePass(row, expected);
    if (row.system->flow == Flow::WindowsNT) {
        ExpectWindowsNT(row, expected);
    } else {
        ExpectWindows9x(row, expected);
    }
    return expected;
}
