#pragma once

#include <string>

/// What kind of Windows this is, one "name: value" a line: version, processor, code pages, languages, Secure Boot,
/// memory integrity, application control, session. What cannot be found out is "unknown".
[[nodiscard]] std::string SystemFacts();

/// Whether this process has the rights of an administrator: elevated, where the system tells that apart.
[[nodiscard]] bool IsElevated();
