#pragma once

#include <windows.h>
// The headers below need windows.h first.
#include <msi.h>
#include <msiquery.h>

#include <string>
#include <vector>

#include "Handles.h"

/// The functions of the Windows Installer engine, from the system's own library. Throws std::runtime_error when it
/// lacks one.
class InstallerEngine
{
public:
    InstallerEngine();

    template <class Fn>
    [[nodiscard]] Fn Find(const char* name) const;

private:
    UniqueLibrary m_library;
};

/// What a package file says of itself. Throws std::runtime_error when it cannot be read.
class MsiPackage
{
public:
    explicit MsiPackage(std::string path);

    [[nodiscard]] const std::string& Path() const { return m_path; }
    [[nodiscard]] const std::string& ProductCode() const { return m_productCode; }
    /// @return the names of the files that it installs, in lower case and sorted; each as often as the package has it.
    [[nodiscard]] std::vector<std::string> FileNames() const;
    /// @return the library with the package's own steps.
    [[nodiscard]] std::string ActionLibrary() const;

    /// Whether the product of this package is installed.
    [[nodiscard]] bool IsInstalled() const;

private:
    /// The first column of every row that a query finds.
    [[nodiscard]] std::vector<std::string> Rows(const char* query, bool isStream = false) const;

    InstallerEngine m_engine;
    std::string m_path;
    std::string m_productCode;
};
