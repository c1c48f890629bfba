#include "ScratchDirectory.h"

#include <windows.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

ScratchDirectory::ScratchDirectory()
{
    static std::atomic<unsigned> count = 0;
    const fs::path path =
        fs::temp_directory_path() / ("morvix-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++count));
    fs::remove_all(path);
    fs::create_directories(path);
    m_path = fs::canonical(path).make_preferred().string();
}

ScratchDirectory::~ScratchDirectory()
{
    std::error_code ignored;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(m_path, ignored)) {
        SetFileAttributesA(entry.path().string().c_str(), FILE_ATTRIBUTE_NORMAL);
    }
    fs::remove_all(m_path, ignored);
}

void WriteFileBytes(const std::string& path, const std::string& content)
{
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    if (!file.flush()) {
        throw std::runtime_error("cannot write " + path);
    }
}

std::string ReadFileBytes(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read " + path);
    }
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

bool FileExists(const std::string& path)
{
    return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

void CopyFileTo(const std::string& source, const std::string& target)
{
    fs::create_directories(fs::path(target).parent_path());
    fs::copy_file(source, target, fs::copy_options::overwrite_existing);
}

void CopyTree(const std::string& source, const std::string& target)
{
    fs::create_directories(target);
    fs::copy(source, target, fs::copy_options::recursive | fs::copy_options::overwrite_existing);
}
