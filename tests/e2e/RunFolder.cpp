#include "RunFolder.h"

#include <windows.h>

#include <filesystem>
#include <sstream>
#include <stdexcept>

#include "Environment.h"

namespace {
// Every section of the setup INI that some system reads.
constexpr const char* kSystemSections[] = {
    "WinXP32",    "WinXP64",        "WinXP32E",      "WinSrv2K332",  "WinSrv2K364", "WinSrv2K332E",
    "WinVista32", "WinVista32E",    "WinSrv2K832",   "WinSrv2K832E", "WinSrv2K864", "Win732",
    "Win732E",    "WinSrv2K8R232E", "WinSrv2K8R264", "Win832",       "Win832E",
};
} // namespace

RunFolder::RunFolder()
{
    for (const auto& entry : std::filesystem::directory_iterator(DistFolder())) {
        // The folder also holds the package made from it; no run needs that.
        if (entry.path().extension() != ".msi") {
            std::filesystem::copy(entry.path(), At(entry.path().filename().string()),
                                  std::filesystem::copy_options::recursive);
        }
    }
}

void RunFolder::Remove(const std::string& name) const
{
    if (DeleteFileA(At(name).c_str()) == FALSE) {
        throw std::runtime_error("cannot remove " + At(name));
    }
}

void RunFolder::WriteSetupIni(const std::vector<std::string>& lines, const std::string& levelsToRoot) const
{
    std::string text = "[Config]\r\nLevelsToRoot=" + levelsToRoot + "\r\n";
    for (const char* section : kSystemSections) {
        text += std::string("[") + section + "]\r\n";
        for (const std::string& line : lines) {
            text += line + "\r\n";
        }
    }
    Write("Morvix.ini", text);
}

void RunFolder::UseDouble(const std::string& name, const std::string& fileName) const
{
    CopyFileTo(DoublesFolder() + "\\" + name, At(fileName.empty() ? name : fileName));
}

void RunFolder::Answer(const std::string& name, const std::string& key, const std::string& value) const
{
    const std::string path = At(name + ".answers.ini");
    if (WritePrivateProfileStringA("Answers", key.c_str(), value.c_str(), path.c_str()) == FALSE) {
        throw std::runtime_error("cannot write " + path);
    }
}

std::vector<std::string> RunFolder::Journal() const
{
    std::vector<std::string> lines;
    if (FileExists(At("journal.txt"))) {
        std::istringstream text(ReadFileBytes(At("journal.txt")));
        for (std::string line; std::getline(text, line);) {
            lines.push_back(line);
        }
    }
    return lines;
}

std::vector<std::string> RunFolder::JournalLines(const std::string& start) const
{
    std::vector<std::string> lines = Journal();
    std::erase_if(lines, [&](const std::string& line) { return !line.starts_with(start); });
    return lines;
}
