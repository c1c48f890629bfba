#include <gtest/gtest.h>

#include <iostream>
#include <string>

#include "Modes.h"

/// Without arguments: the tests, which make the first and the last call of each name fail. With --every-call each
/// single call fails in turn, of all scenarios or of one, which takes long. With --show SCENARIO what its run does.
int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    const std::string mode = argc > 1 ? argv[1] : "";
    if (argc == 1) {
        return RUN_ALL_TESTS();
    }
    if (argc <= 3 && mode == "--every-call") {
        return EveryCall(argc == 3 ? argv[2] : "");
    }
    if (argc == 3 && mode == "--show") {
        return Show(argv[2]);
    }
    std::cerr << "usage: morvix_faults [--every-call [SCENARIO] | --show SCENARIO]\n";
    return 2;
}
