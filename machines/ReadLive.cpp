#include "ReadLive.h"

#include <windows.h>

#include <cfgmgr32.h>

#include <array>

#include "Handles.h"
#include "RegistryWalk.h"

namespace {
std::string EightBitName(const StoredName& name)
{
    return {name.units.begin(), name.units.end()};
}

StoredName EightBitName(const char* name)
{
    StoredName stored{.units = {}, .wide = false};
    for (; *name != '\0'; ++name) {
        stored.units.push_back(static_cast<unsigned char>(*name));
    }
    return stored;
}

/// The keys below HKEY_LOCAL_MACHINE. What cannot be opened or read is left out.
class LiveView : public RegistryView
{
public:
    [[nodiscard]] std::optional<Key> Root() override { return OpenBelow(HKEY_LOCAL_MACHINE, ""); }

    [[nodiscard]] std::optional<Key> Open(Key key, const StoredName& name) override
    {
        return OpenBelow(m_keys[key].get(), EightBitName(name).c_str());
    }

    [[nodiscard]] std::vector<SubKey> SubKeys(Key key) override
    {
        std::vector<SubKey> found;
        for (DWORD index = 0;; ++index) {
            // A name has up to 255 characters, of up to three bytes each.
            std::array<char, 1024> name{};
            DWORD length = name.size();
            if (RegEnumKeyExA(m_keys[key].get(), index, name.data(), &length, nullptr, nullptr, nullptr, nullptr) !=
                ERROR_SUCCESS) {
                return found;
            }
            if (const std::optional<Key> opened = OpenBelow(m_keys[key].get(), name.data())) {
                found.push_back({.name = EightBitName(name.data()), .key = *opened});
            }
        }
    }

    [[nodiscard]] std::optional<StoredValue> Value(Key key, std::string_view name) override
    {
        const std::string text(name);
        DWORD bytes = 0;
        if (RegQueryValueExA(m_keys[key].get(), text.c_str(), nullptr, nullptr, nullptr, &bytes) != ERROR_SUCCESS) {
            return std::nullopt;
        }
        DWORD type = REG_NONE;
        StoredValue value{.type = 0, .bytes = std::string(bytes, '\0'), .wide = false};
        if (RegQueryValueExA(m_keys[key].get(), text.c_str(), nullptr, &type,
                             reinterpret_cast<BYTE*>(value.bytes.data()), &bytes) != ERROR_SUCCESS) {
            return std::nullopt;
        }
        value.bytes.resize(bytes);
        value.type = type;
        return value;
    }

private:
    std::optional<Key> OpenBelow(HKEY key, const char* name)
    {
        HKEY opened = nullptr;
        if (RegOpenKeyExA(key, name, 0, KEY_READ, &opened) != ERROR_SUCCESS) {
            return std::nullopt;
        }
        m_keys.emplace_back(opened);
        return m_keys.size() - 1;
    }

    std::vector<UniqueRegKey> m_keys;
};

Presence AskPresence(const std::string& device, const std::string& instance)
{
    std::string id = R"(PCI\)" + device + "\\" + instance;
    DEVINST found = 0;
    switch (CM_Locate_DevNodeA(&found, id.data(), CM_LOCATE_DEVNODE_NORMAL)) {
        case CR_SUCCESS:
            return Presence::Present;
        case CR_NO_SUCH_DEVNODE:
            return Presence::Absent;
        default:
            return Presence::Unknown;
    }
}
} // namespace

Machine ReadLive(const MachineOrigin& origin)
{
    LiveView view;
    RegistryTree tree;
    if (const std::string trouble = CopyWantedKeys(view, "", "CurrentControlSet", tree); !trouble.empty()) {
        return RefusedMachine(origin, {{.severity = Severity::Error,
                                        .source = origin.source,
                                        .line = 0,
                                        .what = trouble,
                                        .cure = "name an export of the keys that are needed"}});
    }
    Machine machine = DescribeMachine(tree, origin, {});
    if (machine.devices) {
        for (PciDevice& device : *machine.devices) {
            for (PciInstance& instance : device.instances) {
                instance.presence = AskPresence(device.name, instance.name);
            }
        }
    }
    return machine;
}
