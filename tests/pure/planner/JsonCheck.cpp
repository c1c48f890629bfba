#include "JsonCheck.h"

#include <nlohmann/json.hpp>

std::optional<std::string> TextOfJson(const std::string& json)
{
    const nlohmann::json read = nlohmann::json::parse(json, nullptr, false);
    return read.is_string() ? std::optional(read.get<std::string>()) : std::nullopt;
}

std::string MemberOf(const std::string& json, const std::string& pointer)
{
    const nlohmann::json read = nlohmann::json::parse(json, nullptr, false);
    if (read.is_discarded()) {
        return "<invalid>";
    }
    const nlohmann::json::json_pointer place(pointer);
    return read.contains(place) ? read.at(place).dump() : "<missing>";
}
