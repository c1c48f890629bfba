#include <gmock/gmock.h>
#include <windows.h>

#include <algorithm>
#include <iostream>
#include <set>
#include <utility>

#include "FoundProfiles.h"
#include "GeneratedProfiles.h"
#include "MachineUse.h"
#include "Profile.h"
#include "ProfileQuestions.h"
#include "ScratchDirectory.h"
#include "TestFiles.h"

namespace {
constexpr char kUntouched = '\x5A';
constexpr std::size_t kGuardBytes = 16;
constexpr std::size_t kShownBytes = 300;
constexpr uint32_t kGeneratedFiles = 300;
constexpr uint32_t kFilesOfFullRun = 12000;

const char* CString(const std::optional<std::string>& text)
{
    return text ? text->c_str() : nullptr;
}

struct Answer
{
    uint32_t count = 0;
    std::string buffer; ///< all of it, and a few bytes after it
    bool operator==(const Answer&) const = default;
};

/// The answer that `ask` writes into a buffer of the question's size whose bytes are all known.
template <class Ask>
Answer Asked(const ProfileQuestion& question, Ask ask)
{
    Answer answer{.count = 0, .buffer = std::string(question.bufferBytes + kGuardBytes, kUntouched)};
    answer.count = ask(std::span(answer.buffer).first(question.bufferBytes));
    return answer;
}

Answer AnswerOfPlatform(const ProfileQuestion& question, const std::string& file)
{
    return Asked(question, [&](std::span<char> buffer) -> uint32_t {
        const auto size = static_cast<DWORD>(buffer.size());
        if (question.call == ProfileQuestion::Call::Section) {
            return GetPrivateProfileSectionA(CString(question.section), buffer.data(), size, file.c_str());
        }
        return GetPrivateProfileStringA(CString(question.section), CString(question.key), CString(question.defaultText),
                                        buffer.data(), size, file.c_str());
    });
}

Answer AnswerOfReader(const ProfileQuestion& question, const Profile& profile)
{
    return Asked(question, [&](std::span<char> buffer) {
        if (question.call == ProfileQuestion::Call::Section) {
            return profile.ReadSection(CString(question.section), buffer);
        }
        return profile.ReadString(CString(question.section), CString(question.key), CString(question.defaultText),
                                  buffer);
    });
}

/// An answer for a message: trailing untouched bytes are only counted.
std::string Shown(const Answer& answer)
{
    const std::size_t last = answer.buffer.find_last_not_of(kUntouched);
    const std::size_t written = last == std::string::npos ? 0 : last + 1;
    return std::to_string(answer.count) + " " + Quoted(answer.buffer.substr(0, std::min(written, kShownBytes))) +
           ", then " + std::to_string(answer.buffer.size() - written) + " untouched";
}

/// The dialect of the platform that this program runs on.
ProfileDialect DialectHere()
{
    return RunsInWine() ? ProfileDialect::Wine : ProfileDialect::Windows;
}

uint32_t FilesToGenerate()
{
    return GetEnvironmentVariableA("MORVIX_FULL_MATRIX", nullptr, 0) > 0 ? kFilesOfFullRun : kGeneratedFiles;
}

/// Whether the reader claims to be exact: in a code page with characters of two bytes it does not know how the others
/// of a Unicode file are narrowed.
bool IsExact(const std::string& content)
{
    CPINFO page{};
    GetCPInfo(CP_ACP, &page);
    const bool marked =
        content.starts_with("\xFF\xFE") || content.starts_with("\xFE\xFF") || content.starts_with("\xEF\xBB\xBF");
    return page.MaxCharSize != 2 || !marked;
}

std::string KindOf(const ProfileQuestion& question)
{
    if (question.call == ProfileQuestion::Call::Section) {
        return question.section ? "a section" : "no section";
    }
    if (question.section) {
        return question.key ? "a value" : "key names";
    }
    return question.key ? "a key alone" : "section names";
}

class PlatformAgreement : public testing::Test
{
protected:
    /// Asks the platform and the reader everything about one file.
    void Compare(const std::string& content)
    {
        if (!IsExact(content)) {
            return;
        }
        // The platform keeps what it has read of a name.
        const std::string file = m_directory.Path() + "\\" + std::to_string(m_files++) + ".ini";
        WriteFileBytes(file, content);
        const Profile profile(content, m_codePage, DialectHere());
        CompareFile(profile, content, file);
        WritePrivateProfileStringA(nullptr, nullptr, nullptr, file.c_str());
        DeleteFileA(file.c_str());
    }

    void CompareFile(const Profile& profile, const std::string& content, const std::string& file)
    {
        for (const ProfileQuestion& question : QuestionsAbout(content)) {
            const Answer platform = AnswerOfPlatform(question, file);
            const Answer reader = AnswerOfReader(question, profile);
            ++m_inputs;
            m_asked.insert({KindOf(question), question.bufferBytes});
            if (platform != reader) {
                ++m_differing;
                std::cout << "file " << Quoted(content.substr(0, kShownBytes)) << "\n  " << Describe(question)
                          << "\n  platform " << Shown(platform) << "\n  reader   " << Shown(reader) << "\n";
            }
        }
    }

    [[nodiscard]] std::string Path(const std::string& name) const { return m_directory.Path() + "\\" + name; }

    CodePage m_codePage{GetACP()};
    std::size_t m_inputs = 0;
    std::size_t m_differing = 0;
    std::set<std::pair<std::string, uint32_t>> m_asked; ///< kinds of questions with the buffers' sizes

private:
    ScratchDirectory m_directory;
    std::size_t m_files = 0;
};
} // namespace

TEST_F(PlatformAgreement, EveryAnswerAboutGeneratedFilesIsThePlatformsToTheByte)
{
    for (uint32_t number = 0; number < FilesToGenerate(); ++number) {
        Compare(GeneratedProfile(number));
    }
    EXPECT_EQ(m_differing, 0u) << "of " << m_inputs;
    EXPECT_GE(m_inputs, 20000u);
    for (const char* const kind : {"a section", "no section", "a value", "key names", "section names", "a key alone"}) {
        for (const uint32_t size : kProgramBufferBytes) {
            EXPECT_TRUE(m_asked.contains({kind, size})) << kind << ", " << size;
        }
    }
}

TEST_F(PlatformAgreement, EveryAnswerAboutFilesThatTheFuzzerFoundIsThePlatformsToTheByte)
{
    for (const std::string_view content : FoundProfiles()) {
        Compare(std::string(content));
    }
    EXPECT_EQ(m_differing, 0u) << "of " << m_inputs;
}

TEST_F(PlatformAgreement, AMissingFileReadsAsAnEmptyOne)
{
    CompareFile(Profile("", m_codePage, DialectHere()), "", Path("missing.ini"));
    EXPECT_EQ(m_differing, 0u) << "of " << m_inputs;
}
