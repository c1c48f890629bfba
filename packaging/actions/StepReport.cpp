#include "StepReport.h"

namespace {
std::string EndLine(const StepRequest& request, const ProgramEnd& end)
{
    switch (end.kind) {
        case ProgramEnd::Kind::NotStarted:
            return "the program cannot be started: error " + std::to_string(end.code);
        case ProgramEnd::Kind::StillRunning:
            return "the program did not end within " + std::to_string(request.timeLimitSeconds) +
                   " seconds and was left running";
        case ProgramEnd::Kind::Cancelled:
            return "the installation was cancelled and the program left running";
        case ProgramEnd::Kind::Ended:
            break;
    }
    // The program's own failure code is -1.
    return "the program ended with exit code " + std::to_string(static_cast<std::int32_t>(end.code));
}

std::string RecordLine(const ResultRecords& records)
{
    if (records.install.empty()) {
        return "Install is not recorded: no adapter was matched";
    }
    return "Install = " + records.install + (records.version.empty() ? "" : ", Version = " + records.version);
}

bool IsLeftRunning(const ProgramEnd& end)
{
    return end.kind == ProgramEnd::Kind::StillRunning || end.kind == ProgramEnd::Kind::Cancelled;
}
} // namespace

bool StepHasFailed(const ProgramEnd& end, const ResultRecords& records)
{
    return end.kind != ProgramEnd::Kind::Ended || end.code != 0 || IsFailureRecord("Install", records.install);
}

StepOutcome DecideStep(const StepRequest& request, const ProgramEnd& end, const ResultRecords& records)
{
    if (end.kind == ProgramEnd::Kind::Cancelled) {
        return StepOutcome::Cancelled;
    }
    const bool counts = request.failOnFailure || IsLeftRunning(end);
    return StepHasFailed(end, records) && counts ? StepOutcome::Failed : StepOutcome::Done;
}

std::vector<std::string> StepReport(const StepRequest& request, const ProgramEnd& end, const ResultRecords& records)
{
    std::vector<std::string> lines = {EndLine(request, end)};
    if (IsLeftRunning(end)) {
        lines.emplace_back(
            "a device installation may still be going on: leave the machine on until Morvix.exe has ended");
        lines.emplace_back("the package fails: the result of the drivers is not known");
        return lines;
    }
    const bool ranToItsEnd = end.kind == ProgramEnd::Kind::Ended && end.code == 0;
    if (ranToItsEnd || !records.install.empty()) {
        lines.push_back(RecordLine(records));
        for (const std::string& family : records.failedFamilies) {
            lines.push_back("FAILURE of family " + family);
        }
    }
    if (StepHasFailed(end, records)) {
        lines.emplace_back(request.failOnFailure ? "the package fails: FAILONFAILURE is 1"
                                                 : "the package goes on: FAILONFAILURE is not 1");
    }
    return lines;
}

std::string StepError(const StepRequest& request, const ProgramEnd& end)
{
    if (end.kind == ProgramEnd::Kind::StillRunning) {
        return EndLine(request, end) + ": a device installation may still be going on";
    }
    return "the drivers were not installed";
}

bool RestartIsNeeded(const ResultRecords& records)
{
    return records.restartNeeded || records.libraryNeedsRestart;
}

std::string RestartReport(const ResultRecords& records)
{
    if (records.restartNeeded) {
        return "RebootNeeded is recorded: a restart is asked for";
    }
    if (records.libraryNeedsRestart) {
        return "NetInst has recorded a restart: it is asked for";
    }
    return "RebootNeeded is not recorded: no restart";
}
