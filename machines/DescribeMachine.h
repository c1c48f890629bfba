#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Machine.h"
#include "RegistryTree.h"

/// What is known of a machine beside its registry.
struct MachineOrigin
{
    std::string source;
    SourceKind kind = SourceKind::Export;
    std::optional<uint32_t> codePage; ///< as the user gave it; without it, that of the registry
    CodePageConverter convert = nullptr;
    /// A key that is missing from the tree does not exist. Not so in an export: the key may not have been exported.
    bool isComplete = false;
};

/// Makes a description of the part of a registry that was read.
/// @param diagnostics  Those of the reading; the description includes them.
[[nodiscard]] Machine DescribeMachine(const RegistryTree& tree, const MachineOrigin& origin,
                                      std::vector<Diagnostic> diagnostics);

/// @return a machine of which only the reasons of the refusal are known.
[[nodiscard]] Machine RefusedMachine(const MachineOrigin& origin, std::vector<Diagnostic> diagnostics);

/// The control sets to look into, in this order.
struct ControlSets
{
    std::vector<std::string> names; ///< the current one first; empty when there is none
    std::string doubt;              ///< what was assumed; empty when the registry is clear
};
[[nodiscard]] ControlSets FindControlSets(const RegistryTree& tree);

/// The name by which people know a machine: for a file its name without the extension, for a hive the computer's name
/// or else the hive's folder, otherwise the computer's name.
[[nodiscard]] std::string NameOfMachine(const std::string& source, SourceKind kind, const std::string& computerName);
