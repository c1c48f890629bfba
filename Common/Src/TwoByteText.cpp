#include "TwoByteText.h"

namespace {
/// @return the number of bytes of the character at `at`, never more than the text has.
std::size_t CharacterBytes(std::string_view text, std::size_t at, CharacterRule rule)
{
    return rule.FirstCharacterBytes(text.substr(at));
}
} // namespace

std::size_t LastBackslash(std::string_view path, LeadByteTest isLeadByte)
{
    std::size_t last = std::string_view::npos;
    for (std::size_t at = 0; at < path.size(); at += CharacterBytes(path, at, isLeadByte)) {
        if (path[at] == '\\') {
            last = at;
        }
    }
    return last;
}

bool EndsWithBackslash(std::string_view path, LeadByteTest isLeadByte)
{
    return !path.empty() && LastBackslash(path, isLeadByte) == path.size() - 1;
}

bool HasDoubleBackslash(std::string_view path, LeadByteTest isLeadByte)
{
    for (std::size_t at = 0; at < path.size(); at += CharacterBytes(path, at, isLeadByte)) {
        if (path.substr(at).starts_with(R"(\\)")) {
            return true;
        }
    }
    return false;
}

std::string_view CutToBytes(std::string_view text, std::size_t maxBytes, CharacterRule rule)
{
    if (text.size() <= maxBytes) {
        return text;
    }
    std::size_t kept = 0;
    for (std::size_t next = 0; next <= maxBytes; next += CharacterBytes(text, next, rule)) {
        kept = next;
    }
    return text.substr(0, kept);
}
