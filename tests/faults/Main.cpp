#include <gtest/gtest.h>

#include <cstring>
#include <iostream>

#include "Modes.h"

bool everyCall = false;

/// With --every-call each single call is made to fail, not only the first and the last of those that are alike.
/// With --write SCENARIO the verdicts are written down as they are.
int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (argc == 3 && std::strcmp(argv[1], "--write") == 0) {
        return WriteDown(argv[2]);
    }
    if (argc == 3 && std::strcmp(argv[1], "--show") == 0) {
        return Show(argv[2]);
    }
    everyCall = argc == 2 && std::strcmp(argv[1], "--every-call") == 0;
    if (argc != (everyCall ? 2 : 1)) {
        std::cerr << "usage: morvix_faults [--every-call | --write SCENARIO | --show SCENARIO]\n";
        return 2;
    }
    return RUN_ALL_TESTS();
}
