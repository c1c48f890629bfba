// The command line and what a run makes of it: options, flow, prober status, management extension, end of the run. The
// whole input is the command line, an argument a line.

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "CommandLine.h"
#include "EndOfRun.h"
#include "ManagementExtension.h"
#include "ProberStatus.h"
#include "Promise.h"
#include "RestartReasons.h"
#include "RunFlow.h"

namespace {
bool IsOptionToken(const std::string& token)
{
    return token.length() >= 2 && token[0] == '/' && std::string("0123456789").find(token[1]) == std::string::npos;
}

/// The rule as it reads: a current option, its first value, and the values that follow.
OptionMap ReadCommandLine(const std::vector<std::string>& arguments)
{
    OptionMap map;
    std::string current;
    for (std::size_t at = 1; at < arguments.size(); ++at) {
        if (IsOptionToken(arguments[at])) {
            current = arguments[at];
            std::vector<std::string> values;
            if (at + 1 < arguments.size() && !IsOptionToken(arguments[at + 1])) {
                values.push_back(arguments[++at]);
            }
            map.insert({current, values});
        } else if (map.count(current) != 0) {
            map[current].push_back(arguments[at]);
        }
    }
    return map;
}

bool Has(const OptionMap& map, const std::string& letters)
{
    std::string upper = letters;
    std::ranges::transform(upper, upper.begin(), Upper);
    return map.count("/" + letters) + map.count("/" + upper) != 0;
}

void CheckOptions(const OptionMap& map)
{
    const CommandLineDecision decision = DecideOptions(map);
    const RunOptionsRecord& options = decision.options;
    const bool help = !map.empty() && (Has(map, "h") || map.count("/?") != 0);
    const bool silent = !help && Has(map, "s");
    const bool forced = silent && Has(map, "r");
    const bool suppressed = silent && !forced && Has(map, "nr");
    const bool package = !help && !forced && !suppressed && (Has(map, "m") || Has(map, "md"));
    Promise(decision.help == help, "help is asked for with /h or /?");
    Promise((options.silent == 1) == silent, "/s");
    Promise((options.forceReboot == 1) == forced, "/r counts with /s");
    Promise((options.suppressReboot == 1) == suppressed, "/nr counts with /s, and /r wins");
    Promise((options.msiMode == 1) == package, "/m and /md count unless a restart option cancels them");
    Promise((options.oemGui == 1) == (package && !Has(map, "m")), "/md without /m");
    Promise((options.forceInfScan == 1) == (!help && Has(map, "n")), "/n");
    const std::size_t lines = map.empty() ? 1U
                              : help      ? 2U
                                          : std::size_t{silent} + forced + suppressed + package + options.forceInfScan;
    Promise(decision.traceLines.size() == lines, "a line for each option that counts");
}

void CheckEnd(const RunOptionsRecord& options, bool needed)
{
    const RestartAction action = DecideRestart(options, needed);
    if (options.forceReboot != 0) {
        Promise(action == RestartAction::Restart, "/r restarts whatever was found");
    } else if (options.suppressReboot != 0 || !needed) {
        Promise(action == RestartAction::None, "no restart that is not needed or not wanted");
    } else if (options.msiMode != 0) {
        Promise(action == RestartAction::RecordForInstaller, "a package restarts by itself");
    } else {
        Promise(action == (options.silent != 0 ? RestartAction::Restart : RestartAction::Ask), "asks who can answer");
    }
    Promise(OutcomeDecidesRestart(options) == (options.forceReboot + options.suppressReboot == 0),
            "unless it is settled");
    Promise(IsUnattended(options) == (options.silent != 0 || (options.msiMode != 0 && options.oemGui == 0)),
            "silent, or a package's step other than the OEM variant");
    if (IsUnattended(options)) {
        Promise(action != RestartAction::Ask, "nobody is asked when nobody is there");
    }
}

void CheckOutcome(unsigned bits)
{
    const auto bit = [bits](unsigned place) { return (bits >> place & 1) != 0; };
    RestartFacts facts;
    facts.iscsi = {bit(0), bit(1), bit(2), bit(3)};
    facts.iscsiBootAdapter = bit(4);
    const bool adapterAndThree = bit(4) && bit(0) && bit(1) && bit(2);
    Promise(!RestartReasons(facts).empty() == adapterAndThree, "adapter, system, patch and initiator");
    Promise(IscsiSettingsAreVerified(facts) == (adapterAndThree && bit(3)), "and the crash dump");
    Promise(OutcomeString(bit(5), bit(6)) == (bit(5) ? (bit(6) ? 24U : 9U) : 5U), "none, some failed, or done");
}

void CheckFamily(const std::string& family)
{
    RunFlow expected = RunFlow::Unknown;
    for (const char* name : {"Windows 2000", "Windows Whistler", "Windows Vista"}) {
        expected = SameLetters(family, name) ? RunFlow::WindowsNT : expected;
    }
    expected = SameLetters(family, "Windows Millenium") ? RunFlow::WindowsMe : expected;
    expected = SameLetters(family, "Windows 98") ? RunFlow::Windows98 : expected;
    Promise(FlowForFamily(family) == expected, "the flow of a family");
    const bool isNT = SameLetters(family, "Windows NT");
    Promise(MessageForProberStatus(0x80640008, family) == 8U, "administrator rights");
    Promise(MessageForProberStatus(0x80640010, family) == 5U, "no adapter");
    Promise(MessageForProberStatus(0x80640011, family) == 4U, "not ready");
    Promise(MessageForProberStatus(0x80640013, family) == (isNT ? 6U : 7U), "system not supported");
    const auto other = static_cast<uint32_t>(std::hash<std::string>{}(family));
    Promise(!MessageForProberStatus(other & 0x7FFFFFFF, family), "no message for any other status");
}

/// A part's number as the runtime reads it.
long NumberOf(const std::string& part)
{
    return std::strtol(part.c_str(), nullptr, 10);
}

void CheckExtension(const std::string& version)
{
    std::optional<bool> allowed;
    try {
        allowed = ManagementExtensionAllowsUpdate(version);
    } catch (const std::out_of_range&) {
        allowed.reset();
    }
    const std::size_t stop = version.find('.');
    const bool twoParts = stop != std::string::npos && stop + 1 < version.size();
    Promise(allowed.has_value() == twoParts, "a version has two parts");
    if (twoParts) {
        const long major = NumberOf(version.substr(0, stop));
        const long minor = NumberOf(version.substr(stop + 1));
        Promise(*allowed == (major > 16 || (major == 16 && minor >= 2)), "16.2 or later");
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::vector<std::string> arguments{"Morvix.exe"};
    std::string argument;
    for (std::size_t at = 0; at < size; ++at) {
        const char c = static_cast<char>(data[at]);
        if (c == '\n' || c == '\0') {
            arguments.push_back(argument);
            argument.clear();
        } else {
            argument += c;
        }
    }
    arguments.push_back(argument);
    std::vector<const char*> argv;
    for (const std::string& text : arguments) {
        argv.push_back(text.c_str());
        CheckFamily(text);
        CheckExtension(text);
        CheckExtension("16." + text);
    }
    OptionMap map{{"left over", {}}};
    const OptionMap expected = ReadCommandLine(arguments);
    // One entry more than is told: nothing behind the count is read.
    const int count = ParseCommandLine(map, static_cast<int>(argv.size()), argv.data());
    Promise(map == expected, "the options with their values");
    Promise(count == static_cast<int>(expected.size()), "the number of distinct options");
    for (const std::string& text : arguments) {
        Promise(HasOption(map, text) == (expected.count(text) != 0), "exact and case-sensitive");
    }
    Promise(ParseCommandLine(map, 0, nullptr) == 0 && map.empty(), "no arguments, no options");
    CheckOptions(expected);
    const RunOptionsRecord options = DecideOptions(expected).options;
    CheckEnd(options, false);
    CheckEnd(options, true);
    unsigned bits = size == 0 ? 0U : data[size - 1];
    CheckOutcome(bits);
    RunOptionsRecord any{bits & 1, bits >> 1 & 1, bits >> 2 & 1, bits >> 3 & 1, bits >> 4 & 1, 0};
    CheckEnd(any, (bits >> 5 & 1) != 0);
    return 0;
}
