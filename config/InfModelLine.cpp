#include "InfModelLine.h"

#include "Tokens.h"

namespace {
std::string_view CutAt(std::string_view text, std::string_view mark)
{
    return text.substr(0, text.find(mark));
}
} // namespace

ModelLine ParseModelLine(std::string_view line)
{
    ModelLine parts;
    TokenCursor cursor(line.substr(0, kModelLineChars));
    parts.descriptionKey = cursor.Next("=");
    // The install section's name and the bus prefix end at the backslash.
    if (!cursor.Next("\\")) {
        return parts;
    }
    if (const auto id = cursor.Next("\\, ")) {
        parts.hardwareId = CutAt(CutAt(*id, "\""), "&CC_");
    }
    return parts;
}

DescriptionLookup DescriptionFor(std::string_view descriptionKey)
{
    TokenCursor cursor(descriptionKey);
    const auto name = cursor.Next("%");
    if (!name) {
        return {"", std::string(descriptionKey)};
    }
    const auto nameEnd = static_cast<std::size_t>(name->data() - descriptionKey.data()) + name->size();
    return {std::string(*name), std::string(descriptionKey.substr(0, nameEnd))};
}
