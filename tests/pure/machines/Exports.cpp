#include "Exports.h"

#include <array>
#include <cstdio>

#include "CodePages.h"
#include "DescribeMachine.h"
#include "ExportReader.h"
#include "HiveWriter.h"

std::string Utf16(const std::string& text)
{
    return "\xFF\xFE" + Wide(text);
}

std::string Hex(uint32_t type, const std::string& bytes)
{
    std::array<char, 16> head{};
    static_cast<void>(std::snprintf(head.data(), head.size(), type == 3 ? "hex:" : "hex(%x):", type));
    std::string text = head.data();
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        std::array<char, 3> digits{};
        static_cast<void>(std::snprintf(digits.data(), digits.size(), "%02x", static_cast<unsigned char>(bytes[at])));
        text += digits.data();
        text += at + 1 == bytes.size() ? "" : at % 25 == 24 ? ",\\\r\n  " : ",";
    }
    return text;
}

std::string DeviceKey(const std::string& device, const std::string& instance)
{
    return "[" + kPciKey + "\\" + device + "\\" + instance + "]\r\n";
}

std::string Device(const std::string& device, const std::string& id)
{
    return DeviceKey(device, "3&1") + "\"CompatibleIDs\"=" + Hex(7, Wide(id + '\0' + '\0')) + "\r\n\r\n";
}

Machine ReadInBlocks(const std::string& bytes, std::size_t blockBytes)
{
    ExportReader reader("PC7.reg");
    for (std::size_t at = 0; at < bytes.size(); at += blockBytes) {
        reader.Feed(std::string_view(bytes).substr(at, blockBytes));
    }
    reader.Finish();
    const MachineOrigin origin{.source = "PC7.reg", .kind = SourceKind::Export, .codePage = {}, .convert = InCodePage};
    return reader.IsRefused() ? RefusedMachine(origin, reader.Diagnostics())
                              : DescribeMachine(reader.Tree(), origin, reader.Diagnostics());
}

Machine ReadText(const std::string& bytes, std::optional<uint32_t> codePage)
{
    ExportReader reader("PC7.reg");
    reader.Feed(bytes);
    reader.Finish();
    const MachineOrigin origin{
        .source = "PC7.reg", .kind = SourceKind::Export, .codePage = codePage, .convert = InCodePage};
    return reader.IsRefused() ? RefusedMachine(origin, reader.Diagnostics())
                              : DescribeMachine(reader.Tree(), origin, reader.Diagnostics());
}

std::string Remarks(const Machine& machine)
{
    std::string text;
    for (const Diagnostic& diagnostic : machine.diagnostics) {
        text += TextOf(diagnostic) + "\n";
    }
    return text;
}

namespace {
template <class T>
std::string TextOfNumber(const Fact<T>& fact)
{
    return (fact ? std::to_string(*fact) : "?") + " from " + fact.from + "\n";
}

std::string TextOfText(const Fact<std::string>& fact)
{
    return (fact ? *fact : "?") + " from " + fact.from + "\n";
}

std::string TextOfDevices(const PciDevices& devices)
{
    std::string text = devices ? "" : "no devices\n";
    for (const PciDevice& device : devices.value_or(std::vector<PciDevice>())) {
        text += device.name + "\n";
        for (const PciInstance& instance : device.instances) {
            text += "  " + instance.name + "\n";
            for (const auto& [name, member] : kInstanceValues) {
                if (const auto& value = instance.*member) {
                    text += "    " + std::string(name) + " " + std::to_string(value->type) + " " + value->bytes + "\n";
                }
            }
        }
    }
    return text;
}
} // namespace

std::string Describe(const Machine& machine)
{
    const SystemDescription& system = machine.system;
    const RestartDescription& restart = machine.restart;
    std::string text = machine.name + "|" + machine.source + "|" + machine.controlSet + "|" +
                       (machine.refused ? "refused" : "") + (machine.dirty ? "dirty" : "") + "\n";
    text += system.version ? std::to_string(system.version->major) + "." + std::to_string(system.version->minor) + "." +
                                 std::to_string(system.version->build)
                           : "?";
    text += " from " + system.version.from + "\n" + TextOfNumber(system.platform) + TextOfNumber(system.servicePack) +
            TextOfNumber(system.productType) + TextOfNumber(system.architecture) + TextOfNumber(system.codePage);
    for (const std::string& suite : system.productSuites.value.value_or(std::vector<std::string>())) {
        text += "suite " + suite + "\n";
    }
    text += TextOfText(system.productName) + TextOfText(system.installationType) + TextOfText(system.computerName);
    text += TextOfNumber(restart.ndisVersion) + TextOfNumber(restart.iscsiInitiatorPresent) +
            TextOfNumber(restart.iscsiInitiatorRecent) + TextOfNumber(restart.iscsiCrashDumpEnabled) +
            TextOfText(restart.extensionVersion);
    return text + TextOfDevices(machine.devices) + TextOfDevices(machine.devicesOf9x) + Remarks(machine);
}
