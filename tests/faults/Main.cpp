#include <gtest/gtest.h>

#include <iostream>
#include <string>

#include "Modes.h"

/// Without arguments: the tests, which make one call fail for each verdict. With --every-call each single call fails in
/// turn, of all scenarios or of one, which takes long. With --write SCENARIO its verdicts are written down beside the
/// kept ones, with --show SCENARIO what its run does.
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
    if (argc == 3 && mode == "--write") {
        return WriteDown(argv[2]);
    }
    if (argc == 3 && mode == "--show") {
        return Show(argv[2]);
    }
    std::cerr << "usage: morvix_faults [--every-call [SCENARIO] | --write SCENARIO | --show SCENARIO]\n";
    return 2;
}
