#include "OpenFolder.h"

#include <windows.h>
// sddl.h needs windows.h first.
#include <sddl.h>

#include <filesystem>
#include <stdexcept>

#include "ChildTask.h"
#include "Environment.h"
#include "Handles.h"
#include "ScratchDirectory.h"

namespace {
constexpr DWORD kLimit = 20000;
}

OpenFolder::OpenFolder()
    : m_path(WindowsDirectory().substr(0, 2) + "\\morvix-proof-" + std::to_string(GetCurrentProcessId()))
{
    // Everybody has all rights, also on what is made in it.
    void* made = nullptr;
    if (ConvertStringSecurityDescriptorToSecurityDescriptorA("D:(A;OICI;GA;;;WD)", SDDL_REVISION_1, &made, nullptr) ==
        FALSE) {
        throw std::runtime_error("no rights for everybody, error " + std::to_string(GetLastError()));
    }
    const std::unique_ptr<void, LocalMemoryCloser> descriptor(made);
    SECURITY_ATTRIBUTES attributes{sizeof(attributes), descriptor.get(), FALSE};
    if (CreateDirectoryA(m_path.c_str(), &attributes) == FALSE) {
        throw std::runtime_error("cannot make " + m_path + ", error " + std::to_string(GetLastError()));
    }
    CopyTree(DistFolder(), Kit());
    CopyFileTo(OwnProgram(), Program());
}

OpenFolder::~OpenFolder()
{
    // A copy of this program that has left its report may still be about to end.
    std::error_code inUse;
    for (const DWORD start = GetTickCount(); GetTickCount() - start < kLimit; Sleep(50)) {
        std::filesystem::remove_all(m_path, inUse);
        if (!inUse) {
            break;
        }
    }
}
