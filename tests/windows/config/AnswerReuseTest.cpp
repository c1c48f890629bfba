#include "AnswerReuse.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <stdexcept>

#include "CallCount.h"
#include "DebugOutput.h"
#include "Handles.h"
#include "InfFiles.h"
#include "InfReader.h"
#include "InfSearch.h"
#include "LocationInfo.h"
#include "OSVersion.h"
#include "ProfileReading.h"
#include "RunOptions.h"
#include "ScratchDirectory.h"
#include "SetupIni.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {
constexpr char kKey[] = "VEN_5D1A&DEV_7A01";
constexpr char kOtherKey[] = "VEN_5D1A&DEV_7A02";

DriverInstallRecord VistaRecord()
{
    DriverInstallRecord record;
    std::ranges::copy(kFamilyWindowsVista, record.osFamily.begin());
    return record;
}

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
    [[nodiscard]] std::string Find(const std::string& key = kKey) const
    {
        std::array<char, 260> path{};
        static_cast<void>(GetInfFile(key.c_str(), m_directory.At("Drv\\"), VistaRecord(), path.data(), {}));
        return path.data();
    }

    ScratchDirectory m_directory;
};

/// All that a search tells: its result, both buffers and its trace.
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
    EXPECT_EQ(Find(), "");
    const uint64_t asked = questions.Profile();
    const uint64_t opened = questions.Opened();
    EXPECT_EQ(asked, 7U) << "section names; signature, two of the manufacturer, two of the section, description";
    EXPECT_EQ(opened, 1U);
    EXPECT_EQ(Find(), "");
    EXPECT_EQ(questions.Profile(), 2 * asked);
    EXPECT_EQ(questions.Opened(), 2 * opened);
}

TEST_F(Reuse, SecondSearchAsksNothingMore)
{
    WriteFileBytes(Inf("tav1.inf"), QualifiedInf(kOtherKey));
    WriteFileBytes(Inf("tav2.inf"), QualifiedInf(kOtherKey));
    const AnswerReuse reuse;
    const Questions questions;
    EXPECT_EQ(Find(), "");
    const uint64_t asked = questions.Profile();
    const uint64_t opened = questions.Opened();
    EXPECT_EQ(asked, 1U + 2 * 6U);
    EXPECT_EQ(Find(), "");
    EXPECT_EQ(Find("VEN_5D1A"), "");
    EXPECT_EQ(questions.Profile(), asked);
    EXPECT_EQ(questions.Opened(), opened);
}

TEST_F(Reuse, NothingOutlivesIt)
{
    WriteFileBytes(Inf(), QualifiedInf(kOtherKey));
    {
        const AnswerReuse reuse;
        EXPECT_EQ(Find(), "");
    }
    EXPECT_EQ(AnswersAbout(Inf()), nullptr);
    const Questions questions;
    EXPECT_EQ(Find(), "");
    EXPECT_EQ(questions.Profile(), 7U);
}

TEST_F(Reuse, EachManufacturerIsAskedApart)
{
    std::string inf = QualifiedInf(kKey);
    const std::string heading = "[Manufacturer]\r\n";
    inf.insert(inf.find(heading) + heading.size(), "first=Other\r\n");
    WriteFileBytes(Inf(), inf);
    const AnswerReuse reuse;
    EXPECT_EQ(Find(), Inf());
}

TEST_F(Reuse, ListsOfTheSetupIniAreReadOnce)
{
    const AnswerReuse reuse;
    const Questions questions;
    std::vector<std::string> first;
    std::vector<std::string> excludes;
    GetInfDirs(first, excludes);
    const uint64_t asked = questions.Profile();
    std::vector<std::string> second;
    GetInfDirs(second, excludes);
    EXPECT_EQ(second, first);
    EXPECT_THAT(second, ElementsAre(m_directory.At(R"(Setup\Drv\)")));
    // The number of levels is its default, which is asked for once more.
    EXPECT_EQ(questions.Profile(), asked + 1);
    std::vector<std::string> third;
    GetInfDirs(third, excludes);
    EXPECT_EQ(third, first);
    EXPECT_EQ(questions.Profile(), asked + 1);
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
    const auto search = [&](const std::string& key) {
        matchedHardwareId.fill('\0');
        deviceDescription.fill('\0');
        trace.Clear();
        Told told;
        told.path = Find(key);
        told.hardwareId = TextIn(matchedHardwareId);
        told.description = TextIn(deviceDescription);
        told.messages = trace.Messages();
        return told;
    };
    const std::vector<std::string> keys{kKey, kOtherKey, "ven_5d1a&dev_7a03", "VEN_1234", ""};
    std::vector<Told> plain;
    for (const std::string& key : keys) {
        plain.push_back(search(key));
        EXPECT_THAT(plain.back().messages, Contains("GetPrivateProfileSection() failed"));
    }
    EXPECT_EQ(plain[1].path, Inf("tav5.inf"));
    EXPECT_EQ(plain[2].path, Inf("tav6.inf"));
    const AnswerReuse reuse;
    for (const char* const round : {"first", "second"}) {
        for (std::size_t i = 0; i < keys.size(); ++i) {
            const Told told = search(keys[i]);
            EXPECT_EQ(told, plain[i]) << round << " search of " << keys[i];
            EXPECT_EQ(told.messages, plain[i].messages) << round << " search of " << keys[i];
        }
    }
}

TEST_F(Reuse, FileOfAnotherSizeIsAskedAboutAgain)
{
    WriteFileBytes(Inf(), QualifiedInf(kOtherKey));
    const AnswerReuse reuse;
    EXPECT_EQ(Find(), "");
    WriteFileBytes(Inf(), QualifiedInf(kKey) + "; one line more\r\n");
    EXPECT_EQ(Find(), Inf());
    EXPECT_EQ(Find(kOtherKey), "");
}

TEST_F(Reuse, FileOfAnotherWriteTimeIsAskedAboutAgain)
{
    WriteFileBytes(Inf(), QualifiedInf(kOtherKey));
    MoveWriteTime(Inf(), -10);
    const AnswerReuse reuse;
    EXPECT_EQ(Find(), "");
    WriteFileBytes(Inf(), QualifiedInf(kKey));
    MoveWriteTime(Inf(), -5);
    EXPECT_EQ(Find(), Inf());
}

TEST_F(Reuse, OnlyTheChangedFileIsAskedAboutAgain)
{
    WriteFileBytes(Inf("tav1.inf"), QualifiedInf(kOtherKey));
    WriteFileBytes(Inf("tav2.inf"), QualifiedInf(kOtherKey));
    const AnswerReuse reuse;
    EXPECT_EQ(Find(), "");
    MoveWriteTime(Inf("tav2.inf"), -10);
    const Questions questions;
    EXPECT_EQ(Find(), "");
    EXPECT_EQ(questions.Profile(), 6U);
    EXPECT_EQ(questions.Opened(), 1U);
}

TEST_F(Reuse, ChangedSetupIniIsAskedAboutAgain)
{
    WriteFileBytes(Inf(), QualifiedInf(kKey, "Norda.Other"));
    const AnswerReuse reuse;
    EXPECT_EQ(Find(), "");
    WriteIni("Norda.Other");
    EXPECT_EQ(Find(), Inf());
}

TEST_F(Reuse, FileThatComesOrGoesIsNoticed)
{
    const AnswerReuse reuse;
    EXPECT_EQ(Find(), "");
    WriteFileBytes(Inf(), QualifiedInf(kKey));
    EXPECT_EQ(Find(), Inf());
    DeleteFileA(Inf().c_str());
    EXPECT_EQ(Find(), "");
}

TEST_F(Reuse, FileThatCannotBeOpenedIsTriedAgainThoughItDidNotChange)
{
    WriteFileBytes(Inf(), QualifiedInf(kKey));
    const AnswerReuse reuse;
    {
        const UniqueFile locked = Locked(Inf());
        TraceCapture trace;
        EXPECT_EQ(Find(), "");
        EXPECT_THAT(trace.Messages(), Contains("unable to open file: " + Inf() + "\n"));
    }
    TraceCapture trace;
    EXPECT_EQ(Find(), Inf());
    EXPECT_THAT(trace.Messages(), Not(Contains("unable to open file: " + Inf() + "\n")));
}

TEST_F(Reuse, FileLockedForTwoPassesBeforeItsFirstReadingIsFoundInTheThird)
{
    WriteFileBytes(Inf(), QualifiedInf(kKey));
    const AnswerReuse reuse;
    {
        const UniqueFile locked = Locked(Inf());
        EXPECT_EQ(Find(), "");
        EXPECT_EQ(Find(), "");
    }
    EXPECT_EQ(Find(), Inf());
}

TEST_F(Reuse, FileLockedForTwoPassesAfterItsFirstReadingIsFoundByTheNextDevice)
{
    WriteFileBytes(Inf(), QualifiedInf(kKey));
    AnswerReuse reuse;
    ASSERT_NE(AnswersAbout(Inf()), nullptr) << "its mark was read";
    {
        const UniqueFile locked = Locked(Inf());
        EXPECT_EQ(Find(), "");
        EXPECT_EQ(Find(), "");
    }
    EXPECT_EQ(Find(), "") << "twice nothing counts for this device";
    reuse.BeginDevice();
    EXPECT_EQ(Find(), Inf());
}

TEST_F(Reuse, FileThatTheLockLetsGoInTheSecondPassIsFoundInThatPass)
{
    WriteFileBytes(Inf(), QualifiedInf(kKey));
    const AnswerReuse reuse;
    ASSERT_NE(AnswersAbout(Inf()), nullptr) << "its mark was read";
    {
        const UniqueFile locked = Locked(Inf());
        EXPECT_EQ(Find(), "");
    }
    EXPECT_EQ(Find(), Inf());
}

TEST_F(Reuse, FileLockedAfterItWasReadIsFoundThoughThePlatformCouldNotReadItNow)
{
    WriteFileBytes(Inf(), QualifiedInf(kKey));
    AnswerReuse reuse;
    EXPECT_EQ(Find(), Inf());
    const UniqueFile locked = Locked(Inf());
    reuse.BeginDevice();
    TraceCapture trace;
    EXPECT_EQ(Find(), Inf());
    EXPECT_THAT(trace.Messages(), Contains("file is not Unicode\n"));
    EXPECT_THAT(trace.Messages(), Not(Contains("unable to open file: " + Inf() + "\n")));
}

TEST_F(Reuse, SectionThatAFileDoesNotHaveIsAskedForTwiceForEachDevice)
{
    WriteIni("Norda.NTamd64,Missing");
    WriteFileBytes(Inf(), QualifiedInf(kOtherKey));
    AnswerReuse reuse;
    const Questions questions;
    for (int pass = 1; pass <= 4; ++pass) {
        EXPECT_EQ(Find(), "");
    }
    const uint64_t asked = questions.Profile();
    for (uint64_t device = 1; device <= 3; ++device) {
        reuse.BeginDevice();
        for (int pass = 1; pass <= 4; ++pass) {
            EXPECT_EQ(Find(), "");
        }
        // Two for a section and one for the description that nothing was found for, twice.
        EXPECT_EQ(questions.Profile(), asked + device * 6);
    }
}

TEST_F(Reuse, MissingFileIsAskedAboutEveryTime)
{
    const AnswerReuse reuse;
    const Questions questions;
    std::array<char, 20> buffer{};
    for (uint64_t i = 1; i <= 3; ++i) {
        EXPECT_EQ(ReadProfileText("Section", "Key", "default", buffer, Inf()), 7U);
        EXPECT_EQ(TextIn(buffer), "default");
        EXPECT_EQ(questions.Profile(), i);
    }
}

TEST_F(Reuse, LinkIsNeverReusedBecauseItsEntryTellsNothingAboutTheFileBehindIt)
{
    WriteFileBytes(Inf(), QualifiedInf(kKey));
    const AnswerReuse reuse;
    WIN32_FIND_DATAA entry{};
    const UniqueSearch search(FindFirstFileA(Inf().c_str(), &entry));
    {
        const FileVisit visit(Inf(), entry);
        EXPECT_NE(AnswersAbout(Inf()), nullptr);
    }
    entry.dwFileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
    const FileVisit visit(Inf(), entry);
    EXPECT_EQ(AnswersAbout(Inf()), nullptr);
}

TEST_F(Reuse, VisitSparesTheLookAtTheFileAndCountsForThatFileOnly)
{
    WriteFileBytes(Inf("tav1.inf"), QualifiedInf(kKey));
    WriteFileBytes(Inf("tav2.inf"), QualifiedInf(kKey));
    const AnswerReuse reuse;
    const CallCount looks("GetFileAttributesExA");
    WIN32_FIND_DATAA entry{};
    const UniqueSearch search(FindFirstFileA(Inf("tav1.inf").c_str(), &entry));
    const FileVisit visit(Inf("tav1.inf"), entry);
    EXPECT_NE(AnswersAbout(Inf("tav1.inf")), nullptr);
    EXPECT_EQ(looks.Calls(), 0U);
    EXPECT_NE(AnswersAbout(Inf("tav2.inf")), nullptr);
    EXPECT_EQ(looks.Calls(), 1U);
    EXPECT_NE(AnswersAbout(Inf("tav2.inf")), AnswersAbout(Inf("tav1.inf")));
}

TEST_F(Reuse, NothingOutlivesTheObject)
{
    WriteFileBytes(Inf(), QualifiedInf(kOtherKey));
    const Questions questions;
    {
        const AnswerReuse reuse;
        EXPECT_EQ(Find(), "");
    }
    EXPECT_EQ(answersInUse.answers, nullptr);
    EXPECT_EQ(answersInUse.visit, nullptr);
    const uint64_t asked = questions.Profile();
    {
        const AnswerReuse reuse;
        EXPECT_EQ(Find(), "");
        EXPECT_EQ(questions.Profile(), 2 * asked);
    }
    EXPECT_EQ(Find(), "");
    EXPECT_EQ(questions.Profile(), 3 * asked);
}

TEST_F(Reuse, EndsWithAFaultToo)
{
    try {
        const AnswerReuse reuse;
        throw std::out_of_range("a device without a revision");
    } catch (const std::out_of_range&) {
        EXPECT_EQ(answersInUse.answers, nullptr);
    }
}

TEST_F(Reuse, SectionThatTheFileDoesNotHaveLeavesTheSameInTheBuffer)
{
    WriteFileBytes(Inf(), QualifiedInf(kKey));
    constexpr std::size_t kBytes = 64;
    std::array<char, kBytes> plain{};
    plain.fill('?');
    const uint32_t count = ReadProfileSection("Missing", plain, Inf());
    const AnswerReuse reuse;
    for (int round = 0; round < 2; ++round) {
        std::array<char, kBytes> buffer{};
        buffer.fill('?');
        EXPECT_EQ(ReadProfileSection("Missing", buffer, Inf()), count);
        EXPECT_EQ(buffer, plain);
    }
}
