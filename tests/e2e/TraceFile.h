#pragma once

#include <string>
#include <vector>

#include "RunFolder.h"

/// Compares a run's debugger output line by line with the kept trace traces\<name>, in which each line of the file is
/// one line of the output. Stand-ins in the file:
///   <KIT>        the run folder            <KIT-UPPER>  the same in upper case
///   <SYSTEM>     the system directory      <WINDOWS>    the Windows directory
///   <LF> <CR>    the line-break characters in the line
/// When they differ the output is left beside the kept trace as <name>.actual, written in the same way.
/// @return the first difference with the lines before it, or an empty text when there is none.
[[nodiscard]] std::string DifferenceFromKeptTrace(const std::string& name, const RunFolder& folder,
                                                  const std::vector<std::string>& lines);

/// @return `lines` without the three lines that turn down each PCI device of the machine's own: it has other ones on
/// each
///         machine.
[[nodiscard]] std::vector<std::string> WithoutTheMachinesOwnDevices(const std::vector<std::string>& lines);
