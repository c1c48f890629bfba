#pragma once

#include <span>
#include <string>
#include <vector>

#include "Machine.h"

/// One machine to read, not read yet.
struct MachineSource
{
    enum class Place
    {
        File, ///< an export or a hive: its first bytes decide
        StandardInput,
        ThisMachine,
    };
    Place place = Place::File;
    std::string path; ///< as the user named it, or found in the folder that the user named
};

struct MachineSources
{
    std::vector<MachineSource> sources;
    std::vector<Diagnostic> diagnostics; ///< arguments that name nothing; the others are still expanded
};

/// Expands the MACHINE arguments: a file; a folder, whose exports and hives follow in the order of their names in upper
/// case; "@list", a text file with one argument a line, in which blank lines and lines that begin with '#' do not
/// count, nor do blanks around a line, and relative paths begin at the list's own folder; "-", standard input; "live",
/// this machine. Nothing is opened but the lists.
[[nodiscard]] MachineSources ExpandSources(std::span<const std::string> arguments);

/// @return the files among the sources.
[[nodiscard]] std::vector<std::string> PathsOf(const MachineSources& machines);
