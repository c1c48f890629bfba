#include "OrvMultiString.h"

std::vector<std::string> OrvReadMultiString(std::string_view data)
{
    std::vector<std::string> texts;
    while (!data.empty()) {
        const std::string_view text = data.substr(0, data.find('\0'));
        if (!text.empty()) {
            texts.emplace_back(text);
        }
        // The last text may lack its terminator.
        data.remove_prefix(text.size() < data.size() ? text.size() + 1 : data.size());
    }
    return texts;
}
