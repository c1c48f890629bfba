#include <gmock/gmock.h>
#include <windows.h>
// setupapi.h needs windows.h first.
#include <setupapi.h>

#include <algorithm>
#include <array>
#include <map>
#include <set>

#include "CompanionFiles.h"
#include "ScratchDirectory.h"
#include "SimulatedAdapter.h"

namespace {
const std::vector<std::string> kSystemSections = {
    "WinXP32",    "WinXP64",        "WinXP32E",      "WinSrv2K332",  "WinSrv2K364", "WinSrv2K332E",
    "WinVista32", "WinVista32E",    "WinSrv2K832",   "WinSrv2K832E", "WinSrv2K864", "Win732",
    "Win732E",    "WinSrv2K8R232E", "WinSrv2K8R264", "Win832",       "Win832E"};
const std::map<std::string, std::string> kX64Directories = {
    {"WinXP32E", "WinXPx64"},        {"WinSrv2K332E", "WinXPx64"}, {"WinVista32E", "WinVistax64"},
    {"WinSrv2K832E", "WinVistax64"}, {"Win732E", "Win7x64"},       {"WinSrv2K8R232E", "Win7x64"},
    {"Win832E", "Win8x64"}};

std::string ProfileText(const std::string& file, const std::string& section, const std::string& key)
{
    std::array<char, 500> text{};
    GetPrivateProfileStringA(section.c_str(), key.c_str(), "", text.data(), static_cast<DWORD>(text.size()),
                             file.c_str());
    return text.data();
}

/// @return the lines of a section, "key=value".
std::vector<std::string> ProfileLines(const std::string& file, const std::string& section)
{
    std::vector<char> buffer(32767);
    GetPrivateProfileSectionA(section.c_str(), buffer.data(), static_cast<DWORD>(buffer.size()), file.c_str());
    std::vector<std::string> lines;
    for (const char* line = buffer.data(); *line != '\0'; line += lines.back().size() + 1) {
        lines.emplace_back(line);
    }
    return lines;
}

std::vector<std::string> Split(const std::string& text, const char* separators)
{
    std::vector<std::string> parts;
    for (std::size_t start = text.find_first_not_of(separators); start != std::string::npos;) {
        const std::size_t end = text.find_first_of(separators, start);
        parts.push_back(text.substr(start, end - start));
        start = text.find_first_not_of(separators, end);
    }
    return parts;
}

/// @return the values of every line of an INI section with this key, in file order.
std::vector<std::string> IniValues(const std::string& section, const std::string& key)
{
    std::vector<std::string> values;
    for (const std::string& line : ProfileLines(KitFile("Morvix.ini"), section)) {
        if (line.rfind(key + "=", 0) == 0) {
            values.push_back(line.substr(key.size() + 1));
        }
    }
    return values;
}

/// One model line of an INF: description key, install section, first hardware ID.
struct Model
{
    std::string description;
    std::string installSection;
    std::string hardwareId;
    bool operator==(const Model&) const = default;
};

std::vector<Model> ModelsOf(const std::string& inf, const std::string& section)
{
    std::vector<Model> models;
    for (const std::string& line : ProfileLines(inf, section)) {
        const std::vector<std::string> parts = Split(line, "%=, ");
        if (parts.size() != 3) {
            throw std::runtime_error("unexpected model line " + line);
        }
        models.push_back({parts[0], parts[1], parts[2]});
    }
    return models;
}

std::vector<std::string> ModelSectionsOf(const std::string& inf)
{
    const std::vector<std::string> parts = Split(ProfileText(inf, "Manufacturer", "%Norda%"), ", ");
    std::vector<std::string> sections;
    for (std::size_t i = 1; i < parts.size(); ++i) {
        sections.push_back(parts[0] + "." + parts[i]);
    }
    return sections;
}

/// An INF of the kit and the directory it lies in.
struct KitInf
{
    std::string directory;
    std::string name;
    std::string path;
};

std::vector<KitInf> AllInfs()
{
    std::vector<KitInf> infs;
    for (const KitDirectory& directory : kKitDirectories) {
        const std::string path = KitFile(std::string("Drv\\") + directory.name);
        for (const std::string& name : FilesIn(path, "*.inf")) {
            infs.push_back({directory.name, name, path + "\\" + name});
        }
    }
    return infs;
}

std::string DirectoryOf(const KitInf& inf)
{
    return inf.path.substr(0, inf.path.rfind('\\'));
}

/// @return the only driver file that the INF copies.
std::string DriverFileOf(const KitInf& inf)
{
    const std::vector<std::string> files = ProfileLines(inf.path, "SourceDisksFiles");
    return files.size() == 1 ? Split(files[0], "= ")[0] : "";
}

bool SectionExists(HINF inf, const std::string& section)
{
    return SetupGetLineCountA(inf, section.c_str()) > 0;
}

/// Checks what the install section `section` needs: its files, its service and the service's binary.
void ExpectCompleteInstallSection(HINF opened, const KitInf& inf, const std::string& section)
{
    ASSERT_TRUE(SectionExists(opened, section));
    const std::string copySection = ProfileText(inf.path, section, "CopyFiles");
    ASSERT_TRUE(SectionExists(opened, copySection));
    INFCONTEXT line{};
    ASSERT_TRUE(SetupFindFirstLineA(opened, copySection.c_str(), nullptr, &line));
    std::array<char, MAX_PATH> file{};
    ASSERT_TRUE(SetupGetStringFieldA(&line, 1, file.data(), MAX_PATH, nullptr));
    EXPECT_EQ(std::string(file.data()), DriverFileOf(inf));
    EXPECT_TRUE(FileExists(DirectoryOf(inf) + "\\" + file.data()));

    const std::vector<std::string> service = Split(ProfileText(inf.path, section + ".Services", "AddService"), ", ");
    ASSERT_EQ(service.size(), 3U);
    EXPECT_EQ(service[1], "2");
    ASSERT_TRUE(SectionExists(opened, service[2]));
    EXPECT_EQ(ProfileText(inf.path, service[2], "ServiceBinary"), "%12%\\" + DriverFileOf(inf));
}
} // namespace

TEST(KitContent, EachSystemDirectoryHoldsTheFourFamiliesAndTheDmaEngine)
{
    for (const KitDirectory& directory : kKitDirectories) {
        SCOPED_TRACE(directory.name);
        const std::string tail = std::string(directory.generation) + "x64";
        const std::vector<std::string> names = {"nf6a" + tail, "ngea" + tail, "ngp1" + tail, "nxga" + tail, "qdatdma"};
        std::vector<std::string> infs;
        for (const std::string& name : names) {
            infs.push_back(name + ".inf");
        }
        // Only the 6.1 systems have driver files with names of their own.
        const std::string driverTail = std::string(directory.generation) == "62" ? tail : "";
        const std::vector<std::string> drivers = {"nf6a" + driverTail + ".sys", "ngea" + driverTail + ".sys",
                                                  "ngp1" + driverTail + ".sys", "nxga" + driverTail + ".sys",
                                                  "qdatdma.sys"};
        EXPECT_EQ(FilesIn(KitFile(std::string("Drv\\") + directory.name), "*.inf"), infs);
        EXPECT_EQ(FilesIn(KitFile(std::string("Drv\\") + directory.name), "*.sys"), drivers);
    }
}

TEST(KitContent, EveryInfIsAcceptedByThePlatform)
{
    for (const KitInf& inf : AllInfs()) {
        SCOPED_TRACE(inf.path);
        UINT errorLine = 0;
        const HINF opened = SetupOpenInfFileA(inf.path.c_str(), nullptr, INF_STYLE_WIN4, &errorLine);
        ASSERT_NE(opened, INVALID_HANDLE_VALUE) << "line " << errorLine << " error " << GetLastError();
        SetupCloseInfFile(opened);
        std::array<char, 32> className{};
        GUID classGuid{};
        ASSERT_TRUE(SetupDiGetINFClassA(inf.path.c_str(), &classGuid, className.data(), 32, nullptr));
        EXPECT_STREQ(className.data(), inf.name == "qdatdma.inf" ? "System" : "Net");
        EXPECT_EQ(classGuid.Data1, inf.name == "qdatdma.inf" ? 0x4D36E97DU : 0x4D36E972U);
    }
}

TEST(KitContent, EveryInfIsPlainTextWithTheLineEndsOfThePlatform)
{
    std::vector<std::string> files = {KitFile("Morvix.ini"), KitFile("Morvix.din")};
    for (const KitInf& inf : AllInfs()) {
        files.push_back(inf.path);
    }
    for (const std::string& file : files) {
        SCOPED_TRACE(file);
        const std::string bytes = ReadFileBytes(file);
        EXPECT_TRUE(std::all_of(bytes.begin(), bytes.end(), [](char c) { return c > 0 && c < 127; }));
        EXPECT_EQ(std::count(bytes.begin(), bytes.end(), '\n'), std::count(bytes.begin(), bytes.end(), '\r'));
        for (std::size_t at = bytes.find('\n'); at != std::string::npos; at = bytes.find('\n', at + 1)) {
            ASSERT_TRUE(at > 0 && bytes[at - 1] == '\r') << at;
        }
    }
}

TEST(KitContent, EveryInfQualifiesForTheProgram)
{
    for (const KitInf& inf : AllInfs()) {
        SCOPED_TRACE(inf.path);
        EXPECT_EQ(ProfileText(inf.path, "Version", "Signature"), "$Windows NT$");
        const std::vector<std::string> manufacturers = ProfileLines(inf.path, "Manufacturer");
        ASSERT_EQ(manufacturers.size(), 1U);
        EXPECT_EQ(Split(ProfileText(inf.path, "Manufacturer", "%Norda%"), ", ")[0], "Norda");
    }
}

TEST(KitContent, EveryModelHasItsInstallSectionDescriptionAndFiles)
{
    for (const KitInf& inf : AllInfs()) {
        SCOPED_TRACE(inf.path);
        const HINF opened = SetupOpenInfFileA(inf.path.c_str(), nullptr, INF_STYLE_WIN4, nullptr);
        ASSERT_NE(opened, INVALID_HANDLE_VALUE);
        const std::vector<std::string> sections = ModelSectionsOf(inf.path);
        ASSERT_FALSE(sections.empty());
        for (const std::string& section : sections) {
            const std::vector<Model> models = ModelsOf(inf.path, section);
            EXPECT_FALSE(models.empty()) << section;
            for (const Model& model : models) {
                EXPECT_EQ(model.hardwareId.rfind("PCI\\VEN_5D1A&DEV_", 0), 0U) << model.hardwareId;
                EXPECT_NE(ProfileText(inf.path, "Strings", model.description), "") << model.description;
                ExpectCompleteInstallSection(opened, inf, model.installSection);
            }
            // Set-up code that ignores system versions sees the same models as set-up code that heeds them.
            EXPECT_EQ(models, ModelsOf(inf.path, sections[0]));
        }
        SetupCloseInfFile(opened);
    }
}

TEST(KitContent, EveryDriverHasTheVersionThatItsInfSays)
{
    std::set<std::string> versions;
    for (const KitInf& inf : AllInfs()) {
        SCOPED_TRACE(inf.path);
        const std::string version = FileVersionOf(DirectoryOf(inf) + "\\" + DriverFileOf(inf));
        EXPECT_NE(version, "");
        EXPECT_EQ(Split(ProfileText(inf.path, "Version", "DriverVer"), ",")[1], version);
        versions.insert(version);
    }
    // Sixteen adapter drivers and the one DMA engine driver of all systems.
    EXPECT_EQ(versions.size(), 17U);
}

TEST(KitContent, AnAdapterInfAndItsDriverBeginWithTheFamilyPrefix)
{
    for (const KitInf& inf : AllInfs()) {
        SCOPED_TRACE(inf.path);
        EXPECT_EQ(inf.name.substr(0, 4), DriverFileOf(inf).substr(0, 4));
    }
    for (const char* prefix : {"ngea", "nxga", "nf6a", "ngp1"}) {
        // Windows 7 and Server 2008 R2 look for a driver name with this number.
        EXPECT_EQ(FilesIn(KitFile("Drv\\Win7x64"), std::string(prefix) + "62*.sys").size(), 1U) << prefix;
    }
}

TEST(SetupIni, HasASectionForEverySystem)
{
    std::vector<char> names(32767);
    GetPrivateProfileSectionNamesA(names.data(), static_cast<DWORD>(names.size()), KitFile("Morvix.ini").c_str());
    std::vector<std::string> found;
    for (const char* name = names.data(); *name != '\0'; name += found.back().size() + 1) {
        found.emplace_back(name);
    }
    std::vector<std::string> expected = kSystemSections;
    expected.emplace_back("Config");
    EXPECT_THAT(found, testing::UnorderedElementsAreArray(expected));
    EXPECT_EQ(ProfileText(KitFile("Morvix.ini"), "Config", "LevelsToRoot"), "0");
}

TEST(SetupIni, EverySectionNamesModelsAndDirectoriesThatTheProgramReadsWhole)
{
    for (const std::string& section : kSystemSections) {
        SCOPED_TRACE(section);
        std::size_t characters = 0;
        for (const std::string& line : ProfileLines(KitFile("Morvix.ini"), section)) {
            characters += line.size() + 1;
        }
        // A longer section would be read in two steps, and beyond 518 characters not at all.
        EXPECT_LT(characters, 258U);
        EXPECT_EQ(ProfileText(KitFile("Morvix.ini"), section, "InfSectionName").rfind("Norda.NT", 0), 0U);
        const std::vector<std::string> directories = IniValues(section, "InfDir");
        ASSERT_EQ(directories.size(), 1U);
        EXPECT_EQ(directories[0].rfind("Drv\\Win", 0), 0U);
        EXPECT_EQ(directories[0].find(':'), std::string::npos);
    }
}

TEST(SetupIni, EveryX64SystemHasItsDirectoryAndModels)
{
    for (const auto& [section, directory] : kX64Directories) {
        SCOPED_TRACE(section);
        EXPECT_EQ(IniValues(section, "InfDir"), std::vector<std::string>{"Drv\\" + directory});
        const std::vector<std::string> names =
            Split(ProfileText(KitFile("Morvix.ini"), section, "InfSectionName"), ",");
        const std::vector<std::string> infs = FilesIn(KitFile("Drv\\" + directory), "*.inf");
        EXPECT_EQ(infs.size(), 5U);
        for (const std::string& inf : infs) {
            for (const std::string& name : names) {
                EXPECT_FALSE(ModelsOf(KitFile("Drv\\" + directory + "\\" + inf), name).empty()) << inf << " " << name;
            }
        }
    }
}

TEST(SetupIni, WindowsXpLeavesOutTheDmaEngineAndEveryServerTakesIt)
{
    for (const std::string& section : kSystemSections) {
        SCOPED_TRACE(section);
        const bool leavesOut = section.rfind("WinXP", 0) == 0;
        EXPECT_EQ(IniValues(section, "InfExclude"),
                  leavesOut ? std::vector<std::string>{"qdatdma.inf"} : std::vector<std::string>{});
    }
}

TEST(UninstallData, NamesEveryDriverInfAndServiceOfTheKit)
{
    const std::string file = KitFile("Morvix.din");
    std::set<std::string> drivers;
    std::set<std::string> infs;
    std::set<std::string> services;
    for (const KitInf& inf : AllInfs()) {
        drivers.insert("File=drivers\\" + DriverFileOf(inf));
        infs.insert("Inf=" + inf.name);
        const Model model = ModelsOf(inf.path, ModelSectionsOf(inf.path)[0])[0];
        services.insert("Service=" +
                        Split(ProfileText(inf.path, model.installSection + ".Services", "AddService"), ", ")[0]);
    }
    EXPECT_THAT(ProfileLines(file, "Drivers"), testing::UnorderedElementsAreArray(drivers));
    EXPECT_THAT(ProfileLines(file, "Infs"), testing::UnorderedElementsAreArray(infs));
    EXPECT_THAT(ProfileLines(file, "Services"), testing::UnorderedElementsAreArray(services));
}
