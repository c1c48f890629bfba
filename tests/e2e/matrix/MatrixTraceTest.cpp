// The whole debugger output of one run on each system, line by line.

#include <gtest/gtest.h>

#include "MatrixRun.h"
#include "TraceFile.h"

namespace {
class MatrixTrace : public MatrixRun
{
};

TEST_P(MatrixTrace, IsTheKeptOne)
{
    const FinishedRun run = GoThrough();

    EXPECT_EQ(run.exitCode, Expected().exitCode);
    EXPECT_EQ(
        DifferenceFromKeptTrace("system-" + std::string(GetParam().system->name) + ".txt", Folder(),
                                WithoutTheMachinesOwnDevices(run.lines), {{"<SOURCE>", OnMachine().GivenSourcePath()}}),
        "");
}

// Other options and another machine on each system, so that together they tell of every kind of run. None restarts the
// system: the line that says so comes from the dialog's thread, at no certain place among those of the installation.
INSTANTIATE_TEST_SUITE_P(
    Kept, MatrixTrace,
    testing::Values(RowOf("Windows95", "none", Machine::Match), RowOf("Windows98", "s_n", Machine::Match),
                    RowOf("WindowsMe", "none", Machine::NoAdapter), RowOf("WindowsNT351", "s_m", Machine::NoAdapter),
                    RowOf("WindowsNT4", "digit", Machine::Match), RowOf("Windows2000", "s_m", Machine::Match),
                    RowOf("WindowsXP", "s_nr", Machine::Match), RowOf("WindowsXPx64", "n_s_nr", Machine::Match),
                    RowOf("WindowsServer2003", "m", Machine::InterfaceRefuses),
                    RowOf("WindowsVista", "none", Machine::Match), RowOf("WindowsServer2008", "s", Machine::NoMatch),
                    RowOf("Windows7", "n_md", Machine::Match),
                    RowOf("WindowsServer2008R2", "s_md", Machine::FilesMissing),
                    RowOf("Windows8", "silent", Machine::FilesMissing),
                    RowOf("Windows8Server", "NR_m", Machine::NoAdapter), RowOf("Windows10", "S_N", Machine::NoMatch)),
    [](const testing::TestParamInfo<MatrixRow>& row) { return NameOf(row.param); });
} // namespace
