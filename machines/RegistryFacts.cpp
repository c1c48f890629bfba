#include "RegistryFacts.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <tuple>
#include <utility>

#include "OSCode.h"
#include "Printable.h"
#include "WantedKeys.h"

namespace {
constexpr std::string_view kVersionKey = R"(SOFTWARE\Microsoft\Windows NT\CurrentVersion)";
constexpr std::string_view kVersionKeyOf9x = R"(SOFTWARE\Microsoft\Windows\CurrentVersion)";
constexpr std::string_view kProductKey = R"(*\Control\ProductOptions)";

/// Takes a number from the front of a text.
std::optional<uint32_t> TakeNumber(std::string_view& text)
{
    uint32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) {
        return std::nullopt;
    }
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return number;
}

/// @return the version in a text such as "6.1" or "4.10.2222".
std::optional<VersionNumbers> VersionIn(std::string_view text)
{
    VersionNumbers version;
    const std::optional<uint32_t> major = TakeNumber(text);
    if (!major || !text.starts_with('.')) {
        return std::nullopt;
    }
    text.remove_prefix(1);
    const std::optional<uint32_t> minor = TakeNumber(text);
    if (!minor) {
        return std::nullopt;
    }
    if (text.starts_with('.')) {
        text.remove_prefix(1);
        version.build = TakeNumber(text).value_or(0);
    }
    version.major = *major;
    version.minor = *minor;
    return version;
}

template <class T>
Fact<T> Unknown(const std::string& why)
{
    return {.value = std::nullopt, .from = why};
}

std::string NotUnderstood(const Fact<std::string>& text)
{
    return text.from + " is \"" + Printable(*text) + "\"";
}

/// The numbers came with version 10, for which the text still says 6.3.
Fact<VersionNumbers> ReadVersion(const RegistryFacts& facts)
{
    const Fact<std::string> text = facts.Text(kVersionKey, "CurrentVersion");
    const Fact<uint32_t> major = facts.Number(kVersionKey, "CurrentMajorVersionNumber");
    const Fact<uint32_t> minor = facts.Number(kVersionKey, "CurrentMinorVersionNumber");
    std::optional<VersionNumbers> version = text ? VersionIn(*text) : std::nullopt;
    std::string from = text.from;
    if (major && minor) {
        version = VersionNumbers{.major = *major, .minor = *minor};
        from = major.from;
    }
    if (!version) {
        return Unknown<VersionNumbers>(text ? NotUnderstood(text) : text.from);
    }
    if (const Fact<std::string> build = facts.Text(kVersionKey, "CurrentBuildNumber")) {
        std::string_view digits = *build;
        version->build = TakeNumber(digits).value_or(0);
    }
    return {.value = version, .from = from};
}

Fact<VersionNumbers> ReadVersionOf9x(const RegistryFacts& facts)
{
    const Fact<std::string> text = facts.Text(kVersionKeyOf9x, "VersionNumber");
    const std::optional<VersionNumbers> version = text ? VersionIn(*text) : std::nullopt;
    if (text && version) {
        return {.value = version, .from = text.from};
    }
    return Unknown<VersionNumbers>(text ? NotUnderstood(text) : text.from);
}

Fact<uint16_t> ReadServicePack(const RegistryFacts& facts)
{
    const Fact<uint32_t> word = facts.Number(R"(*\Control\Windows)", "CSDVersion");
    if (word) {
        return {.value = static_cast<uint16_t>((*word >> 8) & 0xFF), .from = word.from};
    }
    constexpr std::string_view kBefore = "Service Pack ";
    const Fact<std::string> text = facts.Text(kVersionKey, "CSDVersion");
    if (text && text->starts_with(kBefore)) {
        std::string_view digits = *text;
        digits.remove_prefix(kBefore.size());
        if (const std::optional<uint32_t> number = TakeNumber(digits); number && *number <= 0xFF) {
            return {.value = static_cast<uint16_t>(*number), .from = text.from};
        }
    }
    if (text && !text->empty()) {
        return Unknown<uint16_t>(NotUnderstood(text));
    }
    // A system without a service pack has no such value beside its version, or an empty one.
    if (facts.FindKey(kVersionKey) != nullptr) {
        return {.value = uint16_t{0}, .from = "HKLM\\" + std::string(kVersionKey) + " has no CSDVersion"};
    }
    return Unknown<uint16_t>(word.from);
}

template <class T>
Fact<T> FromTable(const Fact<std::string>& text, std::span<const std::pair<std::string_view, T>> rows)
{
    if (!text) {
        return Unknown<T>(text.from);
    }
    const std::u16string name(text->begin(), text->end());
    const auto row = std::ranges::find_if(rows, [&](const auto& each) { return NameIs(name, each.first); });
    if (row == rows.end()) {
        return Unknown<T>(NotUnderstood(text));
    }
    return {.value = row->second, .from = text.from};
}

Fact<uint8_t> ReadProductType(const RegistryFacts& facts)
{
    constexpr std::array kTypes = std::to_array<std::pair<std::string_view, uint8_t>>({
        {"WINNT", kProductWorkstation},
        {"LANMANNT", kProductDomainController},
        {"SERVERNT", kProductServer},
    });
    return FromTable<uint8_t>(facts.Text(kProductKey, "ProductType"), kTypes);
}

Fact<uint16_t> ReadArchitecture(const RegistryFacts& facts)
{
    constexpr std::array kProcessors = std::to_array<std::pair<std::string_view, uint16_t>>({
        {"X86", 0},
        {"ARM", 5},
        {"IA64", kArchitectureIA64},
        {"AMD64", kArchitectureX64},
        {"ARM64", 12},
    });
    return FromTable<uint16_t>(facts.Text(R"(*\Control\Session Manager\Environment)", "PROCESSOR_ARCHITECTURE"),
                               kProcessors);
}

Fact<std::vector<std::string>> ReadSuites(const RegistryFacts& facts)
{
    const Fact<EightBitValue> value = facts.Value(kProductKey, "ProductSuite");
    if (!value || value->type != kRegistryTextList) {
        return Unknown<std::vector<std::string>>(value ? value.from + " is no list" : value.from);
    }
    std::vector<std::string> suites;
    std::string_view rest = value->bytes;
    while (!rest.empty() && rest.front() != '\0') {
        const std::size_t end = std::min(rest.find('\0'), rest.size());
        suites.emplace_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return {.value = std::move(suites), .from = value.from};
}

Fact<uint32_t> ReadCodePage(const RegistryFacts& facts)
{
    const Fact<std::string> text = facts.Text(R"(*\Control\Nls\CodePage)", "ACP");
    if (!text) {
        return Unknown<uint32_t>(text.from);
    }
    std::string_view digits = *text;
    const std::optional<uint32_t> number = TakeNumber(digits);
    if (!number || !digits.empty()) {
        return Unknown<uint32_t>(NotUnderstood(text));
    }
    return {.value = number, .from = text.from};
}

/// The generation of the network driver interface that a system brings.
Fact<uint32_t> NdisVersionOf(const SystemDescription& system)
{
    if (!system.version) {
        return Unknown<uint32_t>("the system's version is not known");
    }
    const VersionNumbers version = *system.version;
    const std::string name = "Windows " + std::to_string(version.major) + "." + std::to_string(version.minor);
    const uint16_t servicePack = system.servicePack.value.value_or(0);
    if (version.major == 5 && version.minor == 2 && servicePack < 2) {
        return Unknown<uint32_t>(name + " before service pack 2 brings NDIS 5.1, an update to it 5.2");
    }
    struct Row
    {
        VersionNumbers from;
        uint16_t servicePack;
        uint32_t minor;
        uint32_t major;
    };
    // The newest first.
    constexpr std::array kRows = std::to_array<Row>({
        {.from = {10, 0, 0}, .servicePack = 0, .minor = 50, .major = 6},
        {.from = {6, 3, 0}, .servicePack = 0, .minor = 40, .major = 6},
        {.from = {6, 2, 0}, .servicePack = 0, .minor = 30, .major = 6},
        {.from = {6, 1, 0}, .servicePack = 0, .minor = 20, .major = 6},
        {.from = {6, 0, 0}, .servicePack = 1, .minor = 1, .major = 6},
        {.from = {6, 0, 0}, .servicePack = 0, .minor = 0, .major = 6},
        {.from = {5, 2, 0}, .servicePack = 2, .minor = 2, .major = 5},
        {.from = {5, 1, 0}, .servicePack = 0, .minor = 1, .major = 5},
        {.from = {5, 0, 0}, .servicePack = 0, .minor = 0, .major = 5},
    });
    const auto* const row = std::ranges::find_if(kRows, [&](const Row& each) {
        const bool same = each.from.major == version.major && each.from.minor == version.minor;
        return std::tuple(version.major, version.minor) >= std::tuple(each.from.major, each.from.minor) &&
               (!same || servicePack >= each.servicePack);
    });
    if (row == kRows.end()) {
        return Unknown<uint32_t>(name + " is older than every known NDIS");
    }
    return {.value = row->major << 16 | row->minor,
            .from = name + " brings NDIS " + std::to_string(row->major) + "." + std::to_string(row->minor)};
}

struct Initiator
{
    const RegistryKey* parameters = nullptr;
    std::string from;
};

/// The first controller that is the iSCSI initiator decides, as it does for the installer.
Fact<Initiator> FindInitiator(const RegistryFacts& facts)
{
    const std::string path = "*\\" + std::string(kStorageControllers);
    const RegistryKey* const controllers = facts.FindKey(path);
    if (controllers == nullptr && !facts.IsComplete()) {
        return Unknown<Initiator>("the storage controllers are not among what was read");
    }
    Initiator none{.parameters = nullptr, .from = "no storage controller is the iSCSI initiator"};
    if (controllers == nullptr) {
        return {.value = none, .from = none.from};
    }
    for (const auto& [upper, controller] : controllers->keys) {
        const StoredValue* const id = FindValue(controller, "MatchingDeviceId");
        const EightBitValue text = id == nullptr ? EightBitValue{} : facts.Converter().Of(*id);
        const std::u16string name(text.bytes.begin(), std::ranges::find(text.bytes, '\0'));
        if (NameIs(name, R"(ROOT\ISCSIPRT)")) {
            const RegistryKey* const parameters = FindKey(controller, "Parameters");
            const std::string from = "storage controller " + Printable(controller.name.units) +
                                     " is the iSCSI initiator" + (parameters == nullptr ? " without settings" : "");
            return {.value = Initiator{.parameters = parameters, .from = from}, .from = from};
        }
    }
    return {.value = none, .from = none.from};
}

/// From 6.0 on the initiator is part of the system and has its version.
Fact<bool> IsInitiatorRecent(const SystemDescription& system)
{
    if (system.version && system.version->major >= 6) {
        return {.value = true, .from = "systems from 6.0 on bring their own initiator"};
    }
    return Unknown<bool>("only the initiator's library tells its version");
}
} // namespace

RegistryFacts::Place RegistryFacts::Locate(std::string_view path) const
{
    if (!path.starts_with("*\\")) {
        return {.key = m_tree.Find(path), .path = "HKLM\\" + std::string(path)};
    }
    Place place;
    for (const std::string& controlSet : m_controlSets) {
        const std::string inSet = "SYSTEM\\" + controlSet + std::string(path.substr(1));
        place.key = m_tree.Find(inSet);
        if (place.key != nullptr || place.path.empty()) {
            place.path = "HKLM\\" + inSet;
        }
        if (place.key != nullptr) {
            return place;
        }
    }
    if (place.path.empty()) {
        place.path = R"(HKLM\SYSTEM\CurrentControlSet)" + std::string(path.substr(1));
    }
    return place;
}

const RegistryKey* RegistryFacts::FindKey(std::string_view path) const
{
    return Locate(path).key;
}

Fact<EightBitValue> RegistryFacts::Value(std::string_view path, std::string_view name) const
{
    const Place place = Locate(path);
    const std::string from = place.path + "\\" + std::string(name);
    const StoredValue* const value = place.key == nullptr ? nullptr : FindValue(*place.key, name);
    if (value == nullptr) {
        return Unknown<EightBitValue>((m_isComplete ? "there is no " : "not among what was read: ") + from);
    }
    return {.value = m_text.Of(*value), .from = from};
}

Fact<std::string> RegistryFacts::Text(std::string_view path, std::string_view name) const
{
    const Fact<EightBitValue> value = Value(path, name);
    if (!value || !HoldsText(value->type)) {
        return Unknown<std::string>(value ? value.from + " is no text" : value.from);
    }
    return {.value = std::string(TextIn(*value)), .from = value.from};
}

Fact<uint32_t> RegistryFacts::Number(std::string_view path, std::string_view name) const
{
    const Fact<EightBitValue> value = Value(path, name);
    if (!value || !NumberIn(*value)) {
        return Unknown<uint32_t>(value ? value.from + " is no number" : value.from);
    }
    return {.value = NumberIn(*value), .from = value.from};
}

SystemDescription ReadSystemDescription(const RegistryFacts& facts)
{
    SystemDescription system;
    const bool is9x = facts.FindKey(kVersionKey) == nullptr && facts.Text(kVersionKeyOf9x, "VersionNumber") &&
                      facts.FindKey(R"(ENUM\PCI)") != nullptr;
    system.version = is9x ? ReadVersionOf9x(facts) : ReadVersion(facts);
    system.platform = {.value = is9x ? kPlatform9x : kPlatformNT,
                       .from = is9x ? system.version.from : "every system whose devices are in a control set"};
    system.servicePack = ReadServicePack(facts);
    system.productType = ReadProductType(facts);
    system.architecture = ReadArchitecture(facts);
    system.codePage = ReadCodePage(facts);
    system.productSuites = ReadSuites(facts);
    system.productName = facts.Text(kVersionKey, "ProductName");
    system.installationType = facts.Text(kVersionKey, "InstallationType");
    system.computerName = facts.Text(R"(*\Control\ComputerName\ComputerName)", "ComputerName");
    return system;
}

RestartDescription ReadRestartFacts(const RegistryFacts& facts, const SystemDescription& system)
{
    RestartDescription restart;
    restart.ndisVersion = NdisVersionOf(system);
    restart.iscsiInitiatorRecent = IsInitiatorRecent(system);
    if (const Fact<Initiator> initiator = FindInitiator(facts); initiator) {
        const RegistryKey* const parameters = initiator->parameters;
        const StoredValue* const driver = parameters == nullptr ? nullptr : FindValue(*parameters, "DumpMiniPort");
        restart.iscsiInitiatorPresent = {.value = parameters != nullptr, .from = initiator.from};
        // The installer reads up to 512 bytes of whatever type, and compares the letter case too.
        const std::string bytes = driver == nullptr ? std::string() : facts.Converter().Of(*driver).bytes;
        restart.iscsiCrashDumpEnabled = {
            .value = bytes.size() <= 512 && bytes.substr(0, bytes.find('\0')) == "iSCSDump.sys",
            .from = initiator.from};
    } else {
        restart.iscsiInitiatorPresent = Unknown<bool>(initiator.from);
        restart.iscsiCrashDumpEnabled = Unknown<bool>(initiator.from);
    }
    restart.extensionVersion = facts.Text(R"(SOFTWARE\Norda\Network_Services\TERN)", "OEMVersion");
    return restart;
}
