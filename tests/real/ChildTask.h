#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "ChildReport.h"
#include "Handles.h"

/// What a copy of this program does as somebody else, in another session or in a process that may hang.
///   run PROGRAM ARGUMENTS   starts a program without asking for rights that it wants, and reports "exit" or "error",
///                           and its trace
///   start PROGRAM ARGUMENTS the same as the system wants it: the program's wish for rights counts
///   store INF silently|asking   has the system store an INF file, and reports "stored", "error" and "name"
///   disc FOLDER FILE        writes the image of a disc that holds the folder
///   self-repair PRODUCT LOG reports the engine's "error" after it was asked for what it does by itself when the key
///                           file of a feature is missing

/// First argument of a child's command line. A task, the report's path and the task's arguments follow.
inline constexpr char kChildArgument[] = "--child";

/// The child's side: does the task of the command line and writes the report.
/// @param arguments  What follows kChildArgument.
/// @return the process's exit code.
int RunChildTask(const std::vector<std::string>& arguments);

/// @return the command line of a child.
/// @param program  The program or a copy of it.
[[nodiscard]] std::string ChildCommandLine(const std::string& program, const std::string& report,
                                           const std::vector<std::string>& taskAndArguments);

/// @return this program's full path.
[[nodiscard]] std::string OwnProgram();

/// Waits for a child and reads its report. Throws std::runtime_error when it leaves none in ten minutes.
[[nodiscard]] ChildReport WaitForReport(HANDLE process, const std::string& report);
