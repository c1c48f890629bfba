#pragma once

#include <cstdint>

/// Which language the program speaks on this system.
/// @param code3  Receives a three-letter code such as "DEU", empty when the language is not supported; may be null.
///               All its bytes are cleared first.
/// @param size   Size of `code3` in bytes. Below 4 the code does not fit, and the system's own identifier is returned.
/// @return the Windows language identifier of the texts to use, 0 when the system's language is not supported.
uint16_t GetOSLanguageID(char* code3, int size);
