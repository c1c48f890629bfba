#include "ImportHooks.h"

#include <windows.h>

#include <malloc.h>

#include <atomic>
#include <bit>
#include <cstring>
#include <deque>
#include <string>

#include "Journal.h"
#include "PlatformCalls.h"
#include "TrackedCalls.h"
#include "User.h"

namespace {
/// One hooked function.
struct Hook
{
    std::string name;
    const PlatformCall* facts = nullptr;
    const void* target = nullptr; ///< what is called when the call is let through
    unsigned import = ~0U;        ///< its place in the import table; none for an entry point
};

std::deque<Hook>& Hooks()
{
    static std::deque<Hook> hooks;
    return hooks;
}

/// A call's arguments as the gate saved them: four in registers, the others on the caller's stack.
struct Arguments
{
    const std::uint64_t* inRegisters; ///< the last one first
    const std::uint64_t* onStack;
};

std::uint64_t ArgumentOf(const Arguments& arguments, unsigned index)
{
    return index < 4 ? arguments.inRegisters[3 - index] : arguments.onStack[index - 4];
}

std::string Narrow(const wchar_t* wide)
{
    std::string text;
    for (; *wide != L'\0'; ++wide) {
        text += static_cast<char>(*wide);
    }
    return text;
}

std::string PartText(LabelPart part, std::uint64_t value)
{
    const void* const pointer = std::bit_cast<const void*>(value);
    // Numbers below 64 KiB take the place of names.
    const bool isName = value > 0xFFFF;
    switch (part) {
        case LabelPart::None:
            return {};
        case LabelPart::Text:
            return isName ? static_cast<const char*>(pointer) : "#" + std::to_string(value);
        case LabelPart::WideText:
            return Narrow(static_cast<const wchar_t*>(pointer));
        case LabelPart::Number:
            return std::to_string(static_cast<std::uint32_t>(value));
        case LabelPart::Message:
            // Registered messages have other numbers on each system.
            return value >= 0xC000 ? "registered" : std::to_string(value);
        case LabelPart::SizeOnly:
            return value == 0 ? "size" : "data";
        case LabelPart::Owned:
            return LabelOf(pointer);
    }
    return {};
}

std::string LabelOf(const PlatformCall& call, const Arguments& arguments)
{
    std::string text;
    for (const Label& label : call.label) {
        if (label.part != LabelPart::None) {
            text += text.empty() ? "" : ", ";
            text += PartText(label.part, ArgumentOf(arguments, label.argument));
        }
    }
    return text.substr(0, kLabelBytes - 1);
}

std::uint32_t StackNumber()
{
    constexpr ULONG kFrames = 40;
    void* frames[kFrames];
    const WORD count = RtlCaptureStackBackTrace(0, kFrames, frames, nullptr);
    const auto base = reinterpret_cast<std::uint64_t>(GetModuleHandleA(nullptr));
    std::uint32_t number = 2166136261U;
    for (WORD i = 0; i < count; ++i) {
        const std::uint64_t offset = reinterpret_cast<std::uint64_t>(frames[i]) - base;
        if (offset < 0x2000000) {
            number = (number ^ static_cast<std::uint32_t>(offset)) * 16777619U;
        }
    }
    return number * 2 + (CurrentCallThread() == CallThread::Main ? 0 : 1);
}

/// What has been given back since memory ran out.
std::atomic<LONG64> bytesGivenBack = 0;

bool MemoryIsOut()
{
    const FaultPlan& plan = Channel()->plan;
    return plan.memoryIsOut != 0 && Channel()->memoryRequests >= static_cast<LONG>(plan.memoryRequest);
}

void NoteMemoryGivenBack(void* memory)
{
    if (memory != nullptr && MemoryIsOut()) {
        bytesGivenBack += static_cast<LONG64>(_msize(memory));
    }
}

/// @return true when this is a request that is to fail.
bool IsPlannedMemoryRequest(std::uint64_t bytes)
{
    FaultChannel& channel = *Channel();
    const auto at = static_cast<std::size_t>(InterlockedIncrement(&channel.memoryRequests) - 1);
    if (channel.plan.noteMemory != 0 && at < channel.memoryStacks.size()) {
        channel.memoryStacks[at] = StackNumber();
    }
    if (channel.plan.memoryRequest == 0 || at + 1 < channel.plan.memoryRequest) {
        return false;
    }
    channel.reached = 1;
    if (at + 1 == channel.plan.memoryRequest) {
        return true;
    }
    if (channel.plan.memoryIsOut == 0) {
        return false;
    }
    const auto wanted = static_cast<LONG64>(bytes);
    if (bytesGivenBack.fetch_sub(wanted) >= wanted) {
        return false;
    }
    bytesGivenBack += wanted;
    return true;
}

/// @return true when this is the call that is to fail.
bool IsPlanned(const Hook& hook, const std::string& label)
{
    FaultChannel& channel = *Channel();
    const FaultPlan& plan = channel.plan;
    if (plan.ordinal == 0 || hook.name != plan.function.data() || label != plan.label.data() ||
        CurrentCallThread() != plan.thread || ++channel.calls != plan.ordinal) {
        return false;
    }
    channel.reached = 1;
    return true;
}

bool Fails(const Hook& hook, const Arguments& arguments)
{
    if (hook.import < Channel()->importCalled.size()) {
        Channel()->importCalled[hook.import] = 1;
    }
    if (hook.facts == nullptr) {
        WriteLine('U', hook.name);
        return false;
    }
    if (hook.name == "free") {
        NoteMemoryGivenBack(std::bit_cast<void*>(ArgumentOf(arguments, 0)));
    }
    if (hook.facts->kind != CallKind::Fails) {
        return false;
    }
    if (hook.name == "malloc") {
        return IsPlannedMemoryRequest(ArgumentOf(arguments, 0));
    }
    if (Channel()->memoryRequestsOfStart == 0) {
        Channel()->memoryRequestsOfStart = Channel()->memoryRequests;
    }
    const std::string label = LabelOf(*hook.facts, arguments);
    if (IsPlanned(hook, label)) {
        WriteLine('E', "!");
        GiveBackInVain(hook.name, std::bit_cast<const void*>(ArgumentOf(arguments, 0)));
        if (hook.name == "CreateThread") {
            TellInstallThread(nullptr);
        }
        return true;
    }
    WriteLine('C', hook.name + '\x1f' + label);
    return false;
}
} // namespace

extern "C" {
// Read by the gate below.
std::uint64_t failedResult = 0;
void FailedCall();
void CommonGate();

const void* OnCall(unsigned index, const std::uint64_t* inRegisters, const std::uint64_t* onStack)
{
    const DWORD lastError = GetLastError();
    const Hook& hook = Hooks()[index];
    const bool fails = Fails(hook, {inRegisters, onStack});
    if (fails) {
        failedResult = hook.facts->result;
        SetLastError(hook.facts->lastError != 0 ? hook.facts->lastError : lastError);
        return std::bit_cast<const void*>(&FailedCall);
    }
    SetLastError(lastError);
    return hook.target;
}
}

// Every hooked call comes here with its hook's number in r11: the arguments are kept as they are, OnCall says where the
// call goes, and the gate is off the stack by then, so that exceptions and long jumps find only the caller.
asm(R"(
    .text
    .globl CommonGate
    .def CommonGate; .scl 2; .type 32; .endef
    .seh_proc CommonGate
CommonGate:
    pushq %rcx
    .seh_stackalloc 8
    pushq %rdx
    .seh_stackalloc 8
    pushq %r8
    .seh_stackalloc 8
    pushq %r9
    .seh_stackalloc 8
    subq $104, %rsp
    .seh_stackalloc 104
    .seh_endprologue
    movups %xmm0, 32(%rsp)
    movups %xmm1, 48(%rsp)
    movups %xmm2, 64(%rsp)
    movups %xmm3, 80(%rsp)
    movl %r11d, %ecx
    leaq 104(%rsp), %rdx
    leaq 176(%rsp), %r8
    call OnCall
    movq %rax, %r11
    movups 32(%rsp), %xmm0
    movups 48(%rsp), %xmm1
    movups 64(%rsp), %xmm2
    movups 80(%rsp), %xmm3
    addq $104, %rsp
    popq %r9
    popq %r8
    popq %rdx
    popq %rcx
    jmpq *%r11
    .seh_endproc

    .globl FailedCall
    .def FailedCall; .scl 2; .type 32; .endef
FailedCall:
    movq failedResult(%rip), %rax
    ret
)");

namespace {
/// movl $number, %r11d; movabsq $CommonGate, %rax; jmpq *%rax
constexpr std::size_t kGateBytes = 6 + 10 + 2;
constexpr std::size_t kMostGates = 512;

void* MakeGate(unsigned number)
{
    static auto* const gates = static_cast<unsigned char*>(
        VirtualAlloc(nullptr, kGateBytes * kMostGates, MEM_COMMIT | MEM_RESERVE, PAGE_EXECUTE_READWRITE));
    unsigned char* const gate = gates + number * kGateBytes;
    const auto common = std::bit_cast<std::uint64_t>(&CommonGate);
    const unsigned char start[] = {0x41, 0xBB};
    const unsigned char load[] = {0x48, 0xB8};
    const unsigned char jump[] = {0xFF, 0xE0};
    std::memcpy(gate, start, 2);
    std::memcpy(gate + 2, &number, 4);
    std::memcpy(gate + 6, load, 2);
    std::memcpy(gate + 8, &common, 8);
    std::memcpy(gate + 16, jump, 2);
    return gate;
}

void* MakeHook(std::string_view name, const void* function, unsigned import)
{
    const void* const tracked = TrackedCallFor(name);
    const auto number = static_cast<unsigned>(Hooks().size());
    Hooks().push_back({std::string(name), FindPlatformCall(name), tracked == nullptr ? function : tracked, import});
    return number < kMostGates ? MakeGate(number) : nullptr;
}

bool IsCode(const void* address)
{
    MEMORY_BASIC_INFORMATION page{};
    VirtualQuery(address, &page, sizeof(page));
    return (page.Protect & (PAGE_EXECUTE | PAGE_EXECUTE_READ | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY)) != 0;
}

void Replace(void** place, void* value)
{
    DWORD before = 0;
    VirtualProtect(place, sizeof(void*), PAGE_READWRITE, &before);
    *place = value;
    VirtualProtect(place, sizeof(void*), before, &before);
}
} // namespace

void HookImports()
{
    auto* const base = reinterpret_cast<char*>(GetModuleHandleA(nullptr));
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    unsigned import = 0;
    for (const auto* library = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
         library->Name != 0; ++library) {
        const auto* name = reinterpret_cast<const IMAGE_THUNK_DATA64*>(base + library->OriginalFirstThunk);
        auto* address = reinterpret_cast<void**>(base + library->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++address, ++import) {
            const auto* const imported = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
            const char* const text = reinterpret_cast<const char*>(imported->Name);
            if (IsCode(*address)) {
                Replace(address, MakeHook(text, *address, import));
            }
        }
    }
}

void* HookEntryPoint(std::string_view name, void* function)
{
    return MakeHook(name, function, ~0U);
}
