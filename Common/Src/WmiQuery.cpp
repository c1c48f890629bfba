#include "WmiQuery.h"

#include <windows.h>
// wbemcli.h needs windows.h first.
#include <wbemcli.h>

#include "ComOwners.h"

namespace {
// Some classes, such as that of the installed fixes, are computed while the caller waits.
constexpr LONG kFirstRowMilliseconds = 60000;

UniqueInterface<IWbemServices> Connect(const wchar_t* nameSpace)
{
    IWbemLocator* created = nullptr;
    if (FAILED(CoCreateInstance(__uuidof(WbemLocator), nullptr, CLSCTX_INPROC_SERVER, __uuidof(IWbemLocator),
                                reinterpret_cast<void**>(&created)))) {
        return nullptr;
    }
    const UniqueInterface<IWbemLocator> locator(created);
    const UniqueBstr name(SysAllocString(nameSpace));
    IWbemServices* connected = nullptr;
    if (FAILED(locator->ConnectServer(name.get(), nullptr, nullptr, nullptr, WBEM_FLAG_CONNECT_USE_MAX_WAIT, nullptr,
                                      nullptr, &connected))) {
        return nullptr;
    }
    // The service must know the caller's identity. In the service's own process there is no proxy and nothing to set;
    // if setting fails, a later call is refused, if at all.
    CoSetProxyBlanket(connected, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, RPC_C_AUTHN_LEVEL_CALL,
                      RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE);
    return UniqueInterface<IWbemServices>(connected);
}

WmiAnswer FirstRow(IWbemServices& services, const wchar_t* query)
{
    const UniqueBstr language(SysAllocString(L"WQL"));
    const UniqueBstr text(SysAllocString(query));
    IEnumWbemClassObject* found = nullptr;
    if (FAILED(services.ExecQuery(language.get(), text.get(), WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY,
                                  nullptr, &found))) {
        return WmiAnswer::Failed;
    }
    const UniqueInterface<IEnumWbemClassObject> rows(found);
    IWbemClassObject* first = nullptr;
    ULONG count = 0;
    const HRESULT status = rows->Next(kFirstRowMilliseconds, 1, &first, &count);
    const UniqueInterface<IWbemClassObject> row(first);
    if (status == WBEM_S_NO_ERROR && count == 1) {
        return WmiAnswer::Rows;
    }
    return status == WBEM_S_FALSE ? WmiAnswer::NoRows : WmiAnswer::Failed;
}
} // namespace

WmiAnswer AskWmi(const wchar_t* nameSpace, const wchar_t* query)
{
    if (nameSpace == nullptr || query == nullptr) {
        return WmiAnswer::Failed;
    }
    const ComOnThisThread com;
    const UniqueInterface<IWbemServices> services = Connect(nameSpace);
    return services ? FirstRow(*services, query) : WmiAnswer::Failed;
}
