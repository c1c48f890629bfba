#include "InfReader.h"

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "DriverInstallRecord.h"
#include "Handles.h"
#include "InfModelLine.h"
#include "IniLines.h"
#include "LangString.h"
#include "OrvSecure.h"
#include "ProfileReading.h"
#include "Trace.h"

std::array<char, 256> matchedHardwareId;
std::array<char, 260> deviceDescription;

namespace {
constexpr std::size_t kSectionBytes = 32767;
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

/// Walks the lines up to the first one whose hardware ID is `key`.
/// @param descriptionKey  Receives the text before the equals sign of the last line walked; empty when it does not fit.
bool FindDevice(std::span<const char> section, const std::string& key, DescriptionKey& descriptionKey)
{
    for (const std::string_view line : LinesOf(section)) {
        const ModelLine parts = ParseModelLine(line);
        const std::string text(parts.descriptionKey.value_or(""));
        OrvSafeCopy("InfReader", __LINE__, descriptionKey.data(), descriptionKey.size(), text.c_str());
        if (parts.hardwareId && EqualsIgnoringCase(*parts.hardwareId, key)) {
            CopyCut(*parts.hardwareId, matchedHardwareId);
            Trace("matched:" + key + "\n");
            return true;
        }
    }
    return false;
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
    Trace("ParseINFFile(): key=" + keyText + ", section name=" + TextOrEmpty(sectionName) + ", file name=" + path +
          "\n");
    if (sectionName == nullptr) {
        return 0;
    }
    std::vector<char> section(kSectionBytes);
    if (ReadProfileSection(sectionName, section, path) == 0) {
        Trace("GetPrivateProfileSection() failed");
    }
    DescriptionKey descriptionKey{};
    const bool matched = FindDevice(section, keyText, descriptionKey);
    LookUpDescription(descriptionKey, path);
    return matched ? 1 : 0;
}

int IsFileUnicode(const std::string& path)
{
    Trace("Entering - IsFileUnicode");
    const UniqueFile file(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file.IsOpen()) {
        Trace("unable to open file: " + path + "\n");
        return 0;
    }
    std::array<unsigned char, 2> mark{};
    DWORD bytesRead = 0;
    if (ReadFile(file.Get(), mark.data(), mark.size(), &bytesRead, nullptr) == FALSE) {
        Trace("unable to read from file\n");
    }
    if (mark[0] == 0xFF && mark[1] == 0xFE) {
        Trace("file is Unicode\n");
        return 1;
    }
    Trace("file is not Unicode\n");
    return 0;
}
