#include "SystemLibraryDoubles.h"

#include <sstream>

#include "CompanionFiles.h"

SystemLibraryDoubles* SystemLibraryDoubles::s_current = nullptr;

SystemLibraryDoubles::SystemLibraryDoubles(HMODULE module)
    : m_override("LoadLibraryExA", reinterpret_cast<void*>(&Load), module)
{
    s_current = this;
}

SystemLibraryDoubles::~SystemLibraryDoubles()
{
    s_current = nullptr;
}

void SystemLibraryDoubles::Use(const std::string& name)
{
    CopyFileTo(BuiltFile("tests\\doubles\\" + name), PathOf(name));
    m_places[name] = PathOf(name);
}

void SystemLibraryDoubles::Lack(const std::string& name)
{
    m_places[name] = "";
}

void SystemLibraryDoubles::Answer(const std::string& name, const std::string& key, const std::string& value) const
{
    const std::string path = PathOf(name);
    WritePrivateProfileStringA("Answers", key.c_str(), value.c_str(),
                               (path.substr(0, path.rfind('.')) + ".answers.ini").c_str());
}

std::vector<std::string> SystemLibraryDoubles::Journal() const
{
    std::vector<std::string> lines;
    if (FileExists(m_directory.At("journal.txt"))) {
        std::istringstream text(ReadFileBytes(m_directory.At("journal.txt")));
        for (std::string line; std::getline(text, line);) {
            lines.push_back(line);
        }
    }
    return lines;
}

HMODULE WINAPI SystemLibraryDoubles::Load(LPCSTR path, HANDLE file, DWORD flags)
{
    const std::string asked = path;
    s_current->m_loaded.push_back(asked);
    const auto place = s_current->m_places.find(asked.substr(asked.rfind('\\') + 1));
    if (place == s_current->m_places.end()) {
        return LoadLibraryExA(path, file, flags);
    }
    if (place->second.empty()) {
        SetLastError(ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    return LoadLibraryExA(place->second.c_str(), file, flags);
}
