#include <windows.h>

#include <array>
#include <fstream>
#include <string>

/// A program that other programs start in tests: appends its command line and its current directory to the file
/// "<its own path>.journal.txt" and ends with exit code 7.
int main()
{
    std::array<char, MAX_PATH> own{};
    GetModuleFileNameA(nullptr, own.data(), MAX_PATH);
    std::array<char, MAX_PATH> directory{};
    GetCurrentDirectoryA(MAX_PATH, directory.data());
    std::ofstream journal(std::string(own.data()) + ".journal.txt", std::ios::app | std::ios::binary);
    journal << "command line: " << GetCommandLineA() << "\ndirectory: " << directory.data() << '\n';
    return 7;
}
