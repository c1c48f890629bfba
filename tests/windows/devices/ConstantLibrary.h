#pragma once

#include <cstdint>
#include <map>
#include <string>

/// Exported functions by name, and the number that each returns whatever it is given.
using Exports = std::map<std::string, uint32_t>;

/// Writes a library that exports functions of constant results, for answers that the platform's own library does not
/// give here.
void WriteConstantLibrary(const std::string& path, const Exports& exports);
