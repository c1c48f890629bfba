#pragma once

#include <cstdint>

/// Which language the program speaks on this system.
/// @param code3  Receives a three-letter code such as "DEU", empty when the language is not supported; may be null.
///               All its bytes are cleared first.
/// @param size   Size of `code3` in bytes. Below 4 the code does not fit: the system's own identifier is returned as it
/// is.
/// @return the Windows language identifier of the texts to use, 0 when the system's language is not supported.
uint16_t GetOSLanguageID(char* code3, int size);

/// The same for a system whose default language is `systemLanguage`. Nothing is traced.
uint16_t LanguageAnswer(uint16_t systemLanguage, char* code3, int size);
