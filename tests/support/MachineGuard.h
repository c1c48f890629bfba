#pragma once

#include "MachineUse.h"

/// Has a GoogleTest program say what it does to the machine, and ends it with exit code 4 before its first test where
/// it must not run.
/// @param whatItDoes  The rest of a sentence that begins with "This program". Must outlive the tests.
/// @return true, so that a variable's initialisation can call it.
bool GuardMachine(MachineUse use, const char* whatItDoes);
