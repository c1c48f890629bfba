#include "InstalledHotFix.h"

#include <windows.h>
// wbemcli.h needs windows.h first.
#include <wbemcli.h>

#include <stdexcept>

#include "ComOwners.h"

namespace {
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
    const UniqueInterface<IWbemLocator> locator(locatorMade);
    IWbemServices* servicesMade = nullptr;
    Need(locator->ConnectServer(Bstr(LR"(root\cimv2)").get(), nullptr, nullptr, nullptr, 0, nullptr, nullptr,
                                &servicesMade));
    const UniqueInterface<IWbemServices> services(servicesMade);
    IEnumWbemClassObject* rowsMade = nullptr;
    Need(services->ExecQuery(Bstr(L"WQL").get(), Bstr(L"SELECT HotFixID FROM Win32_QuickFixEngineering").get(),
                             WBEM_FLAG_FORWARD_ONLY, nullptr, &rowsMade));
    const UniqueInterface<IEnumWbemClassObject> rows(rowsMade);
    IWbemClassObject* rowMade = nullptr;
    ULONG count = 0;
    constexpr LONG kLongestWait = 60000;
    Need(rows->Next(kLongestWait, 1, &rowMade, &count));
    const UniqueInterface<IWbemClassObject> row(rowMade);
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
