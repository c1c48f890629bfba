#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "ChildReport.h"
#include "ProgramRun.h"

/// Switches the installer's trace on for the life of the object, and leaves the maker's keys as they were.
class TraceKey
{
public:
    TraceKey();
    ~TraceKey();
    TraceKey(const TraceKey&) = delete;
    TraceKey& operator=(const TraceKey&) = delete;

private:
    bool m_makerWasThere;
    bool m_traceWasOn;
};

/// Runs on a machine without an adapter. Rows are skipped on one that has or had one.
class EmptyMachine : public testing::Test
{
protected:
    EmptyMachine();
    void SetUp() override;

    /// A silent run of the program in `folder`.
    [[nodiscard]] static FinishedRun RunSilentlyIn(const std::string& folder);

    /// The run ended well, traced what such a run traces on every machine, and recorded nothing.
    /// @param folder  The program's folder as the run saw it.
    void ExpectSilentRun(int exitCode, const std::vector<std::string>& lines, const std::string& folder) const;
    void ExpectSilentRun(const FinishedRun& run, const std::string& folder) const
    {
        ExpectSilentRun(run.exitCode, run.lines, folder);
    }
    /// The same for the run of a child.
    void ExpectSilentRun(const ChildReport& report, const std::string& folder) const;

    /// Runs with the dialog from the welcome to the finish button. Leaves pictures <picture>-welcome and
    /// <picture>-done.
    static void ExpectDialog(const std::string& picture);

private:
    using Results = std::map<std::string, std::string>;
    static Results ResultValues();

    TraceKey m_trace;
    Results m_resultsBefore = ResultValues();
};
