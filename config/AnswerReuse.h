#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "FileAnswers.h"

/// Reuse of the platform's answers about INF files and the setup INI while many devices are searched for in the same
/// files. Without an AnswerReuse object every reading asks the platform. All of it belongs to the install thread.

/// While an object of this type lives, a question about a file that was asked before is answered as the platform
/// answered it then, unless the file's size or write time has changed since, or the answer was nothing or only the
/// default and another device has begun. Destroying it discards the answers.
class AnswerReuse
{
public:
    AnswerReuse();
    ~AnswerReuse();
    AnswerReuse(const AnswerReuse&) = delete;
    AnswerReuse& operator=(const AnswerReuse&) = delete;

    /// From here on another device is searched for.
    void BeginDevice() { m_answers.BeginDevice(); }

private:
    FileAnswers m_answers;
    FileAnswers* m_before;
};

/// @return the mark of a file, as it was read when answers about the file began to be kept, otherwise as it is now.
[[nodiscard]] FileMark MarkOf(const std::string& path);

/// While an object of this type lives, one file counts as unchanged: whoever reads a directory has its size and write
/// time already, and need not look for them with every question. Visits of one file are not nested.
class FileVisit
{
public:
    /// @param path   Full path of the file.
    /// @param entry  Its entry in the directory, just read.
    FileVisit(std::string path, const WIN32_FIND_DATAA& entry);
    ~FileVisit();
    FileVisit(const FileVisit&) = delete;
    FileVisit& operator=(const FileVisit&) = delete;

private:
    friend AnswersAboutFile* AnswersAbout(const std::string& path);
    friend FileMark MarkOf(const std::string& path);

    std::string m_path;
    std::optional<FileMark> m_mark; ///< what this visit itself has read
    AnswersAboutFile* m_answers = nullptr;
    const FileVisit* m_before;
};

/// @return the answers about a file as it stands now. Null when answers are not reused, and for a file that is missing,
///         cannot be read or is only a link: then the platform is to be asked.
[[nodiscard]] AnswersAboutFile* AnswersAbout(const std::string& path);

struct AnswersInUseRecord
{
    FileAnswers* answers = nullptr;   ///< those of the living AnswerReuse; null when there is none
    const FileVisit* visit = nullptr; ///< the living FileVisit
};

/// Written by the objects above.
extern AnswersInUseRecord answersInUse;
