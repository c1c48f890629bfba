#include "MountedDisc.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <stdexcept>

#include "EntryPoints.h"
#include "IsoImage.h"
#include "Machine.h"
#include "MachineUse.h"
#include "ScratchDirectory.h"
#include "SystemLibrary.h"
#include "WideText.h"

namespace {
// virtdisk.h shows these to programs for Windows 7 and later only.
struct StorageType
{
    ULONG device;
    GUID vendor;
};
constexpr StorageType kIso = {1, {0xEC984AEC, 0xA0F9, 0x47E9, {0x90, 0x1F, 0x71, 0x41, 0x5A, 0x66, 0x34, 0x5B}}};
constexpr int kAccessRead = 0x000D0000;
constexpr int kAttachReadOnly = 1;
using OpenVirtualDiskFn = DWORD(WINAPI*)(const StorageType* type, PCWSTR path, int access, int flags, void* parameters,
                                         HANDLE* disc);
using AttachVirtualDiskFn = DWORD(WINAPI*)(HANDLE disc, PSECURITY_DESCRIPTOR rights, int flags, ULONG ofProvider,
                                           void* parameters, OVERLAPPED* overlapped);
using GetVirtualDiskPhysicalPathFn = DWORD(WINAPI*)(HANDLE disc, ULONG* bytes, PWSTR path);

// The letter comes when the system has read the disc.
constexpr DWORD kLimit = 60000;

template <class Fn>
Fn Find(const UniqueLibrary& library, const char* name)
{
    const Fn entry = library ? FindEntry<Fn>(library.get(), name) : nullptr;
    if (entry == nullptr) {
        throw std::runtime_error(std::string("this system lacks ") + name);
    }
    return entry;
}

void Expect(DWORD status, const char* what)
{
    if (status != ERROR_SUCCESS) {
        throw std::runtime_error(std::string(what) + " fails, error " + std::to_string(status));
    }
}

/// What the system calls a device such as "CdRom1" or a drive such as "X:".
std::wstring DeviceBehind(const std::wstring& name)
{
    std::array<wchar_t, MAX_PATH> device{};
    QueryDosDeviceW(name.c_str(), device.data(), device.size());
    return device.data();
}

/// @return the drive that shows the device; empty when none does.
std::string DriveOf(const std::wstring& device)
{
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
        const std::string drive = {letter, ':'};
        if (!device.empty() && DeviceBehind(Wide(drive)) == device &&
            GetFileAttributesA((drive + "\\").c_str()) != INVALID_FILE_ATTRIBUTES) {
            return drive;
        }
    }
    return {};
}
} // namespace

std::optional<std::string> MountedDisc::WhyNot()
{
    if (RunsInWine()) {
        return "Wine mounts no images of discs: use a Windows";
    }
    const SystemNumbers own = OwnVersionOfTheSystem();
    if (own.major < 6 || (own.major == 6 && own.minor < 2)) {
        return "this system mounts no images of discs: use Windows 8 or later";
    }
    return std::nullopt;
}

MountedDisc::MountedDisc(const std::string& image)
{
    const UniqueLibrary library = LoadSystemLibrary("virtdisk.dll");
    HANDLE opened = nullptr;
    Expect(Find<OpenVirtualDiskFn>(library, "OpenVirtualDisk")(&kIso, Wide(image).c_str(), kAccessRead, 0, nullptr,
                                                               &opened),
           "OpenVirtualDisk");
    m_disc.reset(opened);
    Expect(
        Find<AttachVirtualDiskFn>(library, "AttachVirtualDisk")(opened, nullptr, kAttachReadOnly, 0, nullptr, nullptr),
        "AttachVirtualDisk");
    std::array<wchar_t, MAX_PATH> path{};
    ULONG bytes = sizeof(path);
    Expect(Find<GetVirtualDiskPhysicalPathFn>(library, "GetVirtualDiskPhysicalPath")(opened, &bytes, path.data()),
           "GetVirtualDiskPhysicalPath");
    // "\\.\CDROM1"
    const std::wstring physical = path.data();
    const std::wstring device = DeviceBehind(physical.substr(physical.rfind(L'\\') + 1));
    for (const DWORD start = GetTickCount(); m_drive.empty() && GetTickCount() - start < kLimit; Sleep(50)) {
        m_drive = DriveOf(device);
    }
    if (m_drive.empty()) {
        throw std::runtime_error("the disc has no drive letter");
    }
}

std::string DiscOf(const std::string& folder)
{
    std::vector<DiscFile> files;
    const std::filesystem::path above = std::filesystem::path(folder).parent_path();
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) {
            files.push_back(
                {entry.path().lexically_relative(above).generic_string(), ReadFileBytes(entry.path().string())});
        }
    }
    return IsoImage(files, "MORVIX");
}
