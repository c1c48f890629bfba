#include "CommandLine.h"

namespace {
bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool IsOption(std::string_view token)
{
    return token.size() >= 2 && token[0] == '/' && !IsDigit(token[1]);
}

// Every option has two spellings, all lower and all upper case; mixed case is not an option.
bool HasEither(const OptionMap& optionMap, std::string_view lower, std::string_view upper)
{
    return HasOption(optionMap, lower) || HasOption(optionMap, upper);
}

void DecideInteractive(const OptionMap& optionMap, CommandLineDecision& decision)
{
    if (HasEither(optionMap, "/m", "/M")) {
        decision.traceLines.emplace_back("command line: '/m', install MSI\n");
        decision.options.msiMode = true;
    } else if (HasEither(optionMap, "/md", "/MD")) {
        decision.traceLines.emplace_back("command line: '/md', install MSI, OEM variant\n");
        decision.options.msiMode = true;
        decision.options.oemGui = true;
    }
}

void DecideSilent(const OptionMap& optionMap, CommandLineDecision& decision)
{
    decision.traceLines.emplace_back("command line: '/s', install silently\n");
    decision.options.silent = true;
    if (HasEither(optionMap, "/r", "/R")) {
        decision.traceLines.emplace_back("command line: '/r', force a reboot\n");
        decision.options.forceReboot = true;
    } else if (HasEither(optionMap, "/nr", "/NR")) {
        decision.traceLines.emplace_back("command line:  '/nr', suppress a reboot request");
        decision.options.suppressReboot = true;
    } else if (HasEither(optionMap, "/m", "/M")) {
        decision.traceLines.emplace_back("command line: '/s /m', install MSI\n");
        decision.options.msiMode = true;
    } else if (HasEither(optionMap, "/md", "/MD")) {
        decision.traceLines.emplace_back("command line: '/s /md', install MSI, OEM variant\n");
        decision.options.msiMode = true;
        decision.options.oemGui = true;
    }
}
} // namespace

int ParseCommandLine(OptionMap& optionMap, int argc, const char* const* argv)
{
    optionMap.clear();
    std::vector<std::string>* values = nullptr;
    for (int i = 1; i < argc; ++i) {
        const std::string token = argv[i];
        if (!IsOption(token)) {
            if (values != nullptr) {
                values->push_back(token);
            }
            continue;
        }
        std::vector<std::string> firstValue;
        if (i + 1 < argc && !IsOption(argv[i + 1])) {
            firstValue.emplace_back(argv[++i]);
        }
        // An option that is already there keeps its entry; the value taken with the repetition is dropped.
        values = &optionMap.try_emplace(token, std::move(firstValue)).first->second;
    }
    return static_cast<int>(optionMap.size());
}

bool HasOption(const OptionMap& optionMap, std::string_view token)
{
    return optionMap.contains(std::string(token));
}

CommandLineDecision DecideOptions(const OptionMap& optionMap)
{
    CommandLineDecision decision;
    if (optionMap.empty()) {
        decision.traceLines.emplace_back("command line: no options, install in GUI mode\n");
        return decision;
    }
    if (HasEither(optionMap, "/h", "/H") || HasOption(optionMap, "/?")) {
        decision.traceLines.emplace_back("command line: '/h', display help\n");
        decision.traceLines.emplace_back("WinMain() exit, returning 0\n");
        decision.help = true;
        return decision;
    }
    if (HasEither(optionMap, "/s", "/S")) {
        DecideSilent(optionMap, decision);
    } else {
        DecideInteractive(optionMap, decision);
    }
    if (HasEither(optionMap, "/n", "/N")) {
        decision.traceLines.emplace_back("command line: '/n', force scan of all INF files\n");
        decision.options.forceInfScan = true;
    }
    return decision;
}
