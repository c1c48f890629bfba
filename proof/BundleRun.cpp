#include "BundleRun.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>

#include "Files.h"
#include "Progress.h"
#include "Screenshot.h"
#include "Sha256.h"
#include "StepRun.h"
#include "Sums.h"

namespace {
std::vector<Step> AllSteps(const BundleFolders& folders)
{
    return ParseSteps(ReadWholeFile(folders.root + R"(\steps.txt)"));
}

std::string Described(const StepEnd& end, StepOutcome outcome, const std::string& name, unsigned seconds)
{
    return name + '\t' + std::string(NameOf(outcome)) + '\t' + std::to_string(end.exitCode) + '\t' +
           std::to_string(seconds) + '\n';
}

void RecordEnd(const BundleFolders& folders, const Step& step, const StepEnd& end, StepOutcome outcome,
               unsigned seconds)
{
    std::printf("%s %s\n", step.name.c_str(), std::string(NameOf(outcome)).c_str());
    AppendToFile(folders.TableFile(), Described(end, outcome, step.name, seconds));
    AppendToFile(folders.StateFile(),
                 outcome == StepOutcome::WantsRestart ? Progress::RestartLine(step) : Progress::EndedLine(step));
}

void TakePicture(const std::string& path)
{
    const std::string picture = Screenshot();
    if (!picture.empty()) {
        WriteWholeFile(path, picture);
    }
}

StepEnd RunWithResults(const BundleFolders& folders, const Step& step)
{
    const std::string beginning = folders.results + '\\' + step.name;
    const std::string results = beginning + ".xml";
    const std::string placeholder = InterruptedReport(step);
    WriteWholeFile(results, placeholder);
    std::string command = step.command;
    if (step.judgedBy == JudgedBy::Results) {
        command += " \"--gtest_output=xml:" + results + '"';
    }
    StepEnd end = RunStep(step, command, beginning + ".log", [&] { TakePicture(beginning + ".at-limit.bmp"); });
    end.wroteResults = IsFile(results) && ReadWholeFile(results) != placeholder;
    return end;
}

/// Leaves the step's own results as they are; what is to be said beside them has a file of its own.
void ReportEnd(const BundleFolders& folders, const Step& step, const StepEnd& end, StepOutcome outcome)
{
    const std::string beginning = folders.results + '\\' + step.name;
    const std::string results = beginning + ".xml";
    if (outcome == StepOutcome::WantsRestart) {
        MoveFileExA(results.c_str(), (beginning + ".before-restart.xml").c_str(), MOVEFILE_REPLACE_EXISTING);
        return;
    }
    if (const auto report = ReportBesideResults(step, end, outcome)) {
        WriteWholeFile(end.wroteResults ? beginning + ".end.xml" : results, *report);
    }
    if (outcome != StepOutcome::Ended || end.exitCode != 0) {
        TakePicture(beginning + ".end.bmp");
    }
}
} // namespace

void BeginRun(const BundleFolders& folders, const std::string& chosen)
{
    static_cast<void>(ChooseSteps(AllSteps(folders), chosen));
    WriteWholeFile(folders.TableFile(), "step\toutcome\texit code\tseconds\n");
    WriteWholeFile(folders.StateFile(), Progress::StepsLine(chosen));
}

AfterStep RunNextStep(const BundleFolders& folders)
{
    const Progress progress(ReadWholeFile(folders.StateFile()));
    const std::vector<Step> steps = ChooseSteps(AllSteps(folders), progress.ChosenSteps());
    const auto next = progress.FirstUnfinished(steps);
    if (!next) {
        return AfterStep::AllDone;
    }
    const Step& step = *next->step;
    if (next->wasInterrupted) {
        RecordEnd(folders, step, {}, StepOutcome::Interrupted, 0);
        return AfterStep::GoOn;
    }
    std::printf("%s runs, at most %u seconds\n", step.name.c_str(), step.limitSeconds);
    std::fflush(stdout);
    AppendToFile(folders.StateFile(), Progress::BegunLine(step));
    SetEnvironmentVariableA("MORVIX_PROOF_STAGE", next->afterRestart ? "2" : "1");
    const DWORD begin = GetTickCount();
    const StepEnd end = RunWithResults(folders, step);
    const StepOutcome outcome = OutcomeOf(step, end, next->afterRestart);
    ReportEnd(folders, step, end, outcome);
    RecordEnd(folders, step, end, outcome, static_cast<unsigned>((GetTickCount() - begin) / 1000));
    return outcome == StepOutcome::WantsRestart ? AfterStep::Restart : AfterStep::GoOn;
}

std::string ChangedFiles(const std::string& root)
{
    std::string changed;
    for (const ListedSum& listed : ParseSums(ReadWholeFile(root + R"(\sums.txt)"))) {
        std::string path = root + '\\' + listed.path;
        std::ranges::replace(path, '/', '\\');
        if (!IsFile(path)) {
            changed += listed.path + " is missing\n";
        } else if (Sha256(ReadWholeFile(path)) != listed.sum) {
            changed += listed.path + " was changed\n";
        }
    }
    return changed;
}
