#include "FcoeAdapter.h"

std::optional<std::wstring> FcoeAdapterName(std::wstring_view instanceId)
{
    std::wstring name = L"\\DEVICE\\";
    if (instanceId.size() >= kFcoeAdapterNameChars - name.size()) {
        return std::nullopt;
    }
    return name.append(instanceId);
}
