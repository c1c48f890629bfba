#pragma once

#include <windows.h>

#include <map>
#include <string>
#include <vector>

#include "ImportOverride.h"
#include "ScratchDirectory.h"

/// Replaces system libraries that a module loads by their full path with doubles, for the life of the object. One
/// object at a time.
class SystemLibraryDoubles
{
public:
    /// @param module  The loading module; it must outlive the object.
    explicit SystemLibraryDoubles(HMODULE module);
    ~SystemLibraryDoubles();
    SystemLibraryDoubles(const SystemLibraryDoubles&) = delete;
    SystemLibraryDoubles& operator=(const SystemLibraryDoubles&) = delete;

    /// Replaces the system's library `name`, such as "newdev.dll", with the double that was built under this name.
    void Use(const std::string& name);
    /// Makes the library `name` missing from the system.
    void Lack(const std::string& name);

    /// Sets an answer of the double for `name`.
    void Answer(const std::string& name, const std::string& key, const std::string& value) const;
    /// What the doubles were asked so far.
    [[nodiscard]] std::vector<std::string> Journal() const;
    /// The paths of the libraries that the module loaded so far.
    [[nodiscard]] const std::vector<std::string>& Loaded() const { return m_loaded; }

private:
    static HMODULE WINAPI Load(LPCSTR path, HANDLE file, DWORD flags);

    // Under names that the system itself does not know, so that it never takes its own library.
    [[nodiscard]] std::string PathOf(const std::string& name) const { return m_directory.At("double_" + name); }

    static SystemLibraryDoubles* s_current;
    ScratchDirectory m_directory;
    std::map<std::string, std::string> m_places; ///< file name to path; empty for a missing library
    std::vector<std::string> m_loaded;
    ImportOverride m_override;
};
