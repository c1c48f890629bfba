#pragma once

#include <optional>
#include <string>

/// What another reader of JSON makes of this program's.

/// @return the text that a document of one text holds; no value when the document is not valid JSON.
[[nodiscard]] std::optional<std::string> TextOfJson(const std::string& json);

/// @param pointer  Such as "/machines/0/devices/1/match/inf".
/// @return the member as JSON without blanks; "<invalid>" for a document that is not valid, "<missing>" for a member
/// that
///         is not there.
[[nodiscard]] std::string MemberOf(const std::string& json, const std::string& pointer);
