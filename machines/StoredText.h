#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "Machine.h"

/// Text of a registry before the code page of its machine is known.

/// Turns text into the characters of a code page, as the platform's 8-bit calls do it. A character that the code page
/// lacks becomes a question mark. Called only for text beyond ASCII.
using CodePageConverter = std::string (*)(std::u16string_view text, uint32_t codePage);

/// A key's or value's name. Descriptions in 8-bit form hold it in the machine's code page: each unit is one byte then.
struct StoredName
{
    std::u16string units;
    bool wide = true;
};

/// A value as it is stored, or as an 8-bit description holds it.
struct StoredValue
{
    uint32_t type = 0;
    std::string bytes;
    bool wide = true; ///< the types that hold text are UTF-16, low byte first
};

/// The order of names in a registry: that of their upper-case forms. Only the letters of ASCII count here; the system's
/// own names hold no others.
[[nodiscard]] std::u16string UpperCaseName(std::u16string_view name);
/// The same for a name in ASCII.
[[nodiscard]] std::u16string UpperCaseName(std::string_view name);

/// Sorts names as UpperCaseName would, whatever their letter case; names in ASCII may be given as bytes.
struct NameOrder
{
    using is_transparent = void;
    [[nodiscard]] bool operator()(std::u16string_view left, std::u16string_view right) const;
    [[nodiscard]] bool operator()(std::u16string_view left, std::string_view right) const;
    [[nodiscard]] bool operator()(std::string_view left, std::u16string_view right) const;
};

/// @return true when the name is the same without regard to the letter case of ASCII.
/// @param upper  In ASCII and in upper case.
[[nodiscard]] bool NameIs(std::u16string_view name, std::string_view upper);

/// Gives texts as the machine's 8-bit calls return them.
class EightBitText
{
public:
    EightBitText(uint32_t codePage, CodePageConverter convert) : m_codePage(codePage), m_convert(convert) {}

    [[nodiscard]] std::string Of(const StoredName& name) const;
    [[nodiscard]] EightBitValue Of(const StoredValue& value) const;

private:
    [[nodiscard]] std::string Convert(std::u16string_view text) const;

    uint32_t m_codePage;
    CodePageConverter m_convert;
};

[[nodiscard]] constexpr bool HoldsText(uint32_t type)
{
    return type == kRegistryText || type == kRegistryExpandableText || type == kRegistryTextList;
}

/// @return the text in UTF-16; what is not UTF-8 becomes U+FFFD.
[[nodiscard]] std::u16string FromUtf8(std::string_view text);
/// @return the text in UTF-8; a lone surrogate becomes U+FFFD.
[[nodiscard]] std::string ToUtf8(std::u16string_view text);
/// @return the units of UTF-16 text, low byte first; an odd last byte is left out.
[[nodiscard]] std::u16string UnitsOf(std::string_view bytes);
/// The same into a text that may have room for it already.
void ReadUnits(std::string_view bytes, std::u16string& units);
/// @return the bytes of UTF-16 text, low byte first.
[[nodiscard]] std::string BytesOf(std::u16string_view units);
