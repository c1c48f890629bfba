#include "LegacyCommand.h"

#include <algorithm>

#include "TwoByteText.h"

namespace {
constexpr std::size_t kCommandLineChars = 999;

std::string HelperCommandLine(std::string_view device, std::string_view place, LeadByteTest isLeadByte)
{
    std::string line = "Rundll.exe Inst98.dll,EntryPoint ";
    line += device;
    line += " ";
    line += place;
    return std::string(CutToBytes(line, kCommandLineChars, isLeadByte));
}
} // namespace

std::string DriveAndDirectoryOf(std::string_view path, LeadByteTest isLeadByte)
{
    // One place after the last of them, 0 without any: std::string_view::npos wraps around.
    const std::size_t end = std::max(LastBackslash(path, isLeadByte) + 1, path.rfind('/') + 1);
    if (end != 0) {
        return CutToPathLimit(path.substr(0, end), isLeadByte);
    }
    return std::string(path.size() > 1 && path[1] == ':' ? path.substr(0, 2) : std::string_view());
}

std::string LegacyCommandLine(std::string_view matchedId, std::string_view infPath, LeadByteTest isLeadByte)
{
    return HelperCommandLine("PCI\\" + std::string(matchedId), infPath, isLeadByte);
}

std::string LegacyStagingCommandLine(std::string_view cabDirectory, LeadByteTest isLeadByte)
{
    return HelperCommandLine("noID", cabDirectory, isLeadByte);
}

std::string CutToPathLimit(std::string_view path, LeadByteTest isLeadByte)
{
    return std::string(CutToBytes(path, kLegacyPathChars, isLeadByte));
}
