#include "DescribeMachine.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "Printable.h"
#include "RegistryFacts.h"
#include "WantedKeys.h"

namespace {
constexpr uint32_t kUsualCodePage = 1252;

bool IsPlainText(std::string_view text)
{
    return std::ranges::all_of(text, [](char byte) { return byte >= 0x20 && byte < 0x7F; });
}

/// Collects the remarks on the devices of a machine, a limited number of them.
class DeviceRemarks
{
public:
    DeviceRemarks(std::string source, std::vector<Diagnostic>& diagnostics)
        : m_source(std::move(source)), m_diagnostics(diagnostics)
    {
    }
    void Add(std::string what)
    {
        constexpr std::size_t kMost = 20;
        if (++m_count <= kMost) {
            m_diagnostics.push_back(
                {.severity = Severity::Note,
                 .source = m_source,
                 .line = 0,
                 .what = m_count == kMost ? "more remarks on devices are left out" : std::move(what),
                 .cure = {}});
        }
    }

private:
    std::string m_source;
    std::vector<Diagnostic>& m_diagnostics;
    std::size_t m_count = 0;
};

void CheckInstance(const PciDevice& device, const PciInstance& instance, DeviceRemarks& remarks)
{
    const auto name = [&] { return Printable(device.name + "\\" + instance.name); };
    if (!IsPlainText(device.name) || !IsPlainText(instance.name)) {
        remarks.Add("unusual characters in the name of the device " + name());
    }
    if (!instance.compatibleIds) {
        return;
    }
    const EightBitValue& ids = *instance.compatibleIds;
    if (ids.type != kRegistryTextList) {
        remarks.Add("CompatibleIDs of " + name() + " is of type " + std::to_string(ids.type) +
                    ", not a list of texts (7); it is read as the installer reads it");
    } else if (!std::ranges::all_of(ids.bytes, [](char byte) { return byte == 0 || (byte >= 0x20 && byte < 0x7F); })) {
        remarks.Add("CompatibleIDs of " + name() + " has unusual characters");
    }
}

PciInstance InstanceOf(const RegistryKey& key, const EightBitText& text)
{
    PciInstance instance;
    instance.name = text.Of(key.name);
    for (const auto& [name, member] : kInstanceValues) {
        if (const StoredValue* const value = FindValue(key, name)) {
            instance.*member = text.Of(*value);
        }
    }
    return instance;
}

PciDevices DevicesBelow(const RegistryKey* pci, const EightBitText& text, DeviceRemarks& remarks)
{
    if (pci == nullptr) {
        return std::nullopt;
    }
    std::vector<PciDevice> devices;
    devices.reserve(pci->keys.size());
    for (const auto& [upperDevice, deviceKey] : pci->keys) {
        PciDevice& device = devices.emplace_back(PciDevice{.name = text.Of(deviceKey.name), .instances = {}});
        for (const auto& [upperInstance, instanceKey] : deviceKey.keys) {
            CheckInstance(device, device.instances.emplace_back(InstanceOf(instanceKey, text)), remarks);
        }
    }
    return devices;
}

uint32_t CodePageFor(const RegistryTree& tree, const MachineOrigin& origin, const ControlSets& sets)
{
    if (origin.codePage) {
        return *origin.codePage;
    }
    // The number itself is in digits, whatever the code page.
    const RegistryFacts facts(tree, sets.names, EightBitText(kUsualCodePage, origin.convert), origin.isComplete);
    return ReadSystemDescription(facts).codePage.value.value_or(kUsualCodePage);
}

/// Only the registry of this machine itself shows that there really is no key: an answer then. Elsewhere the key was
/// left out or lost, and an answer without devices would be wrong.
Diagnostic NoDevices(const MachineOrigin& origin)
{
    constexpr char kExport[] = R"(export HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Enum\PCI too)";
    return {.severity = origin.isComplete ? Severity::Warning : Severity::Error,
            .source = origin.source,
            .line = 0,
            .what = R"(has no key Enum\PCI: no devices are known)",
            .cure = origin.isComplete                 ? ""
                    : origin.kind == SourceKind::Hive ? "copy the hive again"
                                                      : kExport};
}

std::string FileNameOf(std::string_view path)
{
    const std::size_t end = path.find_last_of("/\\");
    return std::string(end == std::string_view::npos ? path : path.substr(end + 1));
}

std::optional<uint32_t> CurrentNumber(const RegistryTree& tree)
{
    const RegistryKey* const select = tree.Find(R"(SYSTEM\Select)");
    const StoredValue* const current = select == nullptr ? nullptr : FindValue(*select, "Current");
    return current == nullptr ? std::nullopt : NumberIn(EightBitValue{.type = current->type, .bytes = current->bytes});
}
} // namespace

ControlSets FindControlSets(const RegistryTree& tree)
{
    ControlSets sets;
    const RegistryKey* const system = tree.Find("SYSTEM");
    if (system == nullptr) {
        return sets;
    }
    std::vector<std::string> numbered;
    for (const auto& [upper, key] : system->keys) {
        if (!IsControlSet(key.name.units)) {
            continue;
        }
        const std::string name(key.name.units.begin(), key.name.units.end());
        // The current one because of its name, not because it sorts before the numbered ones.
        (upper == u"CURRENTCONTROLSET" ? sets.names : numbered).push_back(name);
    }
    if (const std::optional<uint32_t> current = CurrentNumber(tree)) {
        std::string digits = std::to_string(*current);
        digits.insert(0, 3 - std::min<std::size_t>(digits.size(), 3), '0');
        const auto isCurrent = [&](const std::string& name) { return name.ends_with(digits) && name.size() == 13; };
        if (const auto found = std::ranges::find_if(numbered, isCurrent); found != numbered.end()) {
            sets.names.push_back(*found);
            return sets;
        }
        if (sets.names.empty() && !numbered.empty()) {
            sets.doubt = "the current control set, number " + digits + ", is missing";
        }
    } else if (numbered.size() > 1 && sets.names.empty()) {
        sets.doubt = R"(nothing says which control set is the current one (HKLM\SYSTEM\Select\Current))";
    }
    if (sets.names.empty() && !numbered.empty()) {
        sets.doubt += sets.doubt.empty() ? "" : ": " + numbered.front() + " is read";
        sets.names.push_back(numbered.front());
    } else if (numbered.size() == 1) {
        sets.names.push_back(numbered.front());
    }
    return sets;
}

std::string NameOfMachine(const std::string& source, SourceKind kind, const std::string& computerName)
{
    if (kind == SourceKind::Export && source != "-") {
        const std::string file = FileNameOf(source);
        const std::size_t dot = file.find_last_of('.');
        return file.substr(0, dot == 0 ? std::string::npos : dot);
    }
    if (!computerName.empty()) {
        return computerName;
    }
    if (kind == SourceKind::Hive) {
        const std::string_view path = source;
        const std::size_t end = path.find_last_of("/\\");
        const std::string folder = FileNameOf(path.substr(0, end == std::string_view::npos ? 0 : end));
        return folder.empty() ? std::string(path) : folder;
    }
    return source;
}

Machine RefusedMachine(const MachineOrigin& origin, std::vector<Diagnostic> diagnostics)
{
    Machine machine;
    machine.name = NameOfMachine(origin.source, origin.kind, {});
    machine.source = origin.source;
    machine.kind = origin.kind;
    machine.refused = true;
    machine.diagnostics = std::move(diagnostics);
    return machine;
}

Machine DescribeMachine(const RegistryTree& tree, const MachineOrigin& origin, std::vector<Diagnostic> diagnostics)
{
    if (tree.IsEmpty()) {
        return RefusedMachine(
            origin, {{.severity = Severity::Error,
                      .source = origin.source,
                      .line = 0,
                      .what = "has none of the keys that describe a machine",
                      .cure = R"(export HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Enum\PCI, or use collect.cmd)"}});
    }
    Machine machine;
    machine.source = origin.source;
    machine.kind = origin.kind;
    machine.diagnostics = std::move(diagnostics);
    const ControlSets sets = FindControlSets(tree);
    machine.controlSet = sets.names.empty() ? std::string() : sets.names.front();
    if (!sets.doubt.empty()) {
        machine.diagnostics.push_back(
            {.severity = Severity::Warning, .source = origin.source, .line = 0, .what = sets.doubt, .cure = {}});
    }
    const EightBitText text(CodePageFor(tree, origin, sets), origin.convert);
    const RegistryFacts facts(tree, sets.names, text, origin.isComplete);
    machine.system = ReadSystemDescription(facts);
    if (origin.codePage) {
        machine.system.codePage = {.value = origin.codePage, .from = "given"};
    }
    machine.restart = ReadRestartFacts(facts, machine.system);
    DeviceRemarks remarks(origin.source, machine.diagnostics);
    machine.devices = DevicesBelow(facts.FindKey(R"(*\Enum\PCI)"), text, remarks);
    machine.devicesOf9x = DevicesBelow(facts.FindKey(R"(Enum\PCI)"), text, remarks);
    if (!machine.devices && !machine.devicesOf9x) {
        Diagnostic remark = NoDevices(origin);
        if (remark.severity == Severity::Error) {
            return RefusedMachine(origin, {std::move(remark)});
        }
        machine.diagnostics.push_back(std::move(remark));
    }
    machine.name = NameOfMachine(origin.source, origin.kind, machine.system.computerName.value.value_or(""));
    return machine;
}
