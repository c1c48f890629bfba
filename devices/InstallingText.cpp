#include "InstallingText.h"

#include "TwoByteText.h"

std::string InstallingText(std::string_view format, std::string_view description, std::size_t maxBytes,
                           CharacterRule rule)
{
    std::string text;
    bool inserted = false;
    for (std::size_t position = 0; position < format.size(); ++position) {
        const std::string_view rest = format.substr(position);
        if (!inserted && rest.starts_with("%s")) {
            text += description;
            inserted = true;
            ++position;
        } else if (rest.starts_with("%%")) {
            text += '%';
            ++position;
        } else {
            text += format[position];
        }
    }
    return std::string(CutToBytes(text, maxBytes, rule));
}
