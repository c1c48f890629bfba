#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "ImportOverride.h"

/// Which attributes this program's own calls ask for, for the life of the object. The files keep theirs. One object at
/// a time.
class AttributeRequests
{
public:
    struct Call
    {
        std::string file;
        DWORD attributes = 0;
        bool operator==(const Call&) const = default;
    };

    AttributeRequests() { calls.clear(); }

    [[nodiscard]] static const std::vector<Call>& Calls() { return calls; }

private:
    static BOOL WINAPI Set(LPCSTR file, DWORD attributes)
    {
        calls.push_back({file, attributes});
        return TRUE;
    }

    inline static std::vector<Call> calls;
    ImportOverride m_override{"SetFileAttributesA", reinterpret_cast<void*>(Set)};
};
