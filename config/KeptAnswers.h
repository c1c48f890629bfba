#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

#include "KitSource.h"

/// A source that answers a question again as it was answered before, because many devices are searched for in the same
/// files. It lives as long as one walk over the devices. An answer belongs to a file of one size and one write time.
/// One that a failed call would give as well (nothing, or the question's own default text) also belongs to one device,
/// and counts only when it came twice in a row: one failure costs one pass of one device, and failures that go on cost
/// that device alone.
class KeptAnswers final : public KitSource
{
public:
    /// @param source  Asked for what is not known; outlives this object. Nothing is kept of a file that it has no stamp
    ///                for or whose mark it cannot read: such a file may become readable without changing.
    explicit KeptAnswers(KitSource& source) : m_source(source) {}
    ~KeptAnswers() override = default;
    KeptAnswers(const KeptAnswers&) = delete;
    KeptAnswers& operator=(const KeptAnswers&) = delete;

    void BeginDevice() override { ++m_device; }
    uint32_t ReadText(const char* section, const char* key, const char* defaultText, std::span<char> buffer,
                      const std::string& file) override;
    uint32_t ReadSection(const char* section, std::span<char> buffer, const std::string& file) override;
    [[nodiscard]] std::shared_ptr<const ModelSection> ReadModelSection(const char* section,
                                                                       const std::string& file) override;
    /// @return the mark as it was read when answers about the file began to be kept, otherwise as it is now.
    [[nodiscard]] FileMark MarkOf(const std::string& file) override;
    [[nodiscard]] std::optional<FileStamp> StampOf(const std::string& file) override { return m_source.StampOf(file); }
    /// Until the next entry is asked for, an entry's file counts as unchanged: the listing has just brought its stamp.
    /// The listing must not outlive this object, and there is one at a time.
    [[nodiscard]] std::unique_ptr<InfListing> List(const std::string& directoryPath) override;

private:
    class KeptListing;

    struct Answer
    {
        uint32_t count = 0;
        std::string text; ///< of the buffer, up to its last character that is not NUL
        std::shared_ptr<const ModelSection> section;

        /// What a failed call would give as well is alike when it is given twice.
        [[nodiscard]] bool IsLike(const Answer& other) const { return text == other.text; }
    };
    struct Kept
    {
        Answer answer;
        bool couldOnlyComeFromFile = false;
        bool cameTwice = false;
        uint64_t device = 0; ///< for which it was given last; 0 for none
    };
    struct File
    {
        FileStamp stamp;
        bool isUtf16 = false;
        std::unordered_map<std::string, Kept> answers; ///< by the question
    };
    /// The file that a listing has come to.
    struct Entry
    {
        std::string path;
        std::optional<FileStamp> stamp;
        bool isLookedUp = false; ///< from then on `file` counts
        File* file = nullptr;
    };

    /// @param mark  Receives the file's mark when it is read here.
    /// @return what is kept about the file as it is now; null when nothing can be.
    File* Find(const std::string& path, std::optional<FileMark>* mark = nullptr);
    File* FindWithStamp(const std::string& path, const FileStamp& stamp, std::optional<FileMark>* mark);

    /// @param isFromFile  Whether an answer could only come from the file.
    /// @return the answer to m_question, valid until the next call.
    template <class Ask, class IsFromFile>
    const Answer& AnswerTo(File& file, Ask ask, IsFromFile isFromFile);

    /// Asks for what a call leaves in a buffer, or fills the buffer with what it left before.
    template <class Ask>
    uint32_t Fill(File& file, std::span<char> buffer, std::string_view defaultText, Ask ask);

    KitSource& m_source;
    std::unordered_map<std::string, File> m_files;
    Entry m_entry;
    std::string m_question; ///< the one being asked; a member so that its room is used again
    uint64_t m_device = 1;
};
