#pragma once

#include <cstdint>
#include <optional>

#include "Machine.h"
#include "Sources.h"

struct ReadingOptions
{
    std::optional<uint32_t> codePage; ///< of the machine's 8-bit calls; without it, that of the registry
};

/// Reads one machine, of whatever kind. Never throws for what is in the input: a machine that cannot be read is
/// refused, and its diagnostics say why.
[[nodiscard]] Machine ReadMachine(const MachineSource& source, const ReadingOptions& options = {});
