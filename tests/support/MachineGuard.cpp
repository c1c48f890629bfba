// Part of every test program for Windows: says what the program does to the machine, and ends it before its first test
// where it must not run. cmake/Testing.cmake defines which kind of program this is.

#include <gtest/gtest.h>
#include <windows.h>

#include <iostream>

#include "MachineUse.h"

namespace {
constexpr MachineUse kUse = MachineUse::MORVIX_MACHINE_USE;
constexpr char kWhatItDoes[] = MORVIX_WHAT_IT_DOES;
constexpr UINT kRefused = 4;

bool IsSet(const char* variable)
{
    return GetEnvironmentVariableA(variable, nullptr, 0) > 0;
}

class MachineGuard : public testing::EmptyTestEventListener
{
public:
    void OnTestProgramStart(const testing::UnitTest& /*program*/) override
    {
        std::cout << "This program " << kWhatItDoes << "." << std::endl;
        // The guard itself is tested in Wine.
        const bool inWine = RunsInWine() && !IsSet("MORVIX_NOT_IN_WINE");
        if (MayRun(kUse, inWine, IsSet("MORVIX_DISPOSABLE"))) {
            return;
        }
        std::cout << (kUse == MachineUse::Changes
                          ? "Refused: set MORVIX_DISPOSABLE=1 on a machine that is thrown away afterwards."
                          : "Refused: it runs in Wine only.")
                  << std::endl;
        ExitProcess(kRefused);
    }
};

const bool guarded = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new MachineGuard);
    return true;
}();
} // namespace
