#include <windows.h>

#include <cstdint>
#include <cstring>

// A program for the tests of the stack guard. With an argument it writes over the end of a local array; without one its
// exit code is a part of the guard's value.

extern "C" uintptr_t __stack_chk_guard; // NOLINT(clang-diagnostic-reserved-identifier)

namespace {
__attribute__((noinline)) void Overrun(std::size_t length)
{
    char text[16];
    // Through a pointer that the compiler cannot follow, or it would see what happens here.
    char* volatile start = text;
    std::memset(start, 'x', length);
}
} // namespace

int main(int argc, char** argv)
{
    if (argc == 1) {
        return static_cast<int>(static_cast<uint32_t>(__stack_chk_guard >> 8U));
    }
    Overrun(16 + std::strlen(argv[1]));
    return 0;
}
