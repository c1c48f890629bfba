#include "NetworkCards.h"

// winioctl.h needs windows.h first, and ntddndis.h needs winioctl.h.
#include <winioctl.h>

#include <ntddndis.h>

#include <array>
#include <stdexcept>

#include "EntryPoints.h"
#include "Environment.h"
#include "Handles.h"
#include "RegistryKeys.h"
#include "SystemLibrary.h"

namespace {
constexpr GUID kNetClass = {0x4D36E972, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}};
constexpr char kClassKey[] = R"(SYSTEM\CurrentControlSet\Control\Class\)";

// Windows Vista and later, which keep drivers in a store of their own.
using GetInfDriverStoreLocationFn = BOOL(WINAPI*)(PCSTR inf, PSP_ALTPLATFORM_INFO platform, PCSTR locale, PSTR path,
                                                  DWORD chars, PDWORD required);

struct DeviceSetCloser
{
    void operator()(HDEVINFO set) const noexcept { SetupDiDestroyDeviceInfoList(set); }
};
using UniqueDeviceSet = UniqueOpenHandle<DeviceSetCloser>;

/// @return a text of the device; of a list its first one; empty when it has none.
std::string Property(HDEVINFO set, SP_DEVINFO_DATA& device, DWORD property)
{
    std::array<char, 4096> text{};
    SetupDiGetDeviceRegistryPropertyA(set, &device, property, nullptr, reinterpret_cast<BYTE*>(text.data()),
                                      text.size() - 1, nullptr);
    return text.data();
}

std::string InstanceIdOf(HDEVINFO set, SP_DEVINFO_DATA& device)
{
    std::array<char, MAX_DEVICE_ID_LEN> id{};
    SetupDiGetDeviceInstanceIdA(set, &device, id.data(), id.size(), nullptr);
    return id.data();
}

/// Whether the driver says that the card has no link. Where it says nothing, the card may carry a connection.
/// @param interfaceName  The braced number by which the network knows the card.
bool SaysItIsNotConnected(const std::string& interfaceName)
{
    const UniqueFile card(CreateFileA((R"(\\.\)" + interfaceName).c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, OPEN_EXISTING, 0, nullptr));
    ULONG question = OID_GEN_MEDIA_CONNECT_STATUS;
    ULONG answer = NdisMediaStateConnected;
    DWORD bytes = 0;
    return card.IsOpen() &&
           DeviceIoControl(card.Get(), IOCTL_NDIS_QUERY_GLOBAL_STATS, &question, sizeof(question), &answer,
                           sizeof(answer), &bytes, nullptr) != FALSE &&
           bytes == sizeof(answer) && answer == NdisMediaStateDisconnected;
}

CardFacts FactsOf(const NetworkCard& card, const std::string& instanceId, const std::string& interfaceName)
{
    CardFacts facts{.instanceId = instanceId,
                    .bus = BusOf(UpperCase(instanceId)),
                    .hasInBoxDriver = card.infName != "<none>" && !UpperCase(card.infName).starts_with("OEM")};
    ULONG status = 0;
    ULONG problem = 0;
    facts.works =
        CM_Get_DevNode_Status(&status, &problem, card.node, 0) == CR_SUCCESS && (status & DN_HAS_PROBLEM) == 0;
    facts.isConnected = facts.works && !SaysItIsNotConnected(interfaceName);
    return facts;
}
} // namespace

std::vector<NetworkCard> PresentNetworkCards()
{
    std::vector<NetworkCard> cards;
    const UniqueDeviceSet set(SetupDiGetClassDevsA(&kNetClass, nullptr, nullptr, DIGCF_PRESENT));
    SP_DEVINFO_DATA device{};
    device.cbSize = sizeof(device);
    for (DWORD index = 0; SetupDiEnumDeviceInfo(set.Get(), index, &device) != FALSE; ++index) {
        NetworkCard card;
        card.hardwareId = Property(set.Get(), device, SPDRP_HARDWAREID);
        card.name = Property(set.Get(), device, SPDRP_DEVICEDESC);
        card.service = Property(set.Get(), device, SPDRP_SERVICE);
        const std::string key = kClassKey + Property(set.Get(), device, SPDRP_DRIVER);
        card.infName = ReadRegistryText(key, "InfPath");
        card.node = device.DevInst;
        card.facts = FactsOf(card, InstanceIdOf(set.Get(), device), ReadRegistryText(key, "NetCfgInstanceId"));
        cards.push_back(std::move(card));
    }
    return cards;
}

CardState StateOf(const NetworkCard& card)
{
    CardState state;
    const CONFIGRET answer = CM_Get_DevNode_Status(&state.status, &state.problem, card.node, 0);
    if (answer != CR_SUCCESS) {
        throw std::runtime_error(card.facts.instanceId + " tells no state, answer " + std::to_string(answer));
    }
    if ((state.status & DN_HAS_PROBLEM) == 0) {
        state.problem = 0;
    }
    return state;
}

std::string PathOfInf(const std::string& infName)
{
    const UniqueLibrary library = LoadSystemLibrary("setupapi.dll");
    const auto locate = FindEntry<GetInfDriverStoreLocationFn>(library.get(), "SetupGetInfDriverStoreLocationA");
    std::array<char, MAX_PATH> path{};
    if (locate != nullptr && locate(infName.c_str(), nullptr, nullptr, path.data(), path.size(), nullptr) != FALSE) {
        return path.data();
    }
    return WindowsDirectory() + "\\inf\\" + infName;
}
