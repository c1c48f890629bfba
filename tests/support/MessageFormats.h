#pragma once

#include <windows.h>

#include <cstddef>
#include <vector>

#include "ImportOverride.h"

/// What this program's own calls ask of FormatMessageA, and whether they give back the texts that it allocates, for the
/// life of the object. The calls go through. One object at a time.
class MessageFormats
{
public:
    struct Call
    {
        DWORD flags = 0;
        DWORD message = 0;
        DWORD language = 0;
        DWORD size = 0;
        bool operator==(const Call&) const = default;
    };

    MessageFormats();
    MessageFormats(const MessageFormats&) = delete;
    MessageFormats& operator=(const MessageFormats&) = delete;

    [[nodiscard]] static const std::vector<Call>& Calls();
    /// @return how many texts were allocated.
    [[nodiscard]] static std::size_t Allocated();
    /// @return how many of them have been freed by LocalFree, each once.
    [[nodiscard]] static std::size_t Freed();

private:
    ImportOverride m_format;
    ImportOverride m_free;
};
