#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "RunFolder.h"

/// The stand-ins in a kept trace and their values.
using StandIns = std::vector<std::pair<std::string, std::string>>;

/// Compares a run's debugger output line by line with the kept trace traces\<name>, in which each line of the file is
/// one line of the output. Stand-ins in the file: <KIT> the run folder <KIT-UPPER> the same in upper case <KIT-SHORT>
/// its short form <SYSTEM> the system directory <WINDOWS> the Windows directory <LF> <CR> the line-break characters in
/// the line When they differ, the output is left beside the kept trace as <name>.actual, in the same form.
/// @param more  Additional stand-ins and their values.
/// @return the first difference with the lines before it, or an empty text when there is none.
[[nodiscard]] std::string DifferenceFromKeptTrace(const std::string& name, const RunFolder& folder,
                                                  const std::vector<std::string>& lines, const StandIns& more = {});

/// The lines of a trace that count.
using TraceView = std::function<std::vector<std::string>(const std::vector<std::string>&)>;

/// The same for a run in any folder, of whose trace and of the kept one only the lines of `view` are compared.
[[nodiscard]] std::string DifferenceFromKeptTrace(const std::string& name, const std::string& folder,
                                                  const std::vector<std::string>& lines, const TraceView& view,
                                                  const StandIns& more = {});

/// @return `lines` without the three lines that reject each of the machine's real PCI devices, which differ between
///         machines.
[[nodiscard]] std::vector<std::string> WithoutTheMachinesOwnDevices(const std::vector<std::string>& lines);
