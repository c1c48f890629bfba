#include <gmock/gmock.h>

#include <cstring>

#include "NetInstClient.h"

// The suite starts itself again to test the libraries on other systems; apart from that it is an ordinary test program.
int main(int argc, char** argv)
{
    if (argc == 3 && std::strcmp(argv[1], kTaskArgument) == 0) {
        return RunTask(argv[2]);
    }
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
