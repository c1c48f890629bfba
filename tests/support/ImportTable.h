#pragma once

#include <string>
#include <vector>

/// One function that a program or library has the loader find for it.
struct Import
{
    std::string module; ///< as the file spells it
    std::string name;   ///< "#12" for one that is imported by its number
    friend bool operator==(const Import&, const Import&) = default;
};

/// @return what a 64-bit program, library or driver imports, in the order of its table; empty when it has none. Throws
///         std::runtime_error for another file, and for one that has imports resolved at their first call.
[[nodiscard]] std::vector<Import> ImportsOf(const std::string& file);
