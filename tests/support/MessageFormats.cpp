#include "MessageFormats.h"

#include <algorithm>

namespace {
decltype(&FormatMessageA) platformFormat = nullptr;
decltype(&LocalFree) platformFree = nullptr;

std::vector<MessageFormats::Call> calls;
std::vector<HLOCAL> notFreed;
std::size_t allocated = 0;

DWORD WINAPI NoteFormat(DWORD flags, LPCVOID source, DWORD message, DWORD language, LPSTR buffer, DWORD size,
                        va_list* arguments)
{
    const DWORD length = platformFormat(flags, source, message, language, buffer, size, arguments);
    const DWORD lastError = GetLastError();
    calls.push_back({flags, message, language, size});
    if (length != 0 && (flags & FORMAT_MESSAGE_ALLOCATE_BUFFER) != 0) {
        notFreed.push_back(*reinterpret_cast<HLOCAL*>(buffer));
        ++allocated;
    }
    SetLastError(lastError);
    return length;
}

HLOCAL WINAPI NoteFree(HLOCAL memory)
{
    std::erase(notFreed, memory);
    return platformFree(memory);
}
} // namespace

MessageFormats::MessageFormats()
    : m_format("FormatMessageA", InPlaceOf(platformFormat, &FormatMessageA, &NoteFormat)),
      m_free("LocalFree", InPlaceOf(platformFree, &LocalFree, &NoteFree))
{
    calls.clear();
    notFreed.clear();
    allocated = 0;
}

const std::vector<MessageFormats::Call>& MessageFormats::Calls()
{
    return calls;
}

std::size_t MessageFormats::Allocated()
{
    return allocated;
}

std::size_t MessageFormats::Freed()
{
    return allocated - notFreed.size();
}
