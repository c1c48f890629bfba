#pragma once

#include <windows.h>
// The headers below need windows.h first.
#include <objbase.h>
#include <oleauto.h>

#include <memory>

/// Owners for what COM hands out. Programs that use them link ole32 and oleaut32.

/// COM on this thread, multithreaded, for the life of the object. A thread that has COM in another mode keeps it so;
/// that serves as well.
class ComOnThisThread
{
public:
    ComOnThisThread() : m_initialized(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {}
    ~ComOnThisThread()
    {
        if (m_initialized) {
            CoUninitialize();
        }
    }
    ComOnThisThread(const ComOnThisThread&) = delete;
    ComOnThisThread& operator=(const ComOnThisThread&) = delete;

private:
    bool m_initialized;
};

struct InterfaceCloser
{
    void operator()(IUnknown* object) const noexcept { object->Release(); }
};
template <class Interface>
using UniqueInterface = std::unique_ptr<Interface, InterfaceCloser>;

struct BstrCloser
{
    void operator()(wchar_t* text) const noexcept { SysFreeString(text); }
};
using UniqueBstr = std::unique_ptr<wchar_t, BstrCloser>;
