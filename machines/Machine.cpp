#include "Machine.h"

#include "Printable.h"
#include "ServedFamilies.h"
#include "StoredText.h"

std::string_view NameOf(Severity severity)
{
    switch (severity) {
        case Severity::Note:
            return "note";
        case Severity::Warning:
            return "warning";
        case Severity::Error:
            return "error";
    }
    return "error";
}

std::string TextOf(const Diagnostic& diagnostic)
{
    std::string text = Printable(diagnostic.source);
    if (diagnostic.line != 0) {
        text += ":" + std::to_string(diagnostic.line);
    }
    text += ": " + diagnostic.what;
    return diagnostic.cure.empty() ? text : text + "; " + diagnostic.cure;
}

std::string_view TextIn(const EightBitValue& value)
{
    if (!HoldsText(value.type)) {
        return {};
    }
    const std::string_view text = value.bytes;
    return text.substr(0, text.find('\0'));
}

std::optional<uint32_t> NumberIn(const EightBitValue& value)
{
    if (value.type != kRegistryNumber || value.bytes.size() != sizeof(uint32_t)) {
        return std::nullopt;
    }
    uint32_t number = 0;
    for (std::size_t at = sizeof(number); at > 0; --at) {
        number = (number << 8) | static_cast<unsigned char>(value.bytes[at - 1]);
    }
    return number;
}

const PciDevices& DevicesForFamily(const Machine& machine, std::string_view family)
{
    static const PciDevices kNone;
    const std::optional<ServedFamily> row = FindServedFamily(family);
    if (!row) {
        return kNone;
    }
    return std::string_view(row->pciKey).starts_with("SYSTEM") ? machine.devices : machine.devicesOf9x;
}
