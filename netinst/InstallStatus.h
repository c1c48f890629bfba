#pragma once

#include <cstdint>

/// The status that an install answers for a failed platform call.
/// @param lastError  The platform's error number right after the call.
/// @return always negative: a set-up error (0xE000....) or any other number with the top bit set as it is, another
/// error
///         number as the HRESULT that stands for it, and the general failure 0x80004005 when the platform gave no
///         reason.
[[nodiscard]] int32_t StatusForError(uint32_t lastError) noexcept;
