#include "DeviceRequest.h"

#include "Handles.h"

DeviceRequestResult SendDeviceRequest(HANDLE device, DWORD code, std::span<const std::byte> input,
                                      std::span<std::byte> output)
{
    const UniqueHandle completed(CreateEventA(nullptr, TRUE, FALSE, nullptr));
    if (!completed) {
        return {.answered = false, .error = GetLastError(), .bytesAnswered = 0};
    }
    OVERLAPPED request{};
    request.hEvent = completed.get();
    // The platform's prototype takes the input as writable memory and does not write to it.
    void* const in = const_cast<std::byte*>(input.data());
    const bool started = DeviceIoControl(device, code, in, static_cast<DWORD>(input.size()), output.data(),
                                         static_cast<DWORD>(output.size()), nullptr, &request) != FALSE ||
                         GetLastError() == ERROR_IO_PENDING;
    DWORD bytes = 0;
    if (!started || GetOverlappedResult(device, &request, &bytes, TRUE) == FALSE) {
        return {.answered = false, .error = GetLastError(), .bytesAnswered = 0};
    }
    return {.answered = true, .error = NO_ERROR, .bytesAnswered = bytes};
}
