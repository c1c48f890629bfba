#pragma once

#include <cstdint>
#include <string_view>

/// What the program speaks on a system of a given default language.
struct RunLanguage
{
    std::string_view code3; ///< three letters, empty when the language is not supported
    uint16_t id = 0;        ///< Windows language identifier of the resources to use, 0 when not supported
};

/// @param systemLanguage  Windows language identifier (LANGID): primary language in the low 10 bits.
[[nodiscard]] RunLanguage LanguageForSystem(uint16_t systemLanguage);

/// US English (LANGID 0x0409): used where the system's language has no texts.
inline constexpr uint16_t kFallbackLanguage = 1033;

/// @param systemAnswer  Identifier of the texts for the system's language, 0 when there are none.
/// @return the identifier of the language that the run speaks.
[[nodiscard]] constexpr uint16_t RunLanguageIdFor(uint16_t systemAnswer)
{
    return systemAnswer == 0 ? kFallbackLanguage : systemAnswer;
}
