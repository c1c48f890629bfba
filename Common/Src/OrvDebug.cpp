#include "OrvDebug.h"

#include <io.h>
#include <mbstring.h>

#include <array>
#include <cstring>
#include <span>
#include <string>

#include "Handles.h"
#include "OrvSecure.h"
#include "OrvTraceLine.h"
#include "OrvTraceRules.h"

namespace {
constexpr char kSourceFile[] = R"(..\..\Common\Src\OrvDebug)";
constexpr char kProductKey[] = R"(SOFTWARE\NORDA\NETWORK_SERVICES\ORV2)";
constexpr char kPlainFileNameModule[] = "Kwelpad";
constexpr char kSetUpModule[] = "Orv2Setp";
constexpr size_t kPathBytes = 1024;
constexpr size_t kTempBytes = 260;

// Fixed line numbers: existing log readers expect them.
constexpr int kModuleNameLine = 403;
constexpr int kEmptyPathLine = 413;
constexpr int kPlainPathLine = 419;
constexpr int kDirectoryLine = 447;
constexpr int kBackslashLine = 450;
constexpr int kFileNameLine = 453;
constexpr int kFallbackLine = 479;
constexpr int kFunctionNameLine = 538;
constexpr int kFunctionNameWithParametersLine = 553;

struct Message
{
    const char* format;
    va_list arguments;
};

int WriteFormatted(char* text, size_t chars, void* context)
{
    const auto* message = static_cast<const Message*>(context);
    return _vsnprintf(text, chars, message->format, message->arguments);
}

// Writes the text that `context` points to.
int WritePlain(char* text, size_t chars, void* context)
{
    return _snprintf(text, chars, "%s", static_cast<const char*>(context));
}

std::unique_ptr<char[]> HeapCopy(const char* text, int line)
{
    const char* source = text == nullptr ? "" : text;
    const size_t bytes = std::strlen(source) + 1;
    auto copy = std::make_unique<char[]>(bytes);
    OrvSafeCopy(kSourceFile, line, copy.get(), bytes, source);
    return copy;
}

bool IsModule(const char* moduleName, const char* wanted)
{
    return _mbsicmp(reinterpret_cast<const unsigned char*>(moduleName),
                    reinterpret_cast<const unsigned char*>(wanted)) == 0;
}

UniqueRegKey OpenProductKey()
{
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, kProductKey, 0, KEY_READ, &key) != ERROR_SUCCESS) {
        return nullptr;
    }
    return UniqueRegKey(key);
}

// The level that the registry sets, or the given one when it sets none.
uint32_t RegistryLevel(uint32_t given)
{
    const UniqueRegKey key = OpenProductKey();
    DWORD type = REG_NONE;
    DWORD level = 0;
    DWORD bytes = sizeof(level);
    const bool set = key &&
                     RegQueryValueExA(key.get(), "TRACE", nullptr, &type, reinterpret_cast<BYTE*>(&level), &bytes) ==
                         ERROR_SUCCESS &&
                     type == REG_DWORD;
    return set ? level : given;
}

// A variable that is unset or too long gives an empty directory.
void ReadTempDirectory(char (&temp)[kTempBytes])
{
    const DWORD chars = GetEnvironmentVariableA("Temp", temp, kTempBytes);
    if (chars == 0 || chars >= kTempBytes) {
        // The contents of the buffer are then undefined.
        temp[0] = '\0';
    }
}

// An unreadable value gives an empty directory, and so the root of the current drive.
std::string InstalledDirectory(HKEY key)
{
    // One byte more than requested: a stored text may lack its terminator.
    std::array<char, kPathBytes + 1> directory{};
    DWORD bytes = kPathBytes;
    if (RegQueryValueExA(key, "InstalledDir", nullptr, nullptr, reinterpret_cast<BYTE*>(directory.data()), &bytes) !=
        ERROR_SUCCESS) {
        return {};
    }
    return directory.data();
}

void AnnouncePath(const char* announcement, const char* path)
{
    OutputDebugStringA(announcement);
    OutputDebugStringA(path);
}

void ComposeLogPath(char (&path)[kPathBytes], const char* moduleName, const char* fileName)
{
    OrvSafeCopy(kSourceFile, kEmptyPathLine, path, "");
    const bool plainFileName = IsModule(moduleName, kPlainFileNameModule);
    const UniqueRegKey key = plainFileName ? nullptr : OpenProductKey();
    std::string directory;
    switch (OrvChooseLogDirectory(plainFileName, IsModule(moduleName, kSetUpModule), key != nullptr)) {
        case OrvLogDirectory::None:
            OrvSafeCopy(kSourceFile, kPlainPathLine, path, fileName);
            return;
        case OrvLogDirectory::InstalledDir:
            directory = InstalledDirectory(key.get());
            break;
        case OrvLogDirectory::Temp: {
            char temp[kTempBytes]{};
            ReadTempDirectory(temp);
            directory = temp;
            break;
        }
    }
    OrvSafeCat(kSourceFile, kDirectoryLine, path, directory.c_str());
    AnnouncePath("FILE PATH 1 IS ", path);
    OrvSafeCat(kSourceFile, kBackslashLine, path, "\\");
    AnnouncePath("FILE PATH 2 IS ", path);
    OrvSafeCat(kSourceFile, kFileNameLine, path, fileName);
    AnnouncePath("FILE PATH 3 IS ", path);
}
} // namespace

COrvDebug& OrvTrace()
{
    // Never destroyed: destructors of static objects and threads that outlive main may still trace. Every line is
    // flushed when it is written, so nothing is lost at the end. Created without the language's own guard, which
    // allocates memory without checking.
    static constinit std::atomic<COrvDebug*> trace = nullptr;
    COrvDebug* made = trace.load();
    if (made == nullptr) {
        auto own = std::make_unique<COrvDebug>();
        // If two threads get here at the same time, the later one uses the other's object.
        if (trace.compare_exchange_strong(made, own.get())) {
            made = own.release();
        }
    }
    return *made;
}

COrvDebug::COrvDebug()
{
    InitializeCriticalSection(&m_lock);
}

COrvDebug::~COrvDebug()
{
    m_file.reset();
    DeleteCriticalSection(&m_lock);
}

void COrvDebug::Close()
{
    const Lock lock(m_lock);
    m_configured = false;
    m_level = 0;
    m_maxFileSize = 0;
    m_file.reset();
    m_moduleName.reset();
}

bool COrvDebug::OpenLog(const char* path, const char* mode, uint32_t level)
{
    FILE* file = std::fopen(path, mode);
    if (file == nullptr) {
        return false;
    }
    m_file.reset(file);
    m_level = level;
    m_configured = true;
    return true;
}

int COrvDebug::Configure(const char* moduleName, const char* fileName, uint32_t level, int append, uint32_t maxFileSize,
                         const char* /*reserved*/)
{
    const Lock lock(m_lock);
    if (level == 0) {
        m_level = 0;
        return -1;
    }
    const uint32_t effectiveLevel = OrvConsultsRegistry(level) ? RegistryLevel(level) : level;
    if (effectiveLevel == 0 || !OrvIsLogFileName(fileName)) {
        return -1;
    }
    m_moduleName = HeapCopy(moduleName, kModuleNameLine);
    m_maxFileSize = maxFileSize;

    char path[kPathBytes]{};
    ComposeLogPath(path, m_moduleName.get(), fileName);
    const char* mode = append != 0 ? "a+" : "w";
    if (OpenLog(path, mode, effectiveLevel)) {
        return 0;
    }
    char fallback[kTempBytes]{};
    ReadTempDirectory(fallback);
    OrvSafeCat(kSourceFile, kFallbackLine, fallback, OrvNameWithBackslash(path, IsSystemLeadByte));
    return OpenLog(fallback, mode, effectiveLevel) ? 0 : -1;
}

void COrvDebug::Print(const char* format, ...)
{
    if (format == nullptr) {
        return;
    }
    Message message{format, {}};
    va_start(message.arguments, format);
    WriteLine(m_level, WriteFormatted, &message);
    va_end(message.arguments);
}

void COrvDebug::Error(const char* file, int line, const char* format, ...)
{
    const uint32_t level = m_level;
    if (!OrvErrorWrites(level) || !m_configured || format == nullptr) {
        return;
    }
    std::array<char, kTraceMessageBytes> text{};
    va_list arguments;
    va_start(arguments, format);
    _vsnprintf(text.data(), kTraceMessageChars, format, arguments);
    va_end(arguments);

    // The line has its own level: raising the object's level would let lines of other threads through.
    struct ErrorLine
    {
        const char* file;
        int line;
        const char* text;
    } errorLine{file, line, text.data()};
    WriteLine(
        OrvErrorLineLevel(level),
        [](char* target, size_t chars, void* context) {
            const auto* error = static_cast<const ErrorLine*>(context);
            return _snprintf(target, chars, "%s (%d): %s", error->file, error->line, error->text);
        },
        &errorLine);
}

void COrvDebug::PrintLastError(int code)
{
    const DWORD error = code == 0 ? GetLastError() : static_cast<DWORD>(code);
    char* allocated = nullptr;
    FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM, nullptr, error,
                   MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), reinterpret_cast<char*>(&allocated), 0, nullptr);
    const UniqueLocalText text(allocated);
    if (text) {
        PrintSystemText(text.get());
    }
}

void COrvDebug::PrintSystemText(const char* text)
{
    const std::string format = OrvMessageAsFormat(text, 4);
    constexpr const char* kNone = nullptr;
    Print(format.c_str(), kNone, kNone, kNone, kNone);
}

void COrvDebug::WriteLine(uint32_t level, MessageWriterFn writeMessage, void* context)
{
    if (!OrvPrintWrites(level) || !m_configured) {
        return;
    }
    const Lock lock(m_lock);
    if (!m_file) {
        return;
    }
    try {
        ComposeAndWrite(level, writeMessage, context);
    } catch (...) {
        char text[] = "COrvDebug::Error - EXCEPTION DURING DEBUG PRINT.";
        WriteLine(level, WritePlain, text);
    }
}

void COrvDebug::ComposeAndWrite(uint32_t level, MessageWriterFn writeMessage, void* context)
{
    // The log silently stops growing at its limit.
    if (m_maxFileSize != 0 && _filelengthi64(_fileno(m_file.get())) >= static_cast<__int64>(m_maxFileSize)) {
        return;
    }
    SYSTEMTIME now{};
    GetLocalTime(&now);
    LARGE_INTEGER counter{};
    QueryPerformanceCounter(&counter);
    const OrvTracePrefix prefix{
        m_moduleName.get(), GetCurrentProcessId(), GetCurrentThreadId(), now.wHour,
        now.wMinute,        now.wSecond,           now.wMilliseconds,    static_cast<uint64_t>(counter.QuadPart)};
    std::array<char, kTraceLineBytes> line{};
    const int prefixLength = OrvComposeTracePrefix(line, prefix);
    if (prefixLength < 0) {
        return;
    }
    const auto prefixChars = static_cast<size_t>(prefixLength);
    const std::span<char> room = OrvTraceMessageRoom(line, prefixChars);
    OrvFinishTraceLine(line, prefixChars, room, writeMessage(room.data(), room.size(), context));
    // A log that cannot be written, for example on a full disk, must not disturb the program.
    static_cast<void>(std::fputs(line.data(), m_file.get()));
    static_cast<void>(std::fflush(m_file.get()));
    if (OrvMirrorsToDebugger(level)) {
        OutputDebugStringA(line.data());
    }
}

COrvFuncTrace::COrvFuncTrace(const char* functionName) : m_functionName(HeapCopy(functionName, kFunctionNameLine))
{
    OrvTrace().Print("ENTRY:  %s", m_functionName.get());
}

COrvFuncTrace::COrvFuncTrace(const char* functionName, const char* inputParameters)
    : m_functionName(HeapCopy(functionName, kFunctionNameWithParametersLine))
{
    OrvTrace().Print("ENTRY:  %s", m_functionName.get());
    OrvTrace().Print("%s:  Input Parameters:  %s", m_functionName.get(), inputParameters);
}

COrvFuncTrace::~COrvFuncTrace()
{
    OrvTrace().Print("EXIT:  %s", m_functionName.get());
}

void COrvFuncTrace::ReturnValue(int value)
{
    OrvTrace().Print("%s:  Return Value %d", m_functionName.get(), value);
}
