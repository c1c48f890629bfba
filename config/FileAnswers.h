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

#include "KitSource.h"

/// What the platform has answered about INF files and the setup INI, kept so that the same question need not be asked
/// again. An answer belongs to a file of one size and one write time. One that a failed call would give as well
/// (nothing, or the question's default text) also belongs to one device: the file may be readable again for the next
/// one.

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

    /// @return false for nothing and for the question's own default text: a call that failed returns the same.
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

    /// @param device  Number of the device that the questions are asked for from here on.
    void AskFor(uint64_t device) { m_device = device; }

    [[nodiscard]] const FileStamp& Stamp() const { return m_stamp; }
    /// @return true when the file begins with the little-endian UTF-16 mark.
    [[nodiscard]] bool IsUtf16() const { return m_isUtf16; }

    /// @param ask  Called for the answer when it is not known. An answer that may be that of a failed call is known
    /// only
    ///             when it came twice in a row to the same device, and only to that device: one failure costs one
    ///             pass of one device, and failures that go on cost that device alone.
    /// @return the answer, valid until the next call.
    template <class Ask>
    const ProfileAnswer& AnswerTo(const ProfileQuestion& question, Ask ask)
    {
        const QuestionView view = ViewOf(question);
        const auto found = m_answers.find(view);
        if (found != m_answers.end() && IsKnown(found->second)) {
            return found->second.answer;
        }
        ProfileAnswer answer = ask();
        const bool cameTwice = WasForThisDevice(found, m_answers.end()) && found->second.answer == answer;
        const bool tells = answer.TellsOfTheFile(question.defaultText);
        return m_answers.insert_or_assign(KeptQuestion(view), KeptNow(std::move(answer), tells, cameTwice))
            .first->second.answer;
    }

    /// The same for a model section of an INF, which lives as long as somebody holds it.
    template <class Read>
    std::shared_ptr<const ModelSection> ModelSectionOf(std::string_view name, Read read)
    {
        const auto found = m_modelSections.find(name);
        if (found != m_modelSections.end() && IsKnown(found->second)) {
            return found->second.answer;
        }
        std::shared_ptr<const ModelSection> section = read();
        // What is kept and not known was not read either.
        const bool cameTwice = WasForThisDevice(found, m_modelSections.end());
        m_modelSections.insert_or_assign(std::string(name), KeptNow(section, section->WasRead(), cameTwice));
        return section;
    }

private:
    template <class Answer>
    struct Kept
    {
        Answer answer;
        bool tellsOfTheFile = false;
        bool cameTwice = false;
        uint64_t device = 0; ///< for which it was given last
    };

    template <class Position>
    [[nodiscard]] bool WasForThisDevice(Position found, Position end) const
    {
        return found != end && found->second.device == m_device;
    }

    template <class Answer>
    [[nodiscard]] bool IsKnown(const Kept<Answer>& kept) const
    {
        return kept.tellsOfTheFile || (kept.cameTwice && kept.device == m_device);
    }
    template <class Answer>
    Kept<Answer> KeptNow(Answer answer, bool tellsOfTheFile, bool cameTwice) const
    {
        return {std::move(answer), tellsOfTheFile, cameTwice, m_device};
    }

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
    uint64_t m_device = 0;
    std::map<KeptQuestion, Kept<ProfileAnswer>, QuestionOrder> m_answers;
    std::map<std::string, Kept<std::shared_ptr<const ModelSection>>, std::less<>> m_modelSections;
};

/// The answers about all files.
class FileAnswers
{
public:
    /// From here on the questions are asked for another device.
    void BeginDevice() { ++m_device; }

    /// @param path     The file's full path; two spellings of it count as two files.
    /// @param stamp    The file as it stands now: answers from before it changed are forgotten.
    /// @param isUtf16  Called for a file that is new or has changed, to open and read it. Gives std::optional<bool>:
    ///                 whether it begins with the UTF-16 mark, or no value when it cannot be read. Such a file is not
    ///                 kept, since it may become readable without changing.
    /// @return the answers about the file, valid until the next call for it; null when it is not kept.
    template <class IsUtf16>
    AnswersAboutFile* About(std::string_view path, const FileStamp& stamp, IsUtf16 isUtf16)
    {
        auto found = m_files.find(path);
        if (found != m_files.end() && found->second.Stamp() != stamp) {
            m_files.erase(found);
            found = m_files.end();
        }
        if (found == m_files.end()) {
            const std::optional<bool> mark = isUtf16();
            if (!mark) {
                return nullptr;
            }
            found = m_files.emplace(path, AnswersAboutFile(stamp, *mark)).first;
        }
        found->second.AskFor(m_device);
        return &found->second;
    }

private:
    struct PathHash
    {
        using is_transparent = void;
        std::size_t operator()(std::string_view path) const { return std::hash<std::string_view>{}(path); }
    };
    std::unordered_map<std::string, AnswersAboutFile, PathHash, std::equal_to<>> m_files;
    uint64_t m_device = 0;
};
