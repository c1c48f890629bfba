#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Handles.h"

/// A language that the text library speaks.
struct Language
{
    uint16_t id;       ///< Windows language identifier
    unsigned codePage; ///< the language's ANSI code page
    const char* name;
};
inline constexpr Language kLanguages[] = {
    {1033, 1252, "English"},           {1031, 1252, "German"},
    {3082, 1252, "Spanish"},           {1036, 1252, "French"},
    {1040, 1252, "Italian"},           {0x0411, 932, "Japanese"},
    {0x0412, 949, "Korean"},           {1046, 1252, "Portuguese (Brazil)"},
    {0x0804, 936, "Chinese (China)"},  {0x1004, 936, "Chinese (Singapore)"},
    {0x0404, 950, "Chinese (Taiwan)"}, {0x0C04, 950, "Chinese (Hong Kong)"},
    {0x1404, 950, "Chinese (Macau)"},
};

/// One control of a dialog template; positions and sizes in dialog units.
struct TemplateControl
{
    uint32_t style = 0;
    int16_t x = 0;
    int16_t y = 0;
    int16_t width = 0;
    int16_t height = 0;
    uint32_t id = 0;
    uint16_t classAtom = 0; ///< 0x0080 button, 0x0082 static, 0 for a class with a name
    std::wstring className;
    std::wstring text;
};

/// A dialog template of the extended form, as it lies in the resource.
struct DialogTemplate
{
    uint32_t style = 0;
    int16_t width = 0;
    int16_t height = 0;
    std::wstring className;
    std::wstring title;
    uint16_t fontPoints = 0;
    std::wstring fontName;
    std::vector<TemplateControl> controls;
};

/// MorvixRes.dll as it was built, loaded for the life of the object as the program loads it.
class TextLibrary
{
public:
    /// Throws std::runtime_error when the library cannot be loaded.
    TextLibrary();

    [[nodiscard]] HMODULE Module() const { return m_library.get(); }
    /// @return text `id` of exactly this language; no value when it is missing or empty.
    [[nodiscard]] std::optional<std::wstring> Text(uint16_t language, uint32_t id) const;
    /// @return the identifiers of all texts of this language, ascending.
    [[nodiscard]] std::vector<uint32_t> TextIds(uint16_t language) const;
    /// @return dialog 101 of exactly this language; no value when it is missing or malformed.
    [[nodiscard]] std::optional<DialogTemplate> Dialog(uint16_t language) const;
    /// @return the languages that have a resource of this type and number.
    [[nodiscard]] std::vector<uint16_t> LanguagesOf(const char* type, uint16_t id) const;

private:
    UniqueLibrary m_library;
};
