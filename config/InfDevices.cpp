#include "InfDevices.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "InfModelLine.h"

namespace {
constexpr std::size_t kDescriptionKeyBytes = 260;

/// Copies as much of `text` as fits, with a terminator.
void CopyCut(std::string_view text, std::span<char> buffer)
{
    const std::string_view fitting = text.substr(0, buffer.size() - 1);
    *std::ranges::copy(fitting, buffer.begin()).out = '\0';
}

/// @return the text before the equals sign of the matched line, without a match that of the last line; empty when it
///         does not fit.
std::string DescriptionKeyOf(const KitSearch& search, const ModelSection& section, std::optional<std::size_t> match)
{
    const std::size_t walked = match ? *match + 1 : section.LineCount();
    if (walked != 0) {
        // Only the first bounded copy of a process has an effect, so one step for each section is enough.
        search.log.Reached(SearchStep::DescriptionCopied);
    }
    std::string key;
    for (std::size_t line = 0; line < walked; ++line) {
        const std::string_view text = section.DescriptionKey(line);
        const bool fits = text.size() < kDescriptionKeyBytes;
        if (!fits) {
            // Reached for every line up to the last one walked, although only that one's text is used.
            search.log.Reached(SearchStep::DescriptionTooLong);
        }
        if (line + 1 == walked && fits) {
            key = text;
        }
    }
    return key;
}

void LookUpDescription(const KitSearch& search, const std::string& descriptionKey, const std::string& infPath)
{
    const DescriptionLookup lookup = DescriptionFor(descriptionKey);
    search.log.Reached(SearchStep::DescriptionSought);
    search.source.ReadText("Strings", lookup.name.c_str(), lookup.fallback.c_str(), search.deviceDescription, infPath);
}
} // namespace

bool ListsDevice(const KitSearch& search, const std::string& key, const char* sectionName, const std::string& infPath)
{
    const std::string_view name = sectionName == nullptr ? std::string_view{} : std::string_view(sectionName);
    search.log.Say("Entering - ParseINFile");
    search.log.Say("ParseINFFile(): key=", key, ", section name=", name, ", file name=", infPath, "\n");
    if (sectionName == nullptr) {
        return false;
    }
    const std::shared_ptr<const ModelSection> section = search.source.ReadModelSection(sectionName, infPath);
    if (!section->WasRead()) {
        search.log.Say("GetPrivateProfileSection() failed");
    }
    const std::optional<std::size_t> match = section->LineOf(key);
    search.log.SectionSearched(infPath, name, *section, match);
    const std::string descriptionKey = DescriptionKeyOf(search, *section, match);
    if (match) {
        CopyCut(section->HardwareId(*match), search.matchedHardwareId);
        search.log.Say("matched:", key, "\n");
    }
    LookUpDescription(search, descriptionKey, infPath);
    return match.has_value();
}

bool BeginsWithUtf16Mark(const KitSearch& search, const std::string& path)
{
    search.log.Say("Entering - IsFileUnicode");
    const FileMark mark = search.source.MarkOf(path);
    if (!mark.opened) {
        search.log.Say("unable to open file: ", path, "\n");
        return false;
    }
    if (!mark.read) {
        search.log.Say("unable to read from file\n");
    }
    search.log.Say(mark.utf16 ? "file is Unicode\n" : "file is not Unicode\n");
    return mark.utf16;
}
