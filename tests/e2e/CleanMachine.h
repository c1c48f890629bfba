#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "DebugOutput.h"
#include "ProgramRun.h"
#include "RunFolder.h"

/// Removes from this machine everything that a run of the program or a test can leave: simulated adapters, services and
/// driver files of the sample kit, stored INF files, the program's registry values and its uninstall file.
void CleanTheMachine();

/// Every test starts on a clean machine with the installer's trace on and a fresh copy of the shippable folder, and
/// leaves a clean machine behind.
class CleanMachine : public testing::Test
{
protected:
    CleanMachine();
    ~CleanMachine() override;

    /// Runs Morvix.exe from the folder to its end.
    /// @return what the run left: exit code and trace.
    FinishedRun RunMorvix(const std::string& arguments);

    /// The same with another name of the program on the command line and another current directory.
    FinishedRun RunMorvixCalled(const std::string& calledAs, const std::string& arguments,
                                const std::string& workingDirectory);

    /// Starts Morvix.exe and returns at once.
    std::unique_ptr<ProgramRun> StartMorvix(const std::string& arguments);

    /// Switches the trace off or on.
    static void SwitchTrace(bool on);

    RunFolder& Folder() { return m_folder; }
    DebugOutput& Output() { return m_output; }

private:
    // First member: the machine is clean before anything else is made and after everything else is gone.
    struct Cleaning
    {
        Cleaning() { CleanTheMachine(); }
        ~Cleaning() { CleanTheMachine(); }
    };
    Cleaning m_cleaning;
    RunFolder m_folder;
    DebugOutput m_output;
};
