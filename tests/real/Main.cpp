#include <gmock/gmock.h>

#include "Bundle.h"
#include "ChildTask.h"
#include "Machine.h"

int main(int argc, char** argv)
{
    if (argc > 1 && argv[1] == std::string(kChildArgument)) {
        return RunChildTask({argv + 2, argv + argc});
    }
    SeeTheScreenInItsRealSize();
    UseBundle();
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
