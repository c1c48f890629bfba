#include "InfReader.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "AnswerReuse.h"
#include "DriverInstallRecord.h"
#include "InfModelLine.h"
#include "LangString.h"
#include "OrvSecure.h"
#include "ProfileReading.h"
#include "Trace.h"

std::array<char, 256> matchedHardwareId;
std::array<char, 260> deviceDescription;

namespace {
using DescriptionKey = std::array<char, 260>;

const char* TextOrEmpty(const char* text)
{
    return text == nullptr ? "" : text;
}

/// Copies as much of `text` as fits, with a terminator.
void CopyCut(std::string_view text, std::span<char> buffer)
{
    const std::string_view fitting = text.substr(0, buffer.size() - 1);
    *std::ranges::copy(fitting, buffer.begin()).out = '\0';
}

/// Looks for the first line whose hardware ID is `key`.
/// @param descriptionKey  Receives the text before the equals sign of that line, of the last line without a match;
///                        empty when it does not fit.
bool FindDevice(const ModelSection& section, const std::string& key, DescriptionKey& descriptionKey)
{
    const std::optional<std::size_t> match = section.LineOf(key);
    const std::size_t walked = match ? *match + 1 : section.LineCount();
    for (std::size_t line = 0; line < walked; ++line) {
        const std::string_view text = section.DescriptionKey(line);
        // The copy also reports a text that does not fit, on every line up to the last one walked.
        if (line + 1 == walked || text.size() >= descriptionKey.size()) {
            OrvSafeCopy("InfReader", __LINE__, descriptionKey.data(), descriptionKey.size(), std::string(text).c_str());
        }
    }
    if (!match) {
        return false;
    }
    CopyCut(section.HardwareId(*match), matchedHardwareId);
    Trace("matched:", key, "\n");
    return true;
}

void LookUpDescription(const DescriptionKey& descriptionKey, const std::string& infPath)
{
    const DescriptionLookup lookup = DescriptionFor(TextIn(descriptionKey));
    // The text is not shown from here; it is loaded with every look-up and the load stands in the trace.
    std::array<char, kMessageBytes> text{};
    LoadLangString(resourceModule, kStringRestorePoint, text.data(), kMessageBytes);
    ReadProfileText("Strings", lookup.name.c_str(), lookup.fallback.c_str(), deviceDescription, infPath);
}
} // namespace

int ParseINFile(const char* key, const char* sectionName, const char* infPath)
{
    const std::string keyText = TextOrEmpty(key);
    const std::string path = TextOrEmpty(infPath);
    Trace("Entering - ParseINFile");
    Trace("ParseINFFile(): key=", keyText, ", section name=", TextOrEmpty(sectionName), ", file name=", path, "\n");
    if (sectionName == nullptr) {
        return 0;
    }
    const std::shared_ptr<const ModelSection> section = ReadModelSection(sectionName, path);
    if (!section->WasRead()) {
        Trace("GetPrivateProfileSection() failed");
    }
    DescriptionKey descriptionKey{};
    const bool matched = FindDevice(*section, keyText, descriptionKey);
    LookUpDescription(descriptionKey, path);
    return matched ? 1 : 0;
}

int IsFileUnicode(const std::string& path)
{
    Trace("Entering - IsFileUnicode");
    const FileMark mark = MarkOf(path);
    if (!mark.opened) {
        Trace("unable to open file: ", path, "\n");
        return 0;
    }
    if (!mark.read) {
        Trace("unable to read from file\n");
    }
    Trace(mark.utf16 ? "file is Unicode\n" : "file is not Unicode\n");
    return mark.utf16 ? 1 : 0;
}
