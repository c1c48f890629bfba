#include "ModelSection.h"

#include <algorithm>

#include "EqualsIgnoringCase.h"
#include "InfModelLine.h"
#include "IniLines.h"

namespace {
/// Equal for texts that are equal letter case aside.
uint32_t HashIgnoringCase(std::string_view text)
{
    uint32_t hash = 2166136261U;
    for (const char c : text) {
        // More characters fall together here than differ in letter case only; the texts are compared as well.
        hash = (hash ^ (static_cast<unsigned char>(c) | 0x20U)) * 16777619U;
    }
    return hash;
}
} // namespace

ModelSection::ModelSection(uint32_t count, std::span<const char> lines) : m_wasRead(count != 0)
{
    const std::vector<std::string_view> texts = LinesOf(lines.first(std::min(lines.size(), kModelSectionBytes)));
    m_lines.reserve(texts.size());
    for (const std::string_view text : texts) {
        const ModelLine parts = ParseModelLine(text);
        Line line;
        line.description = Keep(parts.descriptionKey.value_or(std::string_view{}));
        if (parts.hardwareId) {
            line.hasId = true;
            line.id = Keep(*parts.hardwareId);
            line.idHash = HashIgnoringCase(*parts.hardwareId);
        }
        m_lines.push_back(line);
    }
    m_text.shrink_to_fit();
}

ModelSection::Part ModelSection::Keep(std::string_view text)
{
    const Part part{.start = static_cast<uint16_t>(m_text.size()), .length = static_cast<uint16_t>(text.size())};
    m_text += text;
    return part;
}

LineVerdict ModelSection::VerdictOn(std::size_t line, std::string_view key) const
{
    if (!HasHardwareId(line)) {
        return LineVerdict::NoHardwareId;
    }
    return EqualsIgnoringCase(HardwareId(line), key) ? LineVerdict::ListsDevice : LineVerdict::OtherDevice;
}

std::optional<std::size_t> ModelSection::LineOf(std::string_view key) const
{
    const uint32_t hash = HashIgnoringCase(key);
    for (std::size_t line = 0; line < m_lines.size(); ++line) {
        // The hash spares most lines the comparison of texts.
        if (m_lines[line].idHash == hash && VerdictOn(line, key) == LineVerdict::ListsDevice) {
            return line;
        }
    }
    return std::nullopt;
}
