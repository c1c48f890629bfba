#include "NameList.h"

#include <algorithm>

#include "EqualsIgnoringCase.h"

bool ContainsName(const std::vector<std::string>& names, std::string_view name)
{
    return std::ranges::any_of(names, [name](const std::string& other) { return EqualsIgnoringCase(name, other); });
}
