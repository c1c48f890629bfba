#include "MachineGuard.h"

// GoogleTest needs it, and does not include it.
#include "GtestNotification.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <iostream>

namespace {
constexpr UINT kRefused = 4;

bool IsSet(const char* variable)
{
    return GetEnvironmentVariableA(variable, nullptr, 0) > 0;
}

class MachineGuard : public testing::EmptyTestEventListener
{
public:
    MachineGuard(MachineUse use, const char* whatItDoes) : m_use(use), m_whatItDoes(whatItDoes) {}

    void OnTestProgramStart(const testing::UnitTest& /*program*/) override
    {
        std::cout << "This program " << m_whatItDoes << "." << std::endl;
        // The guard itself is tested in Wine.
        const bool inWine = RunsInWine() && !IsSet("MORVIX_NOT_IN_WINE");
        if (MayRun(m_use, inWine, IsSet("MORVIX_DISPOSABLE"))) {
            return;
        }
        std::cout << (m_use == MachineUse::Changes
                          ? "Refused: set MORVIX_DISPOSABLE=1 on a machine that is thrown away afterwards."
                          : "Refused: it runs in Wine only.")
                  << std::endl;
        ExitProcess(kRefused);
    }

private:
    MachineUse m_use;
    const char* m_whatItDoes;
};
} // namespace

bool GuardMachine(MachineUse use, const char* whatItDoes)
{
    testing::UnitTest::GetInstance()->listeners().Append(new MachineGuard(use, whatItDoes));
    return true;
}
