#include "PlatformView.h"

#include <windows.h>

#include <sstream>
#include <vector>

#include "OwnInfs.h"

namespace {
std::string Value(const std::string& path, const char* section, const char* key)
{
    std::vector<char> text(1000);
    GetPrivateProfileStringA(section, key, "", text.data(), static_cast<DWORD>(text.size()), path.c_str());
    return text.data();
}
} // namespace

Verdict VerdictByThePlatform(const std::string& path, const std::string& deviceId)
{
    if (Value(path, "Version", "Signature") != "$Windows NT$") {
        return Verdict::Refused;
    }
    // The files of these tests name their maker in this one way.
    if (!Value(path, "Manufacturer", "%Mfg%").starts_with("Norda,")) {
        return Verdict::NotOurs;
    }
    std::vector<char> section(32767);
    const DWORD size =
        GetPrivateProfileSectionA(kModelSection, section.data(), static_cast<DWORD>(section.size()), path.c_str());
    const std::string lines(section.data(), size);
    std::istringstream text(lines);
    for (std::string line; std::getline(text, line, '\0');) {
        // The rest of a line is ignored.
        if (line.substr(0, 1999).ends_with("PCI\\" + deviceId)) {
            return Verdict::Serves;
        }
    }
    return Verdict::Stored;
}
