#pragma once

#include <string>
#include <vector>

#include "ScratchDirectory.h"

/// A scratch copy of the shippable folder, in which a test may replace single files. The destructor removes it.
class RunFolder
{
public:
    /// Copies the whole shippable folder.
    RunFolder();

    /// The folder's full path without a trailing backslash.
    [[nodiscard]] const std::string& Path() const { return m_directory.Path(); }
    [[nodiscard]] std::string At(const std::string& name) const { return m_directory.At(name); }

    void Write(const std::string& name, const std::string& content) const { WriteFileBytes(At(name), content); }
    void Remove(const std::string& name) const;

    /// Replaces the setup INI by one that has the same section for every system.
    /// @param lines          The section's lines.
    /// @param levelsToRoot   Value of LevelsToRoot.
    void WriteSetupIni(const std::vector<std::string>& lines, const std::string& levelsToRoot = "0") const;

    /// Puts a double into the folder, under its own name or as `fileName`.
    void UseDouble(const std::string& name, const std::string& fileName = {}) const;

    /// Sets an answer of the double `name` (without extension), such as "NetInst".
    void Answer(const std::string& name, const std::string& key, const std::string& value) const;

    /// The lines that doubles in this folder have written so far.
    [[nodiscard]] std::vector<std::string> Journal() const;

    /// The journal's lines that begin with `start`.
    [[nodiscard]] std::vector<std::string> JournalLines(const std::string& start) const;

private:
    ScratchDirectory m_directory;
};
