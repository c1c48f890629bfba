#include "StepReport.h"

namespace {
std::string EndLine(const StepRequest& request, const ProgramEnd& end)
{
    switch (end.kind) {
        case ProgramEnd::Kind::NotStarted:
            return "the program cannot be started: error " + std::to_string(end.code);
        case ProgramEnd::Kind::StoppedForTime:
            return "the program did not end within " + std::to_string(request.timeLimitSeconds) +
                   " seconds and was stopped";
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
} // namespace

bool StepHasFailed(const ProgramEnd& end, const ResultRecords& records)
{
    return end.kind != ProgramEnd::Kind::Ended || end.code != 0 || IsFailureRecord("Install", records.install);
}

std::vector<std::string> StepReport(const StepRequest& request, const ProgramEnd& end, const ResultRecords& records)
{
    std::vector<std::string> lines = {EndLine(request, end)};
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
