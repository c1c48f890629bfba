#include "Report.h"

#include <windows.h>

#include <array>
#include <fstream>
#include <stdexcept>

#include "Files.h"
#include "ZipArchive.h"

namespace {
void CopyMatching(const std::string& pattern, const std::string& folder)
{
    for (const FoundFile& file : FilesOf(pattern)) {
        if (!file.isFolder) {
            CopyFileA((pattern.substr(0, pattern.rfind('\\') + 1) + file.name).c_str(),
                      (folder + '\\' + file.name).c_str(), FALSE);
        }
    }
}

void AddFolder(ZipArchive& archive, const std::string& folder, const std::string& name)
{
    for (const FoundFile& file : FilesOf(folder + "\\*")) {
        const std::string path = folder + '\\' + file.name;
        if (file.isFolder) {
            AddFolder(archive, path, name + file.name + '/');
            continue;
        }
        std::string shownName = name + file.name;
        std::string content;
        try {
            content = ReadWholeFile(path);
        } catch (const std::runtime_error& failure) {
            // A scanner, or what a step has left, may hold a file: the others are worth sending.
            shownName += ".unreadable.txt";
            content = failure.what();
        }
        archive.Add(shownName, content, file.localTime);
    }
}
} // namespace

void CopySystemLogs(const std::string& folder)
{
    const std::string windows = EnvironmentText("SystemRoot");
    // The first is that of the systems before Vista.
    for (const char* log : {R"(\setupapi.log)", R"(\inf\setupapi*.log)", R"(\Temp\MSI*.LOG)"}) {
        CopyMatching(windows + log, folder);
    }
    CopyMatching(EnvironmentText("TEMP") + R"(\MSI*.LOG)", folder);
}

void PackFolder(const std::string& folder, const std::string& archive)
{
    // Moved into its place when it is whole.
    const std::string unfinished = archive + ".new";
    {
        std::ofstream out(unfinished, std::ios::binary | std::ios::trunc);
        ZipArchive zip(out);
        AddFolder(zip, folder, "");
        zip.Finish();
        if (!out.flush()) {
            throw std::runtime_error("cannot write " + unfinished);
        }
    }
    if (MoveFileExA(unfinished.c_str(), archive.c_str(), MOVEFILE_REPLACE_EXISTING) == FALSE) {
        throw std::runtime_error("cannot write " + archive);
    }
}
