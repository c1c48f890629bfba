#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "ModelSection.h"

/// What the platform has answered about INF files and the setup INI, kept so that the same question need not be asked
/// again. An answer belongs to a file of one size and one write time.

struct FileStamp
{
    uint64_t bytes = 0;
    uint64_t writeTime = 0; ///< in the platform's own unit
    friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

/// One call of a private-profile function.
struct ProfileQuestion
{
    std::string_view section{};
    std::optional<std::string_view> key{}; ///< no value: the names of all keys
    std::string_view defaultText{};
    std::size_t bufferBytes = 0;
    bool wholeSection = false; ///< the section's lines are read; key and default text have no part in it
};

/// What the call returned and left in its buffer.
class ProfileAnswer
{
public:
    ProfileAnswer() = default;
    ProfileAnswer(uint32_t count, std::span<const char> buffer);

    friend bool operator==(const ProfileAnswer&, const ProfileAnswer&) = default;

    /// @return false for nothing and for the question's own default text: a call that failed answers no more.
    [[nodiscard]] bool TellsOfTheFile(std::string_view defaultText) const
    {
        return m_count != 0 && m_text != defaultText;
    }

    /// Fills a buffer of the question's size with what the call left there.
    /// @return the number that the call returned.
    uint32_t CopyTo(std::span<char> buffer) const;

private:
    uint32_t m_count = 0;
    std::string m_text; // up to the last character that is not NUL
};

/// The answers about one file.
class AnswersAboutFile
{
public:
    AnswersAboutFile(const FileStamp& stamp, bool isUtf16) : m_stamp(stamp), m_isUtf16(isUtf16) {}

    [[nodiscard]] const FileStamp& Stamp() const { return m_stamp; }
    /// @return true when the file begins with the little-endian UTF-16 mark.
    [[nodiscard]] bool IsUtf16() const { return m_isUtf16; }

    /// @param ask  Called for the answer when it is not known: the first time, and the second time too when the first
    ///             answer may be that of a call that failed. One failure must not cost all later devices and passes.
    /// @return the answer, valid until the next call.
    template <class Ask>
    const ProfileAnswer& AnswerTo(const ProfileQuestion& question, Ask ask)
    {
        const QuestionView view = ViewOf(question);
        const auto found = m_answers.find(view);
        if (found != m_answers.end() && found->second.isSure) {
            return found->second.answer;
        }
        ProfileAnswer answer = ask();
        const bool isSure =
            answer.TellsOfTheFile(question.defaultText) || (found != m_answers.end() && found->second.answer == answer);
        Kept<ProfileAnswer> kept{.answer = std::move(answer), .isSure = isSure};
        return m_answers.insert_or_assign(KeptQuestion(view), std::move(kept)).first->second.answer;
    }

    /// The same for a model section of an INF, which lives as long as somebody holds it.
    template <class Read>
    std::shared_ptr<const ModelSection> ModelSectionOf(std::string_view name, Read read)
    {
        const auto found = m_modelSections.find(name);
        if (found != m_modelSections.end() && found->second.isSure) {
            return found->second.answer;
        }
        std::shared_ptr<const ModelSection> section = read();
        const bool isSure = section->WasRead() || found != m_modelSections.end();
        m_modelSections.insert_or_assign(std::string(name), Kept<std::shared_ptr<const ModelSection>>{section, isSure});
        return section;
    }

private:
    template <class Answer>
    struct Kept
    {
        Answer answer;
        bool isSure = false; ///< told of the file, or came twice
    };

    // Section, key, default text, buffer size, and whether it is a question for a whole section.
    template <class Text>
    using QuestionOf = std::tuple<Text, std::optional<Text>, Text, std::size_t, bool>;
    using QuestionView = QuestionOf<std::string_view>;
    using KeptQuestion = QuestionOf<std::string>;

    static QuestionView ViewOf(const ProfileQuestion& question)
    {
        return {question.section, question.key, question.defaultText, question.bufferBytes, question.wholeSection};
    }
    static const QuestionView& ViewOf(const QuestionView& question) { return question; }
    static QuestionView ViewOf(const KeptQuestion& question)
    {
        const auto& [section, key, defaultText, bufferBytes, wholeSection] = question;
        return {section, key ? std::optional<std::string_view>(*key) : std::nullopt, defaultText, bufferBytes,
                wholeSection};
    }

    /// Kept questions and views of questions in one order.
    struct QuestionOrder
    {
        using is_transparent = void;
        template <class Left, class Right>
        bool operator()(const Left& left, const Right& right) const
        {
            return ViewOf(left) < ViewOf(right);
        }
    };

    FileStamp m_stamp;
    bool m_isUtf16;
    std::map<KeptQuestion, Kept<ProfileAnswer>, QuestionOrder> m_answers;
    std::map<std::string, Kept<std::shared_ptr<const ModelSection>>, std::less<>> m_modelSections;
};

/// The answers about all files.
class FileAnswers
{
public:
    /// @param path     The file's full path; two spellings of it count as two files.
    /// @param stamp    The file as it stands now: answers from before it changed are forgotten.
    /// @param isUtf16  Called for a file that is new or has changed, to open and read it. Gives std::optional<bool>:
    ///                 whether it begins with the UTF-16 mark, or no value when it cannot be read. Such a file is not
    ///                 kept, since it may become readable without changing.
    /// @return the answers about the file, valid until the next call for it; null when it is not kept.
    template <class IsUtf16>
    AnswersAboutFile* About(std::string_view path, const FileStamp& stamp, IsUtf16 isUtf16)
    {
        const auto found = m_files.find(path);
        if (found != m_files.end() && found->second.Stamp() == stamp) {
            return &found->second;
        }
        if (found != m_files.end()) {
            m_files.erase(found);
        }
        const std::optional<bool> mark = isUtf16();
        return mark ? &m_files.emplace(path, AnswersAboutFile(stamp, *mark)).first->second : nullptr;
    }

private:
    struct PathHash
    {
        using is_transparent = void;
        std::size_t operator()(std::string_view path) const { return std::hash<std::string_view>{}(path); }
    };
    std::unordered_map<std::string, AnswersAboutFile, PathHash, std::equal_to<>> m_files;
};
