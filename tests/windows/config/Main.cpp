#include <gmock/gmock.h>

#include <iostream>

#include "ChildProcess.h"

int main(int argc, char** argv)
{
    if (argc > 1 && argv[1] == std::string(kChildArgument)) {
        try {
            return RunChildTask(std::vector<std::string>(argv + 2, argv + argc));
        } catch (const std::exception& error) {
            std::cerr << error.what() << "\n";
            return 1;
        }
    }
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
