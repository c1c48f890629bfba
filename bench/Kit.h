#pragma once

#include <string>
#include <vector>

/// A kit of one directory with many INF files of 60 KB and a setup INI, in its own temporary directory, which the
/// destructor removes.
class Kit
{
public:
    /// @param files       Number of INF files. All qualify.
    /// @param listedIds   Hardware IDs that the last INF lists besides its own; no other INF lists them.
    explicit Kit(int files, const std::vector<std::string>& listedIds = {});
    ~Kit();
    Kit(const Kit&) = delete;
    Kit& operator=(const Kit&) = delete;

    /// The program's directory, without a trailing backslash.
    [[nodiscard]] const std::string& Directory() const { return m_directory; }
    [[nodiscard]] const std::vector<std::string>& FileNames() const { return m_fileNames; }

private:
    std::string m_directory;
    std::vector<std::string> m_fileNames;
};

/// Adapters in the registry, as the system lists them; the destructor removes them.
class Adapters
{
public:
    explicit Adapters(int count);
    ~Adapters();
    Adapters(const Adapters&) = delete;
    Adapters& operator=(const Adapters&) = delete;

    /// Their key names, which are their full hardware IDs without the bus prefix.
    [[nodiscard]] const std::vector<std::string>& KeyNames() const { return m_keyNames; }

private:
    std::vector<std::string> m_keyNames;
};

/// The key name of the adapter of that number.
[[nodiscard]] std::string AdapterKeyName(int number);
