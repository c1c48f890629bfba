#include "PostInstall.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <stdexcept>

#include "AttributeRequests.h"
#include "DeviceFixtures.h"
#include "DevicePassState.h"
#include "DriverFamilies.h"
#include "Handles.h"
#include "ResultKeys.h"
#include "RunState.h"
#include "TestFiles.h"

using testing::ElementsAre;

namespace {
constexpr char kDinsKey[] = R"(SOFTWARE\Norda\Tavunstl\Dins)";

std::string SystemPath(const std::string& name)
{
    std::array<char, MAX_PATH> directory{};
    GetSystemDirectoryA(directory.data(), MAX_PATH);
    return std::string(directory.data()) + "\\" + name;
}

std::string DriverPath(const std::string& name)
{
    return SystemPath("drivers\\" + name);
}

/// A driver file in the system's driver directory, gone at the end of the object's life.
class DriverFile
{
public:
    /// @param version  First of the four parts of the file's version; the others are 8.9.10.
    explicit DriverFile(const std::string& name, uint16_t version = 7) : m_path(DriverPath(name))
    {
        std::string bytes = ReadFileBytes(TestFile("versioned_file.dll"));
        // The fixed version record: signature, structure version, then the file version's high and low word.
        const std::size_t record = bytes.find("\xBD\x04\xEF\xFE");
        if (record == std::string::npos) {
            throw std::runtime_error("the test file has no version record");
        }
        std::memcpy(&bytes[record + 10], &version, sizeof(version));
        WriteFileBytes(m_path, bytes);
    }
    ~DriverFile() { DeleteFileA(m_path.c_str()); }
    DriverFile(const DriverFile&) = delete;
    DriverFile& operator=(const DriverFile&) = delete;

private:
    std::string m_path;
};

class PostInstall : public testing::Test
{
protected:
    PostInstall() { DeleteFileA(SystemPath("Morvix.din").c_str()); }
    ~PostInstall() override
    {
        SetFileAttributesA(SystemPath("Morvix.din").c_str(), FILE_ATTRIBUTE_NORMAL);
        DeleteFileA(SystemPath("Morvix.din").c_str());
    }

    /// Classifies an INF and keeps the path as it is afterwards.
    int Classify(const std::string& infPath, OSCode system = osWINEIGHT32E)
    {
        m_path.fill('\0');
        std::ranges::copy(infPath, m_path.begin());
        return PostInstallRegResultFor(system, m_path);
    }
    [[nodiscard]] std::string Path() const { return m_path.data(); }

    ScratchRegistryKey m_results{kBasedriversKey};
    ScratchRegistryKey m_dins{R"(SOFTWARE\Norda\Tavunstl)"};
    InfKit m_kit; // its directory is the program's directory

private:
    std::array<char, 256> m_path{};
};

std::string Result(const std::string& name)
{
    return ReadRegistryText(kBasedriversKey, name);
}

std::vector<std::string> PostLines(const std::string& result, const std::string& name, const std::string& version,
                                   bool first = true)
{
    std::vector<std::string> lines{"Enter -> PostResultToRegistry",
                                   "Installation result is ->",
                                   result,
                                   "The type of driver being installed is ->",
                                   name,
                                   "The driver version being installed is ->",
                                   version};
    if (first) {
        lines.emplace_back("First time calling PostResultToRegistry() or FAILURE found!");
    }
    lines.emplace_back("Exit -> PostResultToRegistry");
    return lines;
}
/// The whole trace of an INF that a result is written for.
std::vector<std::string> FamilyLines(const std::vector<std::string>& driverLines, const std::vector<std::string>& post)
{
    std::vector<std::string> lines{"Enter -> PostInstallRegResult\n", "inf file name and path is ->",
                                   "C:\\KIT\\NGEA64.INF", "inf file name is ->", "\\NGEA64.INF"};
    Append(lines, driverLines);
    Append(lines, post);
    Append(lines, {"Entering -> UpdateTavunstRegistry()", "Exiting -> UpdateTavunstRegistry()",
                   "Exit -> PostInstallRegResult\n"});
    return lines;
}
} // namespace

TEST_F(PostInstall, AFamilyWithItsDriverFileIsASuccessWithTheFilesVersion)
{
    const DriverFile driver("ngeax64.sys");
    TraceCapture trace;
    EXPECT_EQ(Classify("C:\\KIT\\NGEA64.INF"), 1);
    EXPECT_EQ(trace.Messages(),
              FamilyLines({"Driver sys file found in \\system32\\drivers", "Entering - GetModuleVersion", "7.8.9.10"},
                          PostLines("SUCCESS", "TAVG_PCIE_Install", "7.8.9.10")));
    EXPECT_EQ(Result("TAVG_PCIE_Install"), "SUCCESS");
    EXPECT_EQ(Result("TAVG_PCIE_Version"), "7.8.9.10");
    EXPECT_EQ(Result("Version"), "7.8.9.10");
    EXPECT_EQ(Result("Install"), "SUCCESS");
}

TEST_F(PostInstall, AFamilyWithoutItsDriverFileIsAFailureWithoutAVersion)
{
    TraceCapture trace;
    EXPECT_EQ(Classify("C:\\KIT\\NGEA64.INF"), 1);
    EXPECT_EQ(trace.Messages(), FamilyLines({"Driver sys file NOT found in \\system32\\drivers"},
                                            PostLines("FAILURE", "TAVG_PCIE_Install", "")));
    EXPECT_EQ(Result("TAVG_PCIE_Install"), "FAILURE");
    EXPECT_EQ(Result("TAVG_PCIE_Version"), "<none>");
    EXPECT_EQ(Result("Version"), "<none>");
}

TEST_F(PostInstall, AnInfOfNoFamilyIsOnlyTraced)
{
    WriteFileBytes(m_kit.Directory().At("Morvix.din"), "uninstall data");
    TraceCapture trace;
    EXPECT_EQ(Classify("C:\\KIT\\OTHER.INF"), 0);
    EXPECT_THAT(trace.Messages(), ElementsAre("Enter -> PostInstallRegResult\n", "inf file name and path is ->",
                                              "C:\\KIT\\OTHER.INF", "inf file name is ->", "\\OTHER.INF",
                                              "A device other than a network device was installed"));
    EXPECT_EQ(Result("Install"), "<none>");
    EXPECT_FALSE(FileExists(SystemPath("Morvix.din")));
    EXPECT_EQ(RunState.resultAlreadyPosted, 0U);
}

TEST_F(PostInstall, AnInfInLowerCaseIsClassifiedAlikeAndItsPathIsInUpperCaseAfterwards)
{
    TraceCapture trace;
    EXPECT_EQ(Classify("c:\\kit\\nxga64.inf"), 1);
    EXPECT_EQ(Path(), "C:\\KIT\\NXGA64.INF");
    EXPECT_EQ(Result("TAVX_Install"), "FAILURE");
    EXPECT_EQ(trace.Messages().at(2), "c:\\kit\\nxga64.inf") << "traced as it came";
    EXPECT_EQ(trace.Messages().at(4), "\\nxga64.inf");

    EXPECT_EQ(Classify("c:\\kit\\other.inf"), 0);
    EXPECT_EQ(Path(), "C:\\KIT\\OTHER.INF") << "also when it belongs to no family";
}

TEST_F(PostInstall, APrefixThatDoesNotStartTheFileNameDoesNotClassify)
{
    EXPECT_EQ(Classify("C:\\KIT\\XNGEA64.INF"), 0);
    EXPECT_EQ(Classify("C:\\NGEA\\OTHER.INF"), 0) << "the directory does not count";
    EXPECT_EQ(Classify("NGEA64.INF"), 0) << "a bare name has no backslash";
    EXPECT_EQ(Classify(""), 0);
    EXPECT_EQ(Classify("C:\\NGEA\\"), 0);
}

TEST_F(PostInstall, EveryFamilyPostsUnderItsOwnName)
{
    for (const DriverFamily& family : kDriverFamilies) {
        const ScratchRegistryKey results(kBasedriversKey);
        EXPECT_EQ(Classify("C:\\KIT" + std::string(family.infPrefix) + "64.INF"), 1) << family.infPrefix;
        EXPECT_EQ(Result(std::string(family.resultPrefix) + "Install"), "FAILURE") << family.infPrefix;
    }
}

TEST_F(PostInstall, Only61SystemsLookForTheFilesWith62InTheirNames)
{
    const DriverFile plain("ngeax64.sys");
    for (uint32_t code = osUNSUPPORTED; code <= osWINEIGHTSRV32E; ++code) {
        const ScratchRegistryKey results(kBasedriversKey);
        const bool is61 =
            code == osWINSEVEN32 || code == osWINSEVEN32E || code == osWIN2K8R232E || code == osWIN2K8R264;
        EXPECT_EQ(Classify("C:\\KIT\\NGEA64.INF", static_cast<OSCode>(code)), 1) << code;
        EXPECT_EQ(Result("TAVG_PCIE_Install"), is61 ? "FAILURE" : "SUCCESS") << code;
    }
    const DriverFile own("ngea62x64.sys", 62);
    EXPECT_EQ(Classify("C:\\KIT\\NGEA64.INF", osWINSEVEN32E), 1);
    EXPECT_EQ(Result("TAVG_PCIE_Install"), "SUCCESS");
    EXPECT_EQ(Result("TAVG_PCIE_Version"), "62.8.9.10");
}

TEST_F(PostInstall, AFamilyWithoutFilesOfItsOwnLooksForThePlainOnesOn61SystemsToo)
{
    const DriverFile driver("ng1kx64.sys");
    EXPECT_EQ(Classify("C:\\KIT\\NG1K64.INF", osWINSEVEN32E), 1);
    EXPECT_EQ(Result("TAVG_Install"), "SUCCESS");
}

TEST_F(PostInstall, TheRunningSystemDecidesWhenNoneIsGiven)
{
    // The plain file alone: missing on a 6.1 system, found on every other.
    const DriverFile plain("ngeax64.sys");
    std::array<char, 64> path{"C:\\KIT\\NGEA64.INF"};
    EXPECT_EQ(PostInstallRegResult(path), 1);
    OSVERSIONINFOA version{};
    version.dwOSVersionInfoSize = sizeof(version);
    ASSERT_TRUE(GetVersionExA(&version));
    const bool is61 = version.dwMajorVersion == 6 && version.dwMinorVersion == 1;
    EXPECT_EQ(Result("TAVG_PCIE_Install"), is61 ? "FAILURE" : "SUCCESS");
}

TEST_F(PostInstall, OfTwoDriverFilesTheFirstOfTheDirectorySearchGivesTheVersion)
{
    const DriverFile one("ngeab.sys", 21);
    const DriverFile two("ngeac.sys", 22);
    WIN32_FIND_DATAA first{};
    const HANDLE search = FindFirstFileA(DriverPath("ngea*.sys").c_str(), &first);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    FindClose(search);
    const bool oneIsFirst = lstrcmpiA(first.cFileName, "ngeab.sys") == 0;
    EXPECT_EQ(Classify("C:\\KIT\\NGEA64.INF"), 1);
    EXPECT_EQ(Result("Version"), oneIsFirst ? "21.8.9.10" : "22.8.9.10");
}

TEST_F(PostInstall, ADriverFileWithoutAVersionIsASuccessWithAnEmptyOne)
{
    const DriverFile driver("ngeax64.sys");
    WriteFileBytes(DriverPath("ngeax64.sys"), "no resources here");
    EXPECT_EQ(Classify("C:\\KIT\\NGEA64.INF"), 1);
    EXPECT_EQ(Result("TAVG_PCIE_Install"), "SUCCESS");
    EXPECT_EQ(Result("TAVG_PCIE_Version"), "");
}

TEST_F(PostInstall, AnUnreportedRefusalIsOneFailureWhateverIsInTheDirectory)
{
    const DriverFile driver("ngeax64.sys");
    DevicePassState.unreportedRefusal = true;
    DevicePassState.installFailed = true;
    EXPECT_EQ(Classify("C:\\KIT\\NGEA64.INF"), 1);
    EXPECT_EQ(Result("TAVG_PCIE_Install"), "FAILURE");
    EXPECT_EQ(Result("Version"), "<none>");
    EXPECT_FALSE(DevicePassState.unreportedRefusal);
    EXPECT_TRUE(DevicePassState.installFailed);

    // The next one of the run reports by the driver file alone.
    EXPECT_EQ(Classify("C:\\KIT\\NGEA64.INF"), 1);
    EXPECT_EQ(Result("TAVG_PCIE_Install"), "SUCCESS");
    EXPECT_EQ(Result("Install"), "FAILURE") << "the run as a whole keeps its worst result";
}

TEST_F(PostInstall, AnUnreportedRefusalOutlastsAnInfOfNoFamily)
{
    DevicePassState.unreportedRefusal = true;
    EXPECT_EQ(Classify("C:\\KIT\\OTHER.INF"), 0);
    EXPECT_TRUE(DevicePassState.unreportedRefusal);
}

TEST_F(PostInstall, APathThatFillsItsBufferIsReadToItsEndAndNoFurther)
{
    std::array<char, 20> path{};
    std::ranges::copy(std::string_view("c:\\kit\\ngea64x64.inf"), path.begin());
    ASSERT_NE(path.back(), '\0');
    EXPECT_EQ(PostInstallRegResult(path), 1);
    EXPECT_EQ(std::string(path.data(), path.size()), "C:\\KIT\\NGEA64X64.INF");
}

TEST_F(PostInstall, TheUninstallDataFileIsCopiedAndRegistered)
{
    WriteFileBytes(m_kit.Directory().At("Morvix.din"), "uninstall data");
    SetFileAttributesA(m_kit.Directory().At("Morvix.din").c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(Classify("C:\\KIT\\NGEA64.INF"), 1);
    EXPECT_EQ(ReadFileBytes(SystemPath("Morvix.din")), "uninstall data");
    EXPECT_EQ(GetFileAttributesA(SystemPath("Morvix.din").c_str()) & FILE_ATTRIBUTE_READONLY, 0U);
    const std::optional<RegistryValue> value = ReadRegistryValue(kDinsKey, "Morvix.din");
    ASSERT_TRUE(value.has_value());
    EXPECT_EQ(value->type, DWORD{REG_SZ});
    EXPECT_EQ(value->bytes, std::string("Morvix.Uninstall") + '\0');
}

TEST_F(PostInstall, EveryClassifiedInstallRefreshesTheUninstallData)
{
    WriteFileBytes(m_kit.Directory().At("Morvix.din"), "first");
    UpdateTavunstRegistry();
    DeleteRegistryTree(kDinsKey);
    WriteFileBytes(m_kit.Directory().At("Morvix.din"), "second");
    TraceCapture trace;
    UpdateTavunstRegistry();
    EXPECT_EQ(ReadFileBytes(SystemPath("Morvix.din")), "second");
    EXPECT_EQ(ReadRegistryText(kDinsKey, "Morvix.din"), "Morvix.Uninstall");
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Entering -> UpdateTavunstRegistry()", "Exiting -> UpdateTavunstRegistry()"));
}

TEST_F(PostInstall, WithoutAnUninstallDataFileNothingIsRegistered)
{
    TraceCapture trace;
    UpdateTavunstRegistry();
    EXPECT_FALSE(FileExists(SystemPath("Morvix.din")));
    EXPECT_FALSE(RegistryKeyExists(kDinsKey));
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Entering -> UpdateTavunstRegistry()", "Exiting -> UpdateTavunstRegistry()"));
}

TEST_F(PostInstall, ATargetThatRefusesTheCopyIsUnchangedAndNotRegistered)
{
    WriteFileBytes(m_kit.Directory().At("Morvix.din"), "new");
    WriteFileBytes(SystemPath("Morvix.din"), "old");
    {
        // Another program has it open and does not share it.
        const UniqueFile holder(
            CreateFileA(SystemPath("Morvix.din").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(holder.IsOpen());
        UpdateTavunstRegistry();
    }
    EXPECT_EQ(ReadFileBytes(SystemPath("Morvix.din")), "old");
    EXPECT_FALSE(RegistryKeyExists(kDinsKey));
}

TEST_F(PostInstall, TheUninstallDataFilesAttributesBecomeNormalAndNothingElse)
{
    WriteFileBytes(m_kit.Directory().At("Morvix.din"), "uninstall data");
    const AttributeRequests requests;
    UpdateTavunstRegistry();
    EXPECT_THAT(requests.Calls(), ElementsAre(AttributeRequests::Call{SystemPath("Morvix.din"), 128}));
}
