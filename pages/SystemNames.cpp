#include "SystemNames.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {
constexpr std::array kNames = std::to_array<std::pair<std::string_view, std::string_view>>({
    {"WinXP32", "Windows XP"},
    {"WinXP64", "Windows XP Itanium"},
    {"WinXP32E", "Windows XP x64"},
    {"WinSrv2K332", "Server 2003"},
    {"WinSrv2K364", "Server 2003 Itanium"},
    {"WinSrv2K332E", "Server 2003 x64"},
    {"WinVista32", "Windows Vista"},
    {"WinVista32E", "Windows Vista x64"},
    {"WinSrv2K832", "Server 2008"},
    {"WinSrv2K832E", "Server 2008 x64"},
    {"WinSrv2K864", "Server 2008 Itanium"},
    {"Win732", "Windows 7"},
    {"Win732E", "Windows 7 x64"},
    {"WinSrv2K8R232E", "Server 2008 R2"},
    {"WinSrv2K8R264", "Server 2008 R2 Itanium"},
    {"Win832", "Windows 8"},
    // Later systems report 6.2 to the installer.
    {"Win832E", "Windows 8, Server 2012 or later, x64"},
});
} // namespace

std::string_view NameOfSystem(std::string_view section)
{
    const auto* const row = std::ranges::find(kNames, section, &std::pair<std::string_view, std::string_view>::first);
    return row == kNames.end() ? section : row->second;
}
