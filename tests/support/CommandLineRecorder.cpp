#include <windows.h>

#include <array>
#include <fstream>
#include <string>

/// A program that other programs start in tests: appends its command line and its current directory to the file
/// "<its own path>.journal.txt" and ends with exit code 7. While there is a file "<its own path>.hold", it runs on.
int main()
{
    constexpr DWORD kLookAgainMilliseconds = 50;
    std::array<char, MAX_PATH> own{};
    GetModuleFileNameA(nullptr, own.data(), MAX_PATH);
    std::array<char, MAX_PATH> directory{};
    GetCurrentDirectoryA(MAX_PATH, directory.data());
    const std::string program = own.data();
    std::ofstream journal(program + ".journal.txt", std::ios::app | std::ios::binary);
    journal << "command line: " << GetCommandLineA() << "\ndirectory: " << directory.data() << '\n';
    journal.close();
    while (GetFileAttributesA((program + ".hold").c_str()) != INVALID_FILE_ATTRIBUTES) {
        Sleep(kLookAgainMilliseconds);
    }
    return 7;
}
