#include "KeptAnswers.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>
#include <utility>

namespace {
enum class QuestionKind : char
{
    Value = 'v',
    KeyNames = 'k',
    Section = 's',
    ModelSection = 'm',
};

/// Texts of a profile call end at their first NUL, so one between them keeps two questions apart.
void Compose(std::string& question, QuestionKind kind, std::size_t bufferBytes,
             std::initializer_list<std::string_view> texts)
{
    question.assign(1, static_cast<char>(kind));
    question += std::to_string(bufferBytes);
    for (const std::string_view text : texts) {
        question += '\0';
        question += text;
    }
}

std::string_view WithoutTrailingNuls(std::span<const char> buffer)
{
    const std::string_view text(buffer.data(), buffer.size());
    return text.substr(0, text.find_last_not_of('\0') + 1);
}
} // namespace

/// Tells the owner which file it has come to.
class KeptAnswers::KeptListing final : public InfListing
{
public:
    KeptListing(KeptAnswers& owner, std::string directoryPath, std::unique_ptr<InfListing> listing)
        : m_owner(owner), m_directoryPath(std::move(directoryPath)), m_listing(std::move(listing))
    {
    }
    ~KeptListing() override { m_owner.m_entry = {}; }
    KeptListing(const KeptListing&) = delete;
    KeptListing& operator=(const KeptListing&) = delete;

    [[nodiscard]] const InfEntry* Next() override
    {
        m_owner.m_entry = {};
        const InfEntry* const entry = m_listing->Next();
        if (entry != nullptr) {
            m_owner.m_entry.path = m_directoryPath + entry->name;
            m_owner.m_entry.stamp = entry->stamp;
        }
        return entry;
    }

private:
    KeptAnswers& m_owner;
    std::string m_directoryPath;
    std::unique_ptr<InfListing> m_listing;
};

template <class Ask, class IsFromFile>
const KeptAnswers::Answer& KeptAnswers::AnswerTo(File& file, Ask ask, IsFromFile isFromFile)
{
    Kept& kept = file.answers[m_question];
    const bool wasForThisDevice = kept.device == m_device;
    if (kept.couldOnlyComeFromFile || (kept.cameTwice && wasForThisDevice)) {
        return kept.answer;
    }
    Answer answer = ask();
    kept.cameTwice = wasForThisDevice && answer.IsLike(kept.answer);
    kept.couldOnlyComeFromFile = isFromFile(answer);
    kept.device = m_device;
    kept.answer = std::move(answer);
    return kept.answer;
}

template <class Ask>
uint32_t KeptAnswers::Fill(File& file, std::span<char> buffer, std::string_view defaultText, Ask ask)
{
    const auto askSource = [&] {
        const uint32_t count = ask();
        return Answer{.count = count, .text = std::string(WithoutTrailingNuls(buffer)), .section = nullptr};
    };
    const Answer& answer =
        AnswerTo(file, askSource, [&](const Answer& given) { return given.count != 0 && given.text != defaultText; });
    std::ranges::fill(std::ranges::copy(answer.text, buffer.begin()).out, buffer.end(), '\0');
    return answer.count;
}

uint32_t KeptAnswers::ReadText(const char* section, const char* key, const char* defaultText, std::span<char> buffer,
                               const std::string& file)
{
    const auto ask = [&] { return m_source.ReadText(section, key, defaultText, buffer, file); };
    File* const kept = Find(file);
    if (kept == nullptr) {
        return ask();
    }
    Compose(m_question, key == nullptr ? QuestionKind::KeyNames : QuestionKind::Value, buffer.size(),
            {section, key == nullptr ? "" : key, defaultText});
    return Fill(*kept, buffer, defaultText, ask);
}

uint32_t KeptAnswers::ReadSection(const char* section, std::span<char> buffer, const std::string& file)
{
    const auto ask = [&] { return m_source.ReadSection(section, buffer, file); };
    File* const kept = Find(file);
    if (kept == nullptr) {
        return ask();
    }
    Compose(m_question, QuestionKind::Section, buffer.size(), {section});
    return Fill(*kept, buffer, "", ask);
}

std::shared_ptr<const ModelSection> KeptAnswers::ReadModelSection(const char* section, const std::string& file)
{
    const auto ask = [&] { return m_source.ReadModelSection(section, file); };
    File* const kept = Find(file);
    if (kept == nullptr) {
        return ask();
    }
    Compose(m_question, QuestionKind::ModelSection, 0, {section});
    return AnswerTo(
               *kept, [&] { return Answer{.count = 0, .text = {}, .section = ask()}; },
               [](const Answer& given) { return given.section->WasRead(); })
        .section;
}

FileMark KeptAnswers::MarkOf(const std::string& file)
{
    std::optional<FileMark> mark;
    const File* const kept = Find(file, &mark);
    if (kept != nullptr) {
        return {.opened = true, .read = true, .utf16 = kept->isUtf16};
    }
    // A file that could not be read a moment ago is not tried again.
    return mark ? *mark : m_source.MarkOf(file);
}

std::unique_ptr<InfListing> KeptAnswers::List(const std::string& directoryPath)
{
    std::unique_ptr<InfListing> listing = m_source.List(directoryPath);
    return listing ? std::make_unique<KeptListing>(*this, directoryPath, std::move(listing)) : nullptr;
}

KeptAnswers::File* KeptAnswers::Find(const std::string& path, std::optional<FileMark>* mark)
{
    if (path != m_entry.path) {
        const std::optional<FileStamp> stamp = m_source.StampOf(path);
        return stamp ? FindWithStamp(path, *stamp, mark) : nullptr;
    }
    if (!std::exchange(m_entry.isLookedUp, true) && m_entry.stamp) {
        m_entry.file = FindWithStamp(path, *m_entry.stamp, mark);
    }
    return m_entry.file;
}

KeptAnswers::File* KeptAnswers::FindWithStamp(const std::string& path, const FileStamp& stamp,
                                              std::optional<FileMark>* mark)
{
    auto found = m_files.find(path);
    if (found != m_files.end() && found->second.stamp != stamp) {
        m_files.erase(found);
        found = m_files.end();
    }
    if (found == m_files.end()) {
        const FileMark readNow = m_source.MarkOf(path);
        if (mark != nullptr) {
            *mark = readNow;
        }
        if (!readNow.read) {
            return nullptr;
        }
        found = m_files.emplace(path, File{.stamp = stamp, .isUtf16 = readNow.utf16, .answers = {}}).first;
    }
    return &found->second;
}
