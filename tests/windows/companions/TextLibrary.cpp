#include "TextLibrary.h"

#include <cstring>
#include <stdexcept>

#include "CompanionFiles.h"

namespace {
constexpr uint32_t kStringsPerBlock = 16;
const char* const kStringTable = MAKEINTRESOURCEA(6);
const char* const kDialog = MAKEINTRESOURCEA(5);

/// Reads a resource value by value and refuses to leave it.
class ResourceReader
{
public:
    ResourceReader(HMODULE module, const char* type, uint32_t id, uint16_t language)
    {
        const HRSRC found = FindResourceExA(module, type, MAKEINTRESOURCEA(id), language);
        if (found != nullptr) {
            m_start = static_cast<const char*>(LockResource(LoadResource(module, found)));
            m_bytes = SizeofResource(module, found);
        }
    }

    [[nodiscard]] bool Found() const { return m_start != nullptr; }
    [[nodiscard]] bool Broken() const { return m_broken; }
    [[nodiscard]] bool AtEnd() const { return m_position >= m_bytes; }

    template <class Value>
    Value Read()
    {
        Value value{};
        if (m_position + sizeof(value) > m_bytes) {
            m_broken = true;
            return value;
        }
        std::memcpy(&value, m_start + m_position, sizeof(value));
        m_position += sizeof(value);
        return value;
    }

    std::wstring ReadCharacters(std::size_t count)
    {
        std::wstring text;
        while (text.size() < count && !m_broken) {
            text += static_cast<wchar_t>(Read<uint16_t>());
        }
        return text;
    }

    std::wstring ReadTerminated()
    {
        std::wstring text;
        for (auto c = Read<uint16_t>(); c != 0 && !m_broken; c = Read<uint16_t>()) {
            text += static_cast<wchar_t>(c);
        }
        return text;
    }

    /// Reads a name that may be a number: 0xFFFF and the number.
    std::wstring ReadNameOrNumber(uint16_t& number)
    {
        const std::size_t before = m_position;
        if (Read<uint16_t>() == 0xFFFF) {
            number = Read<uint16_t>();
            return {};
        }
        m_position = before;
        return ReadTerminated();
    }

    void AlignToFour() { m_position = (m_position + 3) / 4 * 4; }
    void Skip(std::size_t bytes) { m_position += bytes; }

private:
    const char* m_start = nullptr;
    std::size_t m_bytes = 0;
    std::size_t m_position = 0;
    bool m_broken = false;
};

TemplateControl ReadControl(ResourceReader& reader)
{
    TemplateControl control;
    reader.AlignToFour();
    reader.Read<uint32_t>(); // help number
    reader.Read<uint32_t>(); // extended style
    control.style = reader.Read<uint32_t>();
    control.x = reader.Read<int16_t>();
    control.y = reader.Read<int16_t>();
    control.width = reader.Read<int16_t>();
    control.height = reader.Read<int16_t>();
    control.id = reader.Read<uint32_t>();
    control.className = reader.ReadNameOrNumber(control.classAtom);
    uint16_t textNumber = 0;
    control.text = reader.ReadNameOrNumber(textNumber);
    reader.Skip(reader.Read<uint16_t>()); // creation data
    return control;
}
} // namespace

TextLibrary::TextLibrary() : m_library(LoadLibraryA(MorvixResPath().c_str()))
{
    if (!m_library) {
        throw std::runtime_error("cannot load " + MorvixResPath());
    }
}

std::optional<std::wstring> TextLibrary::Text(uint16_t language, uint32_t id) const
{
    ResourceReader reader(m_library.get(), kStringTable, id / kStringsPerBlock + 1, language);
    if (!reader.Found()) {
        return {};
    }
    for (uint32_t skipped = 0; skipped < id % kStringsPerBlock; ++skipped) {
        reader.ReadCharacters(reader.Read<uint16_t>());
    }
    std::wstring text = reader.ReadCharacters(reader.Read<uint16_t>());
    return reader.Broken() || text.empty() ? std::nullopt : std::optional(std::move(text));
}

std::vector<uint32_t> TextLibrary::TextIds(uint16_t language) const
{
    constexpr uint32_t kLastId = 2047;
    std::vector<uint32_t> ids;
    for (uint32_t id = 0; id <= kLastId; ++id) {
        if (Text(language, id)) {
            ids.push_back(id);
        }
    }
    return ids;
}

std::optional<DialogTemplate> TextLibrary::Dialog(uint16_t language) const
{
    ResourceReader reader(m_library.get(), kDialog, 101, language);
    const auto version = reader.Read<uint16_t>();
    const auto signature = reader.Read<uint16_t>();
    if (!reader.Found() || version != 1 || signature != 0xFFFF) {
        return {};
    }
    DialogTemplate dialog;
    reader.Read<uint32_t>(); // help number
    reader.Read<uint32_t>(); // extended style
    dialog.style = reader.Read<uint32_t>();
    const auto count = reader.Read<uint16_t>();
    reader.Read<uint32_t>(); // position
    dialog.width = reader.Read<int16_t>();
    dialog.height = reader.Read<int16_t>();
    uint16_t number = 0;
    reader.ReadNameOrNumber(number); // menu
    dialog.className = reader.ReadNameOrNumber(number);
    dialog.title = reader.ReadTerminated();
    dialog.fontPoints = reader.Read<uint16_t>();
    reader.Read<uint32_t>(); // weight, italic, character set
    dialog.fontName = reader.ReadTerminated();
    for (uint16_t i = 0; i < count && !reader.Broken(); ++i) {
        dialog.controls.push_back(ReadControl(reader));
    }
    return reader.Broken() ? std::nullopt : std::optional(std::move(dialog));
}

std::vector<uint16_t> TextLibrary::LanguagesOf(const char* type, uint16_t id) const
{
    std::vector<uint16_t> languages;
    const auto collect = [](HMODULE, LPCSTR, LPCSTR, WORD language, LONG_PTR list) -> BOOL {
        reinterpret_cast<std::vector<uint16_t>*>(list)->push_back(language);
        return TRUE;
    };
    EnumResourceLanguagesA(m_library.get(), type, MAKEINTRESOURCEA(id), collect,
                           reinterpret_cast<LONG_PTR>(&languages));
    return languages;
}
