#pragma once

#include <windows.h>
// winsvc.h needs windows.h first.
#include <winsvc.h>

#include <memory>
#include <type_traits>
#include <utility>

/// Owner types for the platform's handles: the closer runs on every path out of a scope.
/// A handle that the program keeps open on purpose is released at the spot that says why.

struct RegKeyCloser
{
    void operator()(HKEY key) const noexcept { RegCloseKey(key); }
};
using UniqueRegKey = std::unique_ptr<std::remove_pointer_t<HKEY>, RegKeyCloser>;

/// Closes handles whose "none" value is null: processes, threads, tokens, mutexes, events.
struct KernelHandleCloser
{
    void operator()(HANDLE handle) const noexcept { CloseHandle(handle); }
};
using UniqueHandle = std::unique_ptr<std::remove_pointer_t<HANDLE>, KernelHandleCloser>;

/// Ends a directory search.
struct SearchCloser
{
    void operator()(HANDLE search) const noexcept { FindClose(search); }
};

/// Owns a handle whose "none" value is INVALID_HANDLE_VALUE.
template <class Closer>
class UniqueOpenHandle
{
public:
    UniqueOpenHandle() noexcept = default;
    explicit UniqueOpenHandle(HANDLE handle) noexcept : m_handle(handle) {}
    UniqueOpenHandle(const UniqueOpenHandle&) = delete;
    UniqueOpenHandle& operator=(const UniqueOpenHandle&) = delete;
    ~UniqueOpenHandle()
    {
        if (IsOpen()) {
            Closer{}(m_handle);
        }
    }

    [[nodiscard]] bool IsOpen() const noexcept { return m_handle != INVALID_HANDLE_VALUE; }
    [[nodiscard]] HANDLE Get() const noexcept { return m_handle; }
    /// Gives the handle away: the caller closes it, or says why it stays open.
    [[nodiscard]] HANDLE Release() noexcept { return std::exchange(m_handle, INVALID_HANDLE_VALUE); }

private:
    HANDLE m_handle = INVALID_HANDLE_VALUE;
};

/// Owns a handle from CreateFile.
using UniqueFile = UniqueOpenHandle<KernelHandleCloser>;
/// Owns a handle from FindFirstFile.
using UniqueSearch = UniqueOpenHandle<SearchCloser>;

struct LibraryCloser
{
    void operator()(HMODULE library) const noexcept { FreeLibrary(library); }
};
using UniqueLibrary = std::unique_ptr<std::remove_pointer_t<HMODULE>, LibraryCloser>;

/// Frees memory that a platform function allocated with LocalAlloc, such as FormatMessage's text.
struct LocalMemoryCloser
{
    void operator()(void* memory) const noexcept { LocalFree(memory); }
};
using UniqueLocalText = std::unique_ptr<char, LocalMemoryCloser>;

/// Closes a handle of the service manager or of a service.
struct ServiceHandleCloser
{
    void operator()(SC_HANDLE handle) const noexcept { CloseServiceHandle(handle); }
};
using UniqueServiceHandle = std::unique_ptr<std::remove_pointer_t<SC_HANDLE>, ServiceHandleCloser>;
