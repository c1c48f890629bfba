#include "KeptAnswers.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <memory>

#include "CallCount.h"
#include "DebugOutput.h"
#include "DriverInstallRecord.h"
#include "Handles.h"
#include "ImportOverride.h"
#include "InfDirectory.h"
#include "InfFiles.h"
#include "InfReader.h"
#include "InfStore.h"
#include "InstallerSearch.h"
#include "KitLists.h"
#include "LocationInfo.h"
#include "OSVersion.h"
#include "PlatformKit.h"
#include "RunOptions.h"
#include "ScratchDirectory.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {
constexpr char kKey[] = "VEN_5D1A&DEV_7A01";
constexpr char kOtherKey[] = "VEN_5D1A&DEV_7A02";

/// What the platform is asked about files while the object lives.
class Questions
{
public:
    [[nodiscard]] uint64_t Profile() const { return m_texts.Calls() + m_sections.Calls(); }
    [[nodiscard]] uint64_t Opened() const { return m_opened.Calls(); }

private:
    CallCount m_texts{"GetPrivateProfileStringA"};
    CallCount m_sections{"GetPrivateProfileSectionA"};
    CallCount m_opened{"CreateFileA"};
};

/// Moves a file's write time by whole minutes; the size stays.
void MoveWriteTime(const std::string& path, int minutes)
{
    const UniqueFile file(
        CreateFileA(path.c_str(), FILE_WRITE_ATTRIBUTES | GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    FILETIME time{};
    ASSERT_NE(GetFileTime(file.Get(), nullptr, nullptr, &time), FALSE);
    ULARGE_INTEGER moved{{.LowPart = time.dwLowDateTime, .HighPart = time.dwHighDateTime}};
    constexpr int64_t kUnitsInAMinute = 600'000'000;
    moved.QuadPart += static_cast<uint64_t>(minutes * kUnitsInAMinute);
    time = {.dwLowDateTime = moved.LowPart, .dwHighDateTime = moved.HighPart};
    ASSERT_NE(SetFileTime(file.Get(), nullptr, nullptr, &time), FALSE);
}

/// @return the file, which nobody else can open for as long as it is open here.
UniqueFile Locked(const std::string& path)
{
    const HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_NE(file, INVALID_HANDLE_VALUE);
    return UniqueFile(file);
}

class Reuse : public testing::Test
{
protected:
    Reuse()
    {
        LocationInfo.setupDir = m_directory.At("Setup");
        RunOptions = {};
        // The store is another test's subject.
        CopiedInfList.names = {"tav1.inf", "tav2.inf", "tav3.inf", "tav4.inf", "tav5.inf", "tav6.inf"};
        WriteIni("Norda.NTamd64");
    }
    ~Reuse() override
    {
        LocationInfo = {};
        CopiedInfList = {};
    }

    [[nodiscard]] std::string IniPath() const { return m_directory.At(R"(Setup\Morvix.ini)"); }
    [[nodiscard]] std::string Inf(const std::string& name = "tav1.inf") const { return m_directory.At("Drv\\" + name); }

    void WriteIni(const std::string& sectionNames) const
    {
        WriteFileBytes(IniPath(), "[" + std::string(RowOf(COSVersion().GetOSCode()).sectionKey) +
                                      "]\r\nInfSectionName=" + sectionNames + "\r\nInfDir=Drv\r\n");
    }

    /// @return the path of the INF that lists the device; empty when there is none.
    [[nodiscard]] std::string Find(KitSource& source, const std::string& key = kKey) const
    {
        InstallerLog log;
        const KitSearch search =
            SearchOfThisRun(source, log, COSVersion().GetOSCode(), std::string(kFamilyWindowsVista));
        return FindInf(search, key, m_directory.At("Drv\\"), {}).value_or("");
    }
    /// @return the directories of the setup INI.
    [[nodiscard]] static std::vector<std::string> Directories(KitSource& source)
    {
        InstallerLog log;
        std::vector<std::string> directories;
        std::vector<std::string> excludes;
        ReadInfLists(SearchOfThisRun(source, log, COSVersion().GetOSCode()), directories, excludes);
        return directories;
    }

    PlatformKit m_platform;
    ScratchDirectory m_directory;
};

/// All that a search leaves: its result, both buffers and its trace.
struct Told
{
    std::string path;
    std::string hardwareId;
    std::string description;
    std::vector<std::string> messages;
    friend bool operator==(const Told&, const Told&) = default;
};
} // namespace

TEST_F(Reuse, WithoutItEverySearchAsksThePlatform)
{
    WriteFileBytes(Inf(), QualifiedInf(kOtherKey));
    const Questions questions;
    EXPECT_EQ(Find(m_platform), "");
    const uint64_t asked = questions.Profile();
    const uint64_t opened = questions.Opened();
    EXPECT_EQ(asked, 7U) << "section names; signature, two of the manufacturer, two of the section, description";
    EXPECT_EQ(opened, 1U);
    EXPECT_EQ(Find(m_platform), "");
    EXPECT_EQ(questions.Profile(), 2 * asked);
    EXPECT_EQ(questions.Opened(), 2 * opened);
}

TEST_F(Reuse, SecondSearchAsksNothingMore)
{
    WriteFileBytes(Inf("tav1.inf"), QualifiedInf(kOtherKey));
    WriteFileBytes(Inf("tav2.inf"), QualifiedInf(kOtherKey));
    KeptAnswers answers(m_platform);
    const Questions questions;
    EXPECT_EQ(Find(answers), "");
    const uint64_t asked = questions.Profile();
    const uint64_t opened = questions.Opened();
    EXPECT_EQ(asked, 1U + 2 * 6U);
    EXPECT_EQ(Find(answers), "");
    EXPECT_EQ(Find(answers, "VEN_5D1A"), "");
    EXPECT_EQ(questions.Profile(), asked);
    EXPECT_EQ(questions.Opened(), opened);
}

TEST_F(Reuse, EachManufacturerIsAskedSeparately)
{
    std::string inf = QualifiedInf(kKey);
    const std::string heading = "[Manufacturer]\r\n";
    inf.insert(inf.find(heading) + heading.size(), "first=Other\r\n");
    WriteFileBytes(Inf(), inf);
    KeptAnswers answers(m_platform);
    EXPECT_EQ(Find(answers), Inf());
}

TEST_F(Reuse, ResultsBuffersAndTracesAreThoseOfThePlainWay)
{
    WriteIni("Norda.NTamd64,Missing");
    WriteFileBytes(Inf("tav1.inf"), "[Version]\r\nSignature=\"$Chicago$\"\r\n");
    WriteFileBytes(Inf("tav2.inf"), "[Version]\r\nSignature=\"$Windows NT$\"\r\n[Manufacturer]\r\nx=Other\r\n");
    WriteFileBytes(Inf("tav3.inf"), "\xFF\xFE" + QualifiedInf(kKey));
    WriteFileBytes(Inf("tav4.inf"), QualifiedInf(kOtherKey, "Norda"));
    WriteFileBytes(Inf("tav5.inf"),
                   QualifiedInf(kOtherKey) + "[Norda.NTamd64.x]\r\n" + std::string(300, 'k') + "=I, PCI\\VEN_5D1A\r\n");
    WriteFileBytes(Inf("tav6.inf"), QualifiedInf("VEN_5D1A&DEV_7A03") + "a=%b%\r\n");
    TraceCapture trace;
    const auto search = [&](KitSource& source, const std::string& key) {
        matchedHardwareId.fill('\0');
        deviceDescription.fill('\0');
        trace.Clear();
        Told told;
        told.path = Find(source, key);
        told.hardwareId = TextIn(matchedHardwareId);
        told.description = TextIn(deviceDescription);
        told.messages = trace.Messages();
        return told;
    };
    const std::vector<std::string> keys{kKey, kOtherKey, "ven_5d1a&dev_7a03", "VEN_1234", ""};
    std::vector<Told> plain;
    for (const std::string& key : keys) {
        plain.push_back(search(m_platform, key));
        EXPECT_THAT(plain.back().messages, Contains("GetPrivateProfileSection() failed"));
    }
    EXPECT_EQ(plain[1].path, Inf("tav5.inf"));
    EXPECT_EQ(plain[2].path, Inf("tav6.inf"));
    KeptAnswers answers(m_platform);
    for (const char* const round : {"first", "second"}) {
        for (std::size_t i = 0; i < keys.size(); ++i) {
            const Told told = search(answers, keys[i]);
            EXPECT_EQ(told, plain[i]) << round << " search of " << keys[i];
            EXPECT_EQ(told.messages, plain[i].messages) << round << " search of " << keys[i];
        }
    }
}

TEST_F(Reuse, FileOfAnotherSizeIsAskedAboutAgain)
{
    WriteFileBytes(Inf(), QualifiedInf(kOtherKey));
    KeptAnswers answers(m_platform);
    EXPECT_EQ(Find(answers), "");
    WriteFileBytes(Inf(), QualifiedInf(kKey) + "; one line more\r\n");
    EXPECT_EQ(Find(answers), Inf());
    EXPECT_EQ(Find(answers, kOtherKey), "");
}

TEST_F(Reuse, FileOfAnotherWriteTimeIsAskedAboutAgain)
{
    WriteFileBytes(Inf(), QualifiedInf(kOtherKey));
    MoveWriteTime(Inf(), -10);
    KeptAnswers answers(m_platform);
    EXPECT_EQ(Find(answers), "");
    WriteFileBytes(Inf(), QualifiedInf(kKey));
    MoveWriteTime(Inf(), -5);
    EXPECT_EQ(Find(answers), Inf());
}

TEST_F(Reuse, OnlyTheChangedFileIsAskedAboutAgain)
{
    WriteFileBytes(Inf("tav1.inf"), QualifiedInf(kOtherKey));
    WriteFileBytes(Inf("tav2.inf"), QualifiedInf(kOtherKey));
    KeptAnswers answers(m_platform);
    EXPECT_EQ(Find(answers), "");
    MoveWriteTime(Inf("tav2.inf"), -10);
    const Questions questions;
    EXPECT_EQ(Find(answers), "");
    EXPECT_EQ(questions.Profile(), 6U);
    EXPECT_EQ(questions.Opened(), 1U);
}

TEST_F(Reuse, ChangedSetupIniIsAskedAboutAgain)
{
    WriteFileBytes(Inf(), QualifiedInf(kKey, "Norda.Other"));
    KeptAnswers answers(m_platform);
    EXPECT_EQ(Find(answers), "");
    WriteIni("Norda.Other");
    EXPECT_EQ(Find(answers), Inf());
}

TEST_F(Reuse, FileThatComesOrGoesIsNoticed)
{
    KeptAnswers answers(m_platform);
    EXPECT_EQ(Find(answers), "");
    WriteFileBytes(Inf(), QualifiedInf(kKey));
    EXPECT_EQ(Find(answers), Inf());
    DeleteFileA(Inf().c_str());
    EXPECT_EQ(Find(answers), "");
}

TEST_F(Reuse, FileThatCannotBeOpenedIsTriedAgainThoughItDidNotChange)
{
    WriteFileBytes(Inf(), QualifiedInf(kKey));
    KeptAnswers answers(m_platform);
    {
        const UniqueFile locked = Locked(Inf());
        TraceCapture trace;
        EXPECT_EQ(Find(answers), "");
        EXPECT_THAT(trace.Messages(), Contains("unable to open file: " + Inf() + "\n"));
    }
    TraceCapture trace;
    EXPECT_EQ(Find(answers), Inf());
    EXPECT_THAT(trace.Messages(), Not(Contains("unable to open file: " + Inf() + "\n")));
}

TEST_F(Reuse, FileLockedForTwoPassesBeforeItsFirstReadingIsFoundInTheThird)
{
    WriteFileBytes(Inf(), QualifiedInf(kKey));
    KeptAnswers answers(m_platform);
    {
        const UniqueFile locked = Locked(Inf());
        EXPECT_EQ(Find(answers), "");
        EXPECT_EQ(Find(answers), "");
    }
    EXPECT_EQ(Find(answers), Inf());
}

TEST_F(Reuse, FileLockedForTwoPassesAfterItsFirstReadingIsFoundByTheNextDevice)
{
    WriteFileBytes(Inf(), QualifiedInf(kKey));
    KeptAnswers answers(m_platform);
    ASSERT_TRUE(answers.MarkOf(Inf()).read);
    {
        const UniqueFile locked = Locked(Inf());
        EXPECT_EQ(Find(answers), "");
        EXPECT_EQ(Find(answers), "");
    }
    EXPECT_EQ(Find(answers), "") << "the second empty answer counts for this device";
    answers.BeginDevice();
    EXPECT_EQ(Find(answers), Inf());
}

TEST_F(Reuse, FileUnlockedInTheSecondPassIsFoundInThatPass)
{
    WriteFileBytes(Inf(), QualifiedInf(kKey));
    KeptAnswers answers(m_platform);
    ASSERT_TRUE(answers.MarkOf(Inf()).read);
    {
        const UniqueFile locked = Locked(Inf());
        EXPECT_EQ(Find(answers), "");
    }
    EXPECT_EQ(Find(answers), Inf());
}

TEST_F(Reuse, FileLockedAfterItWasReadIsFoundThoughThePlatformCouldNotReadItNow)
{
    WriteFileBytes(Inf(), QualifiedInf(kKey));
    KeptAnswers answers(m_platform);
    EXPECT_EQ(Find(answers), Inf());
    const UniqueFile locked = Locked(Inf());
    answers.BeginDevice();
    TraceCapture trace;
    EXPECT_EQ(Find(answers), Inf());
    EXPECT_THAT(trace.Messages(), Contains("file is not Unicode\n"));
    EXPECT_THAT(trace.Messages(), Not(Contains("unable to open file: " + Inf() + "\n")));
}

TEST_F(Reuse, SectionThatAFileDoesNotHaveIsAskedForTwiceForEachDevice)
{
    WriteIni("Norda.NTamd64,Missing");
    WriteFileBytes(Inf(), QualifiedInf(kOtherKey));
    KeptAnswers answers(m_platform);
    const Questions questions;
    for (int pass = 1; pass <= 4; ++pass) {
        EXPECT_EQ(Find(answers), "");
    }
    const uint64_t asked = questions.Profile();
    for (uint64_t device = 1; device <= 3; ++device) {
        answers.BeginDevice();
        for (int pass = 1; pass <= 4; ++pass) {
            EXPECT_EQ(Find(answers), "");
        }
        // Two for a section and one for the description that nothing was found for, twice.
        EXPECT_EQ(questions.Profile(), asked + device * 6);
    }
}

TEST_F(Reuse, ListsOfTheSetupIniAreReadOnce)
{
    KeptAnswers answers(m_platform);
    const Questions questions;
    const std::vector<std::string> first = Directories(answers);
    const uint64_t asked = questions.Profile();
    EXPECT_EQ(Directories(answers), first);
    EXPECT_THAT(first, ElementsAre(m_directory.At(R"(Setup\Drv\)")));
    // The number of levels is its default, which is asked for once more.
    EXPECT_EQ(questions.Profile(), asked + 1);
    EXPECT_EQ(Directories(answers), first);
    EXPECT_EQ(questions.Profile(), asked + 1);
}

TEST_F(Reuse, SearchedDirectoryGivesTheStampsOfItsFiles)
{
    WriteFileBytes(Inf("tav1.inf"), QualifiedInf(kOtherKey));
    WriteFileBytes(Inf("tav2.inf"), QualifiedInf(kOtherKey));
    KeptAnswers answers(m_platform);
    EXPECT_EQ(Find(answers), "");
    const CallCount looks("GetFileAttributesExA");
    EXPECT_EQ(Find(answers), "");
    EXPECT_EQ(looks.Calls(), 1U) << "at the setup INI";
}

TEST_F(Reuse, SectionThatTheFileDoesNotHaveLeavesTheSameInTheBuffer)
{
    WriteFileBytes(Inf(), QualifiedInf(kKey));
    constexpr std::size_t kBytes = 64;
    std::array<char, kBytes> plain{};
    plain.fill('?');
    const uint32_t count = m_platform.ReadSection("Missing", plain, Inf());
    KeptAnswers answers(m_platform);
    for (int round = 0; round < 2; ++round) {
        std::array<char, kBytes> buffer{};
        buffer.fill('?');
        EXPECT_EQ(answers.ReadSection("Missing", buffer, Inf()), count);
        EXPECT_EQ(buffer, plain);
    }
}

namespace {
BOOL WINAPI DescribeLink(LPCSTR /*name*/, GET_FILEEX_INFO_LEVELS /*level*/, LPVOID attributes)
{
    WIN32_FILE_ATTRIBUTE_DATA link{};
    link.dwFileAttributes = FILE_ATTRIBUTE_REPARSE_POINT;
    *static_cast<WIN32_FILE_ATTRIBUTE_DATA*>(attributes) = link;
    return TRUE;
}

HANDLE WINAPI FindLink(LPCSTR /*pattern*/, WIN32_FIND_DATAA* entry)
{
    *entry = {};
    entry->dwFileAttributes = FILE_ATTRIBUTE_REPARSE_POINT;
    std::ranges::copy(std::string_view("link.inf"), entry->cFileName);
    return reinterpret_cast<HANDLE>(UINT_PTR{4});
}
} // namespace

TEST_F(Reuse, LinkHasNoStampBecauseItsEntryDoesNotDescribeTheFile)
{
    WriteFileBytes(Inf(), QualifiedInf(kKey));
    ASSERT_TRUE(m_platform.StampOf(Inf()).has_value());
    const ImportOverride look{"GetFileAttributesExA", reinterpret_cast<void*>(DescribeLink)};
    EXPECT_EQ(m_platform.StampOf(Inf()), std::nullopt);
    const ImportOverride find{"FindFirstFileA", reinterpret_cast<void*>(FindLink)};
    const std::unique_ptr<InfListing> listing = m_platform.List(m_directory.At("Drv\\"));
    ASSERT_NE(listing, nullptr);
    const InfEntry* const entry = listing->Next();
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->name, "link.inf");
    EXPECT_EQ(entry->stamp, std::nullopt);
}

TEST_F(Reuse, StampIsThatOfTheDirectoryEntry)
{
    WriteFileBytes(Inf(), QualifiedInf(kKey));
    const std::unique_ptr<InfListing> listing = m_platform.List(m_directory.At("Drv\\"));
    ASSERT_NE(listing, nullptr);
    const InfEntry* const entry = listing->Next();
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->stamp, m_platform.StampOf(Inf()));
    EXPECT_EQ(entry->stamp.value_or(FileStamp{}).bytes, QualifiedInf(kKey).size());
    EXPECT_EQ(m_platform.StampOf(Inf("missing.inf")), std::nullopt);
}
