#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HelperPrograms.h"

int main(int argc, char** argv)
{
    if (const std::optional<int> exitCode = RunAsHelperProgram()) {
        return *exitCode;
    }
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
