#include "StepOutcome.h"

#include <cstdio>

namespace {
constexpr uint32_t kRestartWanted = 3010;
// GoogleTest ends with 0 or 1; a program that must not run on a machine with 4.
constexpr uint32_t kTestsFailed = 1;
constexpr uint32_t kRefused = 4;

std::string Hexadecimal(uint32_t number)
{
    char digits[16];
    std::snprintf(digits, sizeof(digits), "0x%08X", static_cast<unsigned>(number));
    return digits;
}

std::string ForXml(std::string_view text)
{
    std::string escaped;
    for (const char character : text) {
        switch (character) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            default:
                escaped += static_cast<unsigned char>(character) < ' ' ? ' ' : character;
        }
    }
    return escaped;
}

std::string OneCase(const Step& step, std::string_view name, std::string_view failure)
{
    const std::string count = failure.empty() ? "0" : "1";
    const std::string head = R"( tests="1" failures=")" + count + R"(" disabled="0" errors="0" name=")";
    std::string text = R"(<?xml version="1.0" encoding="UTF-8"?>)"
                       "\n<testsuites" +
                       head + "AllTests\">\n  <testsuite" + head + step.name + "\">\n    <testcase name=\"" +
                       std::string(name) + R"(" status="run" result="completed" classname=")" + step.name + "\"";
    text += failure.empty() ? "/>\n" : ">\n      <failure message=\"" + ForXml(failure) + "\"/>\n    </testcase>\n";
    return text + "  </testsuite>\n</testsuites>\n";
}

std::string Failure(const Step& step, const StepEnd& end, StepOutcome outcome)
{
    const std::string where = end.lastCase.empty() ? "" : "; the last test was " + end.lastCase;
    switch (outcome) {
        case StepOutcome::Refused:
            return "refused to run on this machine: see " + step.name + ".log";
        case StepOutcome::Crashed:
            return "crashed: ended with exit code " + Hexadecimal(end.exitCode) + where;
        case StepOutcome::Hung:
            return "hung: ended after " + std::to_string(step.limitSeconds) + " seconds" + where;
        case StepOutcome::NotStarted:
            return "could not be started: error " + std::to_string(end.error);
        case StepOutcome::Interrupted:
            return "interrupted: the machine or the run ended in this step" + where;
        default:
            return end.exitCode == 0 ? "" : "ended with exit code " + Hexadecimal(end.exitCode);
    }
}
} // namespace

StepOutcome OutcomeOf(const Step& step, const StepEnd& end, bool afterRestart)
{
    if (!end.started) {
        return StepOutcome::NotStarted;
    }
    if (!end.inTime) {
        return StepOutcome::Hung;
    }
    if (end.exitCode == kRestartWanted && !afterRestart) {
        return StepOutcome::WantsRestart;
    }
    if (step.judgedBy == JudgedBy::ExitCode) {
        return StepOutcome::Ended;
    }
    if (end.exitCode == kRefused && !end.wroteResults) {
        return StepOutcome::Refused;
    }
    return end.wroteResults && end.exitCode <= kTestsFailed ? StepOutcome::Ended : StepOutcome::Crashed;
}

std::string_view NameOf(StepOutcome outcome)
{
    switch (outcome) {
        case StepOutcome::Ended:
            return "ended";
        case StepOutcome::WantsRestart:
            return "wants a restart";
        case StepOutcome::Refused:
            return "refused";
        case StepOutcome::Crashed:
            return "crashed";
        case StepOutcome::Hung:
            return "hung";
        case StepOutcome::NotStarted:
            return "not started";
        case StepOutcome::Interrupted:
            return "interrupted";
    }
    return "";
}

std::optional<std::string> ReportBesideResults(const Step& step, const StepEnd& end, StepOutcome outcome)
{
    const bool saysItItself = step.judgedBy == JudgedBy::Results && end.wroteResults && outcome == StepOutcome::Ended;
    if (saysItItself || outcome == StepOutcome::WantsRestart) {
        return std::nullopt;
    }
    return OneCase(step, step.judgedBy == JudgedBy::ExitCode ? "Succeeds" : "Ends", Failure(step, end, outcome));
}

std::string InterruptedReport(const Step& step)
{
    return OneCase(step, "Ends", Failure(step, {}, StepOutcome::Interrupted));
}

std::string LastCase(std::string_view output)
{
    constexpr std::string_view kMark = "[ RUN      ] ";
    const std::size_t at = output.rfind(kMark);
    if (at == std::string_view::npos) {
        return {};
    }
    output.remove_prefix(at + kMark.size());
    return std::string(output.substr(0, output.find_first_of("\r\n")));
}
