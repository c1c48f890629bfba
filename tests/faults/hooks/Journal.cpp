#include "Journal.h"

#include <algorithm>
#include <cstring>

namespace {
class Lock
{
public:
    Lock() { EnterCriticalSection(&Section()); }
    ~Lock() { LeaveCriticalSection(&Section()); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    static CRITICAL_SECTION& Section()
    {
        static CRITICAL_SECTION section = [] {
            CRITICAL_SECTION made;
            InitializeCriticalSection(&made);
            return made;
        }();
        return section;
    }
};

FaultChannel* OpenChannel()
{
    const HANDLE mapping = OpenFileMappingA(FILE_MAP_WRITE, FALSE, kFaultChannelName);
    return mapping == nullptr
               ? nullptr
               : static_cast<FaultChannel*>(MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, sizeof(FaultChannel)));
}

void Copy(std::string_view text, std::array<char, kLabelBytes>& label)
{
    const std::string_view fitting = text.substr(0, label.size() - 1);
    *std::ranges::copy(fitting, label.begin()).out = '\0';
}

std::uint64_t Number(const void* handle)
{
    return reinterpret_cast<std::uint64_t>(handle);
}
} // namespace

FaultChannel* Channel()
{
    static FaultChannel* const channel = OpenChannel();
    return channel;
}

CallThread CurrentCallThread()
{
    // The hooks are loaded, and so this is asked first, by the main thread.
    static const DWORD mainThread = GetCurrentThreadId();
    return GetCurrentThreadId() == mainThread ? CallThread::Main : CallThread::Install;
}

void WriteLine(char kind, std::string_view text)
{
    const Lock lock;
    FaultChannel& channel = *Channel();
    const std::string line = std::string{kind, static_cast<char>(CurrentCallThread())} + std::string(text) + '\x1e';
    const auto at = static_cast<std::size_t>(channel.textBytes);
    if (at + line.size() <= channel.text.size()) {
        std::memcpy(channel.text.data() + at, line.data(), line.size());
        channel.textBytes = static_cast<LONG>(at + line.size());
    }
}

void Own(HandleKind kind, const void* handle, std::string_view label)
{
    const Lock lock;
    for (OwnedHandle& place : Channel()->owned) {
        if (place.kind == 0) {
            place.kind = static_cast<std::uint32_t>(kind);
            place.value = Number(handle);
            Copy(label, place.label);
            return;
        }
    }
    WriteLine('E', "too many handles are open");
}

void Disown(HandleKind kind, const void* handle)
{
    const Lock lock;
    // The last one first: a library that is loaded twice is given back once for each time.
    for (std::size_t i = Channel()->owned.size(); i > 0; --i) {
        OwnedHandle& place = Channel()->owned[i - 1];
        if (place.kind == static_cast<std::uint32_t>(kind) && place.value == Number(handle)) {
            place.kind = 0;
            return;
        }
    }
    WriteLine('E', "closed something that is not open, kind " + std::to_string(static_cast<unsigned>(kind)));
}

void RelabelLast(HandleKind kind, std::string_view label, std::string_view newLabel)
{
    const Lock lock;
    OwnedHandle* last = nullptr;
    for (OwnedHandle& place : Channel()->owned) {
        if (place.kind == static_cast<std::uint32_t>(kind) && label == place.label.data()) {
            last = &place;
        }
    }
    if (last != nullptr) {
        Copy(newLabel, last->label);
    }
}

std::string LabelOf(const void* handle)
{
    const Lock lock;
    for (const OwnedHandle& place : Channel()->owned) {
        if (place.kind != 0 && place.value == Number(handle)) {
            return place.label.data();
        }
    }
    return {};
}
