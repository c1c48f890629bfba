// How much of a section of the setup INI is read, and what is made of a section that the platform does not find.

#include <gmock/gmock.h>
#include <windows.h>

#include "DebugOutput.h"
#include "ImportOverride.h"
#include "InfReader.h"
#include "LocationInfo.h"
#include "ScratchDirectory.h"
#include "SetupIni.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {
/// One call of a private-profile function.
struct Question
{
    std::string function;
    std::string section;
    DWORD bytes = 0;
    std::string file;
    bool operator==(const Question&) const = default;
};

/// What this program's own calls ask about sections, for the life of the object. The calls go through unless sections
/// are to be missing: then the read answers 0 and leaves the buffer as it is.
class SectionQuestions
{
public:
    enum class Sections
    {
        AsTheyAre,
        Missing,
    };

    explicit SectionQuestions(Sections sections = Sections::AsTheyAre)
    {
        asked.clear();
        missing = sections == Sections::Missing;
    }

    [[nodiscard]] static const std::vector<Question>& Asked() { return asked; }

private:
    static DWORD WINAPI NoteText(LPCSTR section, LPCSTR key, LPCSTR defaultText, LPSTR buffer, DWORD bytes, LPCSTR file)
    {
        if (section == nullptr) {
            EXPECT_EQ(key, nullptr);
            EXPECT_EQ(defaultText, nullptr);
            asked.push_back({"names of all sections", "", bytes, file});
        }
        return platformText(section, key, defaultText, buffer, bytes, file);
    }

    static DWORD WINAPI NoteSection(LPCSTR section, LPSTR buffer, DWORD bytes, LPCSTR file)
    {
        asked.push_back({"section", section, bytes, file});
        return missing ? 0 : platformSection(section, buffer, bytes, file);
    }

    inline static std::vector<Question> asked;
    inline static bool missing = false;
    inline static decltype(&GetPrivateProfileStringA) platformText = nullptr;
    inline static decltype(&GetPrivateProfileSectionA) platformSection = nullptr;
    ImportOverride m_text{"GetPrivateProfileStringA", InPlaceOf(platformText, &GetPrivateProfileStringA, &NoteText)};
    ImportOverride m_section{"GetPrivateProfileSectionA",
                             InPlaceOf(platformSection, &GetPrivateProfileSectionA, &NoteSection)};
};

class SetupIniLimits : public testing::Test
{
protected:
    SetupIniLimits() { LocationInfo.setupDir = m_directory.Path(); }
    ~SetupIniLimits() override { LocationInfo = {}; }

    static void WriteIni(const std::string& content) { WriteFileBytes(SetupIniPath(), content); }

    static std::vector<std::string> Directories()
    {
        std::vector<std::string> directories;
        ReadInfDirsFromIni("Win732E", directories);
        return directories;
    }
    static std::vector<std::string> Excludes()
    {
        std::vector<std::string> excludes;
        ReadInfExcludeFilesFromINI("Win732E", excludes);
        return excludes;
    }

    ScratchDirectory m_directory;
};

/// A section of whole lines `line` and a last line that begins with `start` and is filled up with `fill`, so that the
/// section has `characters` characters: each line with the terminator that parts it from the next, the last without.
struct FilledSection
{
    std::string content = "[Win732E]\r\n";
    std::string lastValue;

    FilledSection(const std::string& line, std::size_t count, const std::string& start, std::size_t characters)
    {
        for (std::size_t index = 0; index < count; ++index) {
            content += line + "\r\n";
        }
        lastValue = std::string(characters - count * (line.size() + 1) - start.size(), 'f');
        content += start + lastValue + "\r\n";
    }
};
} // namespace

TEST_F(SetupIniLimits, The518thCharacterOfTheDirectoriesIsTheLastOneRead)
{
    for (const std::size_t characters : {517U, 518U, 519U, 520U}) {
        const FilledSection section(R"(InfDir=X:\0000000000)", 24, R"(InfDir=X:\)", characters);
        WriteIni(section.content);
        const std::vector<std::string> directories = Directories();
        ASSERT_EQ(directories.size(), 25U) << characters;
        const std::size_t lost = characters > 518 ? characters - 518 : 0;
        EXPECT_EQ(directories.back(), R"(X:\)" + section.lastValue.substr(lost) + "\\") << characters;
    }
}

TEST_F(SetupIniLimits, The1022ndCharacterOfTheExcludesIsTheLastOneRead)
{
    for (const std::size_t characters : {1021U, 1022U, 1023U, 1024U}) {
        const FilledSection section("InfExclude=n100.inf", 50, "InfExclude=", characters);
        WriteIni(section.content);
        const std::vector<std::string> excludes = Excludes();
        ASSERT_EQ(excludes.size(), 51U) << characters;
        const std::size_t lost = characters > 1022 ? characters - 1022 : 0;
        EXPECT_EQ(excludes.back(), section.lastValue.substr(lost)) << characters;
    }
}

TEST_F(SetupIniLimits, DirectoriesAreAskedForWith260BytesAndOnceMoreWith520)
{
    WriteIni(FilledSection(R"(InfDir=X:\0000000000)", 60, "InfDir=", 1500).content);
    const SectionQuestions questions;
    static_cast<void>(Directories());
    EXPECT_THAT(questions.Asked(), ElementsAre(Question{"names of all sections", "", 260, SetupIniPath()},
                                               Question{"section", "Win732E", 260, SetupIniPath()},
                                               Question{"names of all sections", "", 520, SetupIniPath()},
                                               Question{"section", "Win732E", 520, SetupIniPath()}));
}

TEST_F(SetupIniLimits, ExcludesAreAskedForWith1024BytesOnce)
{
    WriteIni(FilledSection("InfExclude=n100.inf", 100, "InfExclude=", 2500).content);
    const SectionQuestions questions;
    static_cast<void>(Excludes());
    EXPECT_THAT(questions.Asked(), ElementsAre(Question{"names of all sections", "", 1024, SetupIniPath()},
                                               Question{"section", "Win732E", 1024, SetupIniPath()}));
}

// The read of the section names comes first, so that they are what a read that touches nothing leaves.

TEST_F(SetupIniLimits, DirectoriesComeFromWhatAReadThatFindsNothingLeaves)
{
    WriteIni("[InfDir=X:\\left]\r\nKey=1\r\n");
    const SectionQuestions questions(SectionQuestions::Sections::Missing);
    TraceCapture trace;
    EXPECT_THAT(Directories(), ElementsAre(R"(X:\left\)"));
    EXPECT_THAT(trace.Messages(), Contains("GetPrivateProfileSection() failed"));
    EXPECT_EQ(questions.Asked().size(), 2U) << "it is not asked for with a greater buffer";
}

TEST_F(SetupIniLimits, ExcludesComeFromWhatAReadThatFindsNothingLeaves)
{
    WriteIni("[InfExclude=left.inf]\r\nKey=1\r\n");
    const SectionQuestions questions(SectionQuestions::Sections::Missing);
    TraceCapture trace;
    EXPECT_THAT(Excludes(), ElementsAre("left.inf"));
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering - ReadInfExcludeFilesFromINI",
                                              "GetPrivateProfileSection() failed", "INFs to exclude:", "left.inf"));
}

TEST_F(SetupIniLimits, ModelLinesComeFromWhatAReadThatFindsNothingLeaves)
{
    const std::string inf = m_directory.At("tav1.inf");
    WriteFileBytes(inf, "[%D%=Nic, PCI\\VEN_1]\r\nKey=1\r\n[Strings]\r\nD=Left\r\n");
    const SectionQuestions questions(SectionQuestions::Sections::Missing);
    TraceCapture trace;
    EXPECT_EQ(ParseINFile("VEN_1", "Norda.NTamd64", inf.c_str()), 1);
    EXPECT_THAT(trace.Messages(), Contains("GetPrivateProfileSection() failed"));
    EXPECT_THAT(questions.Asked(), ElementsAre(Question{"names of all sections", "", 32767, inf},
                                               Question{"section", "Norda.NTamd64", 32767, inf}));
}

TEST_F(SetupIniLimits, ThePlatformLeavesNothingOfTheSectionNames)
{
    WriteIni("[InfDir=X:\\left]\r\nInfExclude=left.inf\r\n");
    EXPECT_THAT(Directories(), IsEmpty());
    EXPECT_THAT(Excludes(), IsEmpty());
}
