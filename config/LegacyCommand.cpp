#include "LegacyCommand.h"

namespace {
constexpr std::size_t kCommandLineChars = 999;

std::string HelperCommandLine(std::string_view device, std::string_view place)
{
    std::string line = "Rundll.exe Inst98.dll,EntryPoint ";
    line += device;
    line += " ";
    line += place;
    return line.substr(0, kCommandLineChars);
}
} // namespace

std::string DriveAndDirectoryOf(std::string_view path)
{
    const std::size_t slash = path.find_last_of("\\/");
    if (slash != std::string_view::npos) {
        return CutToPathLimit(std::string(path.substr(0, slash + 1)));
    }
    return std::string(path.size() > 1 && path[1] == ':' ? path.substr(0, 2) : std::string_view());
}

std::string LegacyCommandLine(std::string_view matchedId, std::string_view infPath)
{
    return HelperCommandLine("PCI\\" + std::string(matchedId), infPath);
}

std::string LegacyStagingCommandLine(std::string_view cabDirectory)
{
    return HelperCommandLine("noID", cabDirectory);
}

std::string CutToPathLimit(std::string path)
{
    path.resize(path.size() < kLegacyPathChars ? path.size() : kLegacyPathChars);
    return path;
}
