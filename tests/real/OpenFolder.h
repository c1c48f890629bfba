#pragma once

#include <string>

/// A copy of the shippable folder and of this program, at the top of the system's drive, where every user may read and
/// write. The destructor removes it.
class OpenFolder
{
public:
    /// Throws std::runtime_error when it cannot be made.
    OpenFolder();
    ~OpenFolder();
    OpenFolder(const OpenFolder&) = delete;
    OpenFolder& operator=(const OpenFolder&) = delete;

    [[nodiscard]] const std::string& Path() const { return m_path; }
    [[nodiscard]] std::string Kit() const { return m_path + "\\kit"; }
    [[nodiscard]] std::string Program() const { return m_path + "\\probe.exe"; }
    [[nodiscard]] std::string At(const std::string& name) const { return m_path + "\\" + name; }

private:
    std::string m_path;
};
