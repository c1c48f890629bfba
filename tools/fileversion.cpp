// fileversion <file>: prints the version that a file's version resource states.

#include <array>
#include <cstdio>

#include "FileVersion.h"

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("usage: fileversion <file>\n", stderr);
        return 2;
    }
    std::array<char, 24> version{};
    if (!GetModuleVersion(argv[1], version)) {
        std::fprintf(stderr, "fileversion: %s does not exist or states no version\n", argv[1]);
        return 1;
    }
    std::puts(version.data());
    return 0;
}
