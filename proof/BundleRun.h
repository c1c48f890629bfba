#pragma once

#include <string>

/// Where a run of the bundle keeps what it makes. The folders are there.
struct BundleFolders
{
    std::string root;    ///< of the unpacked bundle, and the current folder
    std::string report;  ///< what becomes the report
    std::string results; ///< below it, for the steps

    [[nodiscard]] std::string StateFile() const { return report + R"(\state.txt)"; }
    [[nodiscard]] std::string TableFile() const { return report + R"(\steps.tsv)"; }
};

/// What is to be done after a call of RunNextStep.
enum class AfterStep
{
    GoOn,
    AllDone,
    Restart
};

/// Begins a run of the steps that `chosen` names, all when it is empty.
/// Throws std::invalid_argument for a name that no step has.
void BeginRun(const BundleFolders& folders, const std::string& chosen);

/// Runs the first step that has not ended, and records what became of it. A step in which the machine or the run has
/// ended is recorded as that and not tried again.
[[nodiscard]] AfterStep RunNextStep(const BundleFolders& folders);

/// Compares the files of the bundle with sums.txt.
/// @return those that are missing or changed, one a line; empty when there are none.
[[nodiscard]] std::string ChangedFiles(const std::string& root);
