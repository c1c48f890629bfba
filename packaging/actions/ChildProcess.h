#pragma once

#include <windows.h>

#include <string>

#include "StepReport.h"

/// Runs a program and waits for it.
/// @param commandLine   Program and arguments; taken by value because the platform may write into it.
/// @param directory     Its current directory; empty for the caller's.
/// @param milliseconds  Longest time it may take, or INFINITE. A program that takes longer is ended.
ProgramEnd RunAndWait(std::string commandLine, const std::string& directory, DWORD milliseconds);
