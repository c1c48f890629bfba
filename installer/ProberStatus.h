#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

/// Statuses of the system prober with their own message; any other is reported with an empty text.
inline constexpr uint32_t kStatusNotAdministrator = 0x80640008;
inline constexpr uint32_t kStatusNoAdapter = 0x80640010;
inline constexpr uint32_t kStatusNotReady = 0x80640011;
inline constexpr uint32_t kStatusSystemUnsupported = 0x80640013;

/// @param status    Failure status of the prober or of the administrator test.
/// @param osFamily  Family name that the prober wrote into the record.
/// @return identifier of the message in the resource library, or no value for a status without one.
[[nodiscard]] std::optional<uint32_t> MessageForProberStatus(uint32_t status, std::string_view osFamily);
