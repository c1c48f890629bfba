#pragma once

#include <map>
#include <string>
#include <vector>

/// What a copy of the program that runs as somebody else, or in another session, has found out. It travels as a file.
struct ChildReport
{
    std::map<std::string, std::string> values;
    std::vector<std::string> lines; ///< the trace of what it started

    /// @return the value, or "<none>".
    [[nodiscard]] std::string At(const std::string& name) const;
    friend bool operator==(const ChildReport&, const ChildReport&) = default;
};

/// @return the file's text. Names of values hold no "=" and no line break.
[[nodiscard]] std::string EncodeReport(const ChildReport& report);
[[nodiscard]] ChildReport DecodeReport(const std::string& text);
