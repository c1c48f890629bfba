#pragma once

#include <cstdint>
#include <string_view>

/// The program's language on a system of a given default language.
struct RunLanguage
{
    std::string_view code3; ///< three letters, empty when the language is not supported
    uint16_t id = 0;        ///< Windows language identifier of the resources to use, 0 when not supported
};

/// @param systemLanguage  Windows language identifier (LANGID): primary language in the low 10 bits.
[[nodiscard]] RunLanguage LanguageForSystem(uint16_t systemLanguage);

/// The same for C callers.
/// @param code3  Receives the three-letter code, empty when the language is not supported; may be null. All its bytes
///               are cleared first.
/// @param size   Size of `code3` in bytes. When it is below 4, the code does not fit and the system's own identifier is
///               returned.
/// @return the identifier of the resources to use, 0 when the language is not supported.
uint16_t LanguageAnswer(uint16_t systemLanguage, char* code3, int size);

/// US English (LANGID 0x0409): used where the system's language has no texts.
inline constexpr uint16_t kFallbackLanguage = 1033;

/// @param systemAnswer  Identifier of the texts for the system's language, 0 when there are none.
/// @return the identifier of the run's language.
[[nodiscard]] constexpr uint16_t RunLanguageIdFor(uint16_t systemAnswer)
{
    return systemAnswer == 0 ? kFallbackLanguage : systemAnswer;
}
