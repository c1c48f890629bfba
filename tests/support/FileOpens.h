#pragma once

#include <windows.h>

#include <bit>
#include <string>
#include <vector>

#include "ImportOverride.h"

/// How this program's own calls open files and devices, for the life of the object. The calls go through. One object at
/// a time.
class FileOpens
{
public:
    struct Call
    {
        std::string name;
        DWORD access = 0;
        DWORD sharing = 0;
        DWORD disposition = 0;
        DWORD flags = 0;
        bool operator==(const Call&) const = default;
    };

    /// @param nullFor  Name of a device whose opening answers a null handle; none when empty.
    explicit FileOpens(const std::string& nullFor = {})
    {
        calls.clear();
        answeredByNull = nullFor;
    }

    [[nodiscard]] static const std::vector<Call>& Calls() { return calls; }

private:
    static HANDLE WINAPI Open(LPCSTR name, DWORD access, DWORD sharing, LPSECURITY_ATTRIBUTES security,
                              DWORD disposition, DWORD flags, HANDLE model)
    {
        // Past the import table.
        static const auto open =
            std::bit_cast<decltype(&CreateFileA)>(GetProcAddress(GetModuleHandleA("kernel32.dll"), "CreateFileA"));
        calls.push_back({name, access, sharing, disposition, flags});
        return name == answeredByNull ? nullptr : open(name, access, sharing, security, disposition, flags, model);
    }

    inline static std::vector<Call> calls;
    inline static std::string answeredByNull;
    ImportOverride m_override{"CreateFileA", reinterpret_cast<void*>(Open)};
};
