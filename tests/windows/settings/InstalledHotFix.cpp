#include "InstalledHotFix.h"

#include <windows.h>
// The headers below need windows.h first.
#include <objbase.h>
#include <oleauto.h>
#include <wbemcli.h>

#include <memory>
#include <stdexcept>

namespace {
// COM for the life of the object.
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

struct Closer
{
    void operator()(IUnknown* object) const noexcept { object->Release(); }
};
template <class Interface>
using Unique = std::unique_ptr<Interface, Closer>;

struct BstrCloser
{
    void operator()(wchar_t* text) const noexcept { SysFreeString(text); }
};
using UniqueBstr = std::unique_ptr<wchar_t, BstrCloser>;

UniqueBstr Bstr(const wchar_t* text)
{
    return UniqueBstr(SysAllocString(text));
}

void Need(HRESULT status)
{
    if (status != S_OK) {
        throw std::runtime_error("this machine lists no hotfix");
    }
}

std::string FirstHotFix()
{
    IWbemLocator* locatorMade = nullptr;
    Need(CoCreateInstance(__uuidof(WbemLocator), nullptr, CLSCTX_INPROC_SERVER, __uuidof(IWbemLocator),
                          reinterpret_cast<void**>(&locatorMade)));
    const Unique<IWbemLocator> locator(locatorMade);
    IWbemServices* servicesMade = nullptr;
    Need(locator->ConnectServer(Bstr(LR"(root\cimv2)").get(), nullptr, nullptr, nullptr, 0, nullptr, nullptr,
                                &servicesMade));
    const Unique<IWbemServices> services(servicesMade);
    IEnumWbemClassObject* rowsMade = nullptr;
    Need(services->ExecQuery(Bstr(L"WQL").get(), Bstr(L"SELECT HotFixID FROM Win32_QuickFixEngineering").get(),
                             WBEM_FLAG_FORWARD_ONLY, nullptr, &rowsMade));
    const Unique<IEnumWbemClassObject> rows(rowsMade);
    IWbemClassObject* rowMade = nullptr;
    ULONG count = 0;
    constexpr LONG kLongestWait = 60000;
    Need(rows->Next(kLongestWait, 1, &rowMade, &count));
    const Unique<IWbemClassObject> row(rowMade);
    VARIANT value;
    VariantInit(&value);
    Need(row->Get(L"HotFixID", 0, &value, nullptr, nullptr));
    const std::wstring id = value.vt == VT_BSTR ? value.bstrVal : L"";
    VariantClear(&value);
    std::string plain;
    for (const wchar_t character : id) {
        plain += static_cast<char>(character);
    }
    return plain;
}
} // namespace

std::string AnInstalledHotFix()
{
    const ComOnThisThread com;
    return FirstHotFix();
}
