#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <ostream>

#include "DebugOutput.h"
#include "MatrixMachine.h"
#include "ProgramRun.h"
#include "RestartWatch.h"

void PrintTo(const MatrixRow& row, std::ostream* out);

/// Runs one row of the matrix as its user would, and compares its windows with what is expected while it lasts.
class MatrixRun : public testing::TestWithParam<MatrixRow>
{
protected:
    static void SetUpTestSuite();
    static void TearDownTestSuite();

    MatrixRun();

    /// Goes through the run to its end. Every test does this once.
    FinishedRun GoThrough();

    [[nodiscard]] const ExpectedRun& Expected() const { return m_expected; }
    [[nodiscard]] const MatrixMachine& OnMachine() const { return m_machine; }
    [[nodiscard]] RunFolder& Folder() const { return m_folder; }
    /// What the run has changed in its folder.
    [[nodiscard]] static std::vector<std::string> FolderChanges();
    /// How many restarts the system was asked for.
    [[nodiscard]] size_t Restarts() const;

private:
    void WatchToTheEnd(const ProgramRun& run) const;
    void AnswerRefusal(const ProgramRun& run) const;
    void UseDialog(const ProgramRun& run) const;

    const ExpectedRun m_expected;
    RunFolder& m_folder;
    const MatrixMachine m_machine;
    const size_t m_restartsBefore;
};
