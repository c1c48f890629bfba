#include "InstallerLog.h"

#include <algorithm>

namespace {
constexpr std::string_view kStep = "Morvix: ";

/// Calls `judge` with the rest of each line of the steps until it answers true.
template <class Judge>
bool AnyStepLine(std::string_view log, Judge judge)
{
    while (!log.empty()) {
        const std::size_t end = std::min(log.find('\n'), log.size());
        std::string_view line = log.substr(0, end);
        log.remove_prefix(std::min(end + 1, log.size()));
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        if (line.starts_with(kStep) && judge(line.substr(kStep.size()))) {
            return true;
        }
    }
    return false;
}
} // namespace

std::string InstallerLogText(std::string_view bytes)
{
    if (!bytes.starts_with("\xFF\xFE")) {
        return std::string(bytes);
    }
    std::string text;
    for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
        const bool isAscii = bytes[i + 1] == '\0' && static_cast<unsigned char>(bytes[i]) < 0x80;
        text += isAscii ? bytes[i] : '?';
    }
    return text;
}

bool StepLogged(std::string_view log, std::string_view message)
{
    return AnyStepLine(log, [&](std::string_view line) { return line == message; });
}

bool StepLoggedLineThatBegins(std::string_view log, std::string_view start)
{
    return AnyStepLine(log, [&](std::string_view line) { return line.starts_with(start); });
}
