#pragma once

#include <string>

#include "JsonWriter.h"
#include "KitFolder.h"
#include "Plan.h"

/// A plan as JSON, schema "morvix-plan/1" (docs/schemas/morvix-plan-1.json): keys are only ever added.

/// @return the beginning of a document, up to its first machine; what belongs to all machines is there.
[[nodiscard]] std::string PlanJsonHead(const KitFolder& kit);
/// Appends one machine.
void AppendPlanJsonMachine(std::string& text, const MachinePlan& plan, const MachinePaths& paths);
/// @return one machine.
[[nodiscard]] std::string PlanJsonMachine(const MachinePlan& plan, const MachinePaths& paths);
/// @return the end of a document, after its last machine.
[[nodiscard]] std::string PlanJsonTail();

/// Writes a key and what a kit is.
void WriteKit(JsonWriter& json, std::string_view key, const KitFolder& kit);
