// Stands in for the system's runner of libraries, Rundll.exe, which starts the legacy install helper: journals its
// command line, its current directory, and the instance that "RegPCIpath" names at that moment.

#include <windows.h>

#include <array>
#include <string>

#include "Handles.h"
#include "Journal.h"

namespace {
std::string InstancePath()
{
    HKEY opened = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, R"(SOFTWARE\Norda\MSI)", 0, KEY_READ, &opened) != ERROR_SUCCESS) {
        return "<none>";
    }
    const UniqueRegKey key(opened);
    std::array<char, 512> text{};
    DWORD bytes = text.size() - 1;
    const LSTATUS status =
        RegQueryValueExA(key.get(), "RegPCIpath", nullptr, nullptr, reinterpret_cast<BYTE*>(text.data()), &bytes);
    return status == ERROR_SUCCESS ? text.data() : "<none>";
}
} // namespace

int main()
{
    std::array<char, MAX_PATH> directory{};
    GetCurrentDirectoryA(directory.size(), directory.data());
    WriteJournal("Rundll [" + std::string(GetCommandLineA()) + "] in [" + directory.data() + "] for [" +
                 InstancePath() + "]");
    return 0;
}
