#include "OrvBounded.h"

#include <cstring>

namespace {
// Copies into the part of a buffer that starts at `offset`; a failure empties the whole buffer.
int CopyAt(char* buffer, size_t bufferBytes, size_t offset, const char* source) noexcept
{
    const size_t room = bufferBytes - offset;
    // The source is read only as far as the destination reaches: it may have any length.
    const void* end = std::memchr(source, '\0', room);
    if (end == nullptr) {
        buffer[0] = '\0';
        return kOrvTooSmall;
    }
    std::memmove(buffer + offset, source, static_cast<size_t>(static_cast<const char*>(end) - source) + 1);
    return 0;
}

bool HasRoom(const char* destination, size_t destinationBytes) noexcept
{
    return destination != nullptr && destinationBytes != 0;
}
} // namespace

int OrvBoundedCopy(char* destination, size_t destinationBytes, const char* source) noexcept
{
    if (!HasRoom(destination, destinationBytes)) {
        return kOrvInvalidArgument;
    }
    if (source == nullptr) {
        destination[0] = '\0';
        return kOrvInvalidArgument;
    }
    return CopyAt(destination, destinationBytes, 0, source);
}

int OrvBoundedAppend(char* destination, size_t destinationBytes, const char* source) noexcept
{
    if (!HasRoom(destination, destinationBytes)) {
        return kOrvInvalidArgument;
    }
    const void* end = std::memchr(destination, '\0', destinationBytes);
    if (source == nullptr || end == nullptr) {
        destination[0] = '\0';
        return kOrvInvalidArgument;
    }
    return CopyAt(destination, destinationBytes, static_cast<size_t>(static_cast<const char*>(end) - destination),
                  source);
}
