#pragma once

#include <string>
#include <utility>
#include <vector>

#include "RunFolder.h"

/// What stands for what in a kept trace.
using StandIns = std::vector<std::pair<std::string, std::string>>;

/// Compares a run's debugger output line by line with the kept trace traces\<name>, in which each line of the file is
/// one line of the output. Stand-ins in the file:
///   <KIT>        the run folder            <KIT-UPPER>  the same in upper case
///   <KIT-SHORT>  its short form
///   <SYSTEM>     the system directory      <WINDOWS>    the Windows directory
///   <LF> <CR>    the line-break characters in the line
/// When they differ the output is left beside the kept trace as <name>.actual, written in the same way.
/// @param more  Stand-ins of the test's own and what they stand for.
/// @return the first difference with the lines before it, or an empty text when there is none.
[[nodiscard]] std::string DifferenceFromKeptTrace(const std::string& name, const RunFolder& folder,
                                                  const std::vector<std::string>& lines, const StandIns& more = {});

/// @return `lines` without the three lines that turn down each PCI device of the machine's own: it has other ones on
///         each machine.
[[nodiscard]] std::vector<std::string> WithoutTheMachinesOwnDevices(const std::vector<std::string>& lines);
