// Registry exports, whole and damaged, in blocks of any size.

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <string>

#include "DescribeMachine.h"
#include "ExportReader.h"
#include "Promise.h"
#include "SystemView.h"

namespace {
std::string NoConversion(std::u16string_view text, uint32_t)
{
    return std::string(text.size(), '?');
}

struct Reading
{
    Machine machine;
    bool isRefused = false;
};

Reading Read(std::string_view bytes, std::size_t blockBytes)
{
    ExportReader reader("a.reg", std::size_t{1} << 16);
    for (std::size_t at = 0; at < bytes.size(); at += blockBytes) {
        reader.Feed(bytes.substr(at, blockBytes));
    }
    reader.Finish();
    const MachineOrigin origin{
        .source = "a.reg", .kind = SourceKind::Export, .codePage = {}, .convert = NoConversion, .isComplete = false};
    return {.machine = reader.IsRefused() ? RefusedMachine(origin, reader.Diagnostics())
                                          : DescribeMachine(reader.Tree(), origin, reader.Diagnostics()),
            .isRefused = reader.IsRefused()};
}

void CheckDiagnostics(const Machine& machine)
{
    Promise(machine.diagnostics.size() < 64, "a limited number of remarks");
    for (const Diagnostic& diagnostic : machine.diagnostics) {
        const std::string text = TextOf(diagnostic);
        Promise(std::ranges::none_of(text, [](char c) { return (c >= 0 && c < ' ') || c == '\x7F'; }),
                "no control characters in a remark");
        Promise(!diagnostic.what.empty() && text.size() < 2000, "a remark of one line");
    }
    const bool hasError = std::ranges::any_of(machine.diagnostics,
                                              [](const Diagnostic& each) { return each.severity == Severity::Error; });
    Promise(hasError == machine.refused, "a refused machine says why, another one has no error");
    Promise(!machine.refused || (!machine.devices && !machine.devicesOf9x), "nothing is known of a refused machine");
}

void CheckOrder(const PciDevices& devices)
{
    std::string before;
    for (const PciDevice& device : devices.value_or(std::vector<PciDevice>())) {
        std::string upper = device.name;
        std::ranges::transform(upper, upper.begin(), Upper);
        Promise(before.empty() || std::ranges::any_of(upper, [](char c) { return c == '?' || c < 0; }) ||
                    before.find('?') != std::string::npos || before < upper,
                "devices in the order of their names");
        before = upper;
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    const auto blockBytes = input.ConsumeIntegralInRange<std::size_t>(1, 64);
    const std::string bytes = input.ConsumeRemainingBytesAsString();
    const Reading whole = Read(bytes, bytes.size() + 1);
    const Reading inBlocks = Read(bytes, blockBytes);
    CheckDiagnostics(whole.machine);
    CheckOrder(whole.machine.devices);
    Promise(whole.isRefused == inBlocks.isRefused && whole.machine.devices == inBlocks.machine.devices &&
                whole.machine.devicesOf9x == inBlocks.machine.devicesOf9x &&
                whole.machine.system == inBlocks.machine.system &&
                whole.machine.diagnostics.size() == inBlocks.machine.diagnostics.size(),
            "the same in blocks of any size");
    const bool isMissing = !MissingForView(whole.machine.system).empty();
    Promise(ViewOfSystem(whole.machine.system).has_value() != isMissing, "a view, or what is missing for it");
    return 0;
}
