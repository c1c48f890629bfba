#include "ProfileReading.h"

#include <windows.h>

#include <algorithm>
#include <vector>

#include "AnswerReuse.h"

namespace {
/// Fills the buffer with the answer to a question about a file: the platform's, or the one that it gave before.
/// @param ask  Asks the platform; fills a cleared buffer and returns the platform's number.
template <class Ask>
uint32_t Answer(const ProfileQuestion& question, std::span<char> buffer, const std::string& file, Ask ask)
{
    if (AnswersAboutFile* const answers = AnswersAbout(file)) {
        const auto askAndKeep = [&] {
            std::ranges::fill(buffer, '\0');
            const uint32_t count = ask();
            return ProfileAnswer(count, buffer);
        };
        return answers->AnswerTo(question, askAndKeep).CopyTo(buffer);
    }
    std::ranges::fill(buffer, '\0');
    return ask();
}

uint32_t AskForSection(const char* section, std::span<char> buffer, const std::string& file)
{
    const auto size = static_cast<DWORD>(buffer.size());
    // The names of all sections are read first and not used. What lies in the buffer after a section that the file does
    // not have is what these two calls together leave there.
    GetPrivateProfileStringA(nullptr, nullptr, nullptr, buffer.data(), size, file.c_str());
    return GetPrivateProfileSectionA(section, buffer.data(), size, file.c_str());
}
} // namespace

uint32_t ReadProfileText(const char* section, const char* key, const char* defaultText, std::span<char> buffer,
                         const std::string& file)
{
    ProfileQuestion question{.section = section, .defaultText = defaultText, .bufferBytes = buffer.size()};
    if (key != nullptr) {
        question.key = key;
    }
    return Answer(question, buffer, file, [&] {
        return GetPrivateProfileStringA(section, key, defaultText, buffer.data(), static_cast<DWORD>(buffer.size()),
                                        file.c_str());
    });
}

uint32_t ReadProfileSection(const char* section, std::span<char> buffer, const std::string& file)
{
    const ProfileQuestion question{.section = section, .bufferBytes = buffer.size(), .wholeSection = true};
    return Answer(question, buffer, file, [&] { return AskForSection(section, buffer, file); });
}

std::shared_ptr<const ModelSection> ReadModelSection(const char* section, const std::string& file)
{
    const auto read = [&] {
        std::vector<char> lines(kModelSectionBytes);
        const uint32_t count = AskForSection(section, lines, file);
        return std::make_shared<const ModelSection>(count, lines);
    };
    AnswersAboutFile* const answers = AnswersAbout(file);
    return answers == nullptr ? read() : answers->ModelSectionOf(section, read);
}
