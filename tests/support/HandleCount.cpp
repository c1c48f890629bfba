#include "HandleCount.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <vector>

#include "EntryPoints.h"

namespace {
// Not in the headers: every handle of the system.
using QuerySystemInformationFn = LONG(NTAPI*)(ULONG what, void* answer, ULONG bytes, ULONG* needed);
constexpr ULONG kExtendedHandleInformation = 64;
constexpr LONG kTooSmall = static_cast<LONG>(0xC0000004);
struct HandleEntry
{
    void* object;
    ULONG_PTR processId;
    ULONG_PTR handle;
    ULONG access;
    USHORT backTrace;
    USHORT type;
    ULONG attributes;
    ULONG reserved;
};

unsigned CountInSystemTable()
{
    const auto query = FindEntry<QuerySystemInformationFn>(GetModuleHandleA("ntdll.dll"), "NtQuerySystemInformation");
    std::vector<ULONG_PTR> table(1 << 16);
    for (;;) {
        ULONG bytes = 0;
        const LONG status = query(kExtendedHandleInformation, table.data(),
                                  static_cast<ULONG>(table.size() * sizeof(ULONG_PTR)), &bytes);
        if (status == kTooSmall) {
            table.resize(table.size() * 2);
            continue;
        }
        if (status != 0) {
            throw std::runtime_error("the handles of the system cannot be listed");
        }
        break;
    }
    // The number of entries and a reserved word precede them.
    const auto* entries = reinterpret_cast<const HandleEntry*>(table.data() + 2);
    return static_cast<unsigned>(std::count_if(entries, entries + table.front(), [](const HandleEntry& entry) {
        return entry.processId == GetCurrentProcessId();
    }));
}
} // namespace

unsigned CountOwnHandles()
{
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    // Wine answers 0.
    return count != 0 ? count : CountInSystemTable();
}
