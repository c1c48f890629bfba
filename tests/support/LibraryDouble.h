#pragma once

#include <string>
#include <vector>

#include "ScratchDirectory.h"

/// A library for this process that is found by its name: a copy of one of the doubles, in a folder that the loader
/// looks through, with its answers and its journal. Removed by the destructor, so whatever loads it must end first.
class LibraryDouble
{
public:
    /// @param doubleFile  File name of the double as it was built.
    /// @param name        File name under which it is found.
    LibraryDouble(const std::string& doubleFile, const std::string& name);
    ~LibraryDouble();
    LibraryDouble(const LibraryDouble&) = delete;
    LibraryDouble& operator=(const LibraryDouble&) = delete;

    void Answer(const std::string& key, const std::string& value) const;

    /// What the library was asked since the last call, in order.
    [[nodiscard]] std::vector<std::string> TakeJournal() const;

private:
    ScratchDirectory m_directory;
    std::string m_answers;
};
