#include "Journal.h"

#include <windows.h>

#include <array>
#include <cstdio>
#include <cstdlib>

#include "Handles.h"

namespace {
// Linked into each double, so the module that holds this function is the double itself.
std::string OwnPath()
{
    HMODULE self = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const char*>(&OwnPath), &self);
    std::array<char, MAX_PATH> path{};
    GetModuleFileNameA(self, path.data(), path.size());
    return path.data();
}

std::string AnswersPath()
{
    const std::string path = OwnPath();
    return path.substr(0, path.rfind('.')) + ".answers.ini";
}
} // namespace

std::string BesideTheDouble(const std::string& name)
{
    const std::string own = OwnPath();
    return own.substr(0, own.rfind('\\') + 1) + name;
}

void WriteJournal(const std::string& line)
{
    const std::string path = BesideTheDouble("journal.txt");
    const UniqueFile file(CreateFileA(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    const std::string text = line + "\n";
    DWORD written = 0;
    if (!file.IsOpen() ||
        WriteFile(file.Get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr) == FALSE) {
        // A journal that loses a line would let a test pass for the wrong reason.
        std::abort();
    }
}

std::string Answer(const std::string& key, const std::string& otherwise)
{
    std::array<char, 512> text{};
    GetPrivateProfileStringA("Answers", key.c_str(), otherwise.c_str(), text.data(), text.size(),
                             AnswersPath().c_str());
    return text.data();
}

uint32_t AnswerNumber(const std::string& key)
{
    return static_cast<uint32_t>(std::strtoul(Answer(key, "0").c_str(), nullptr, 0));
}

void HoldUntilThereIs(const std::string& name)
{
    while (GetFileAttributesA(BesideTheDouble(name).c_str()) == INVALID_FILE_ATTRIBUTES) {
        Sleep(20);
    }
}

std::string Hex(uint32_t number)
{
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%08lX", static_cast<unsigned long>(number));
    return text.data();
}
