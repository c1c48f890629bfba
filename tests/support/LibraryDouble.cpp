#include "LibraryDouble.h"

#include <windows.h>

#include "TestFiles.h"

LibraryDouble::LibraryDouble(const std::string& doubleFile, const std::string& name)
    : m_answers(m_directory.At(name.substr(0, name.rfind('.')) + ".answers.ini"))
{
    CopyFileTo(TestFile("doubles\\" + doubleFile), m_directory.At(name));
    SetDllDirectoryA(m_directory.Path().c_str());
}

LibraryDouble::~LibraryDouble()
{
    SetDllDirectoryA(nullptr);
}

void LibraryDouble::Answer(const std::string& key, const std::string& value) const
{
    WritePrivateProfileStringA("Answers", key.c_str(), value.c_str(), m_answers.c_str());
}

std::vector<std::string> LibraryDouble::TakeJournal() const
{
    const std::string path = m_directory.At("journal.txt");
    std::vector<std::string> lines;
    if (!FileExists(path)) {
        return lines;
    }
    const std::string content = ReadFileBytes(path);
    for (std::size_t start = 0; start < content.size();) {
        const std::size_t end = content.find('\n', start);
        lines.push_back(content.substr(start, end - start));
        start = end + 1;
    }
    DeleteFileA(path.c_str());
    return lines;
}
