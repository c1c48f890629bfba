#include "ManagementExtension.h"

#include <stdexcept>
#include <string>

#include "IniLines.h"

bool ManagementExtensionAllowsUpdate(std::string_view oemVersion)
{
    constexpr int kNeededMajor = 16;
    constexpr int kNeededMinor = 2;
    const auto majorEnd = oemVersion.find('.');
    // A trailing full stop does not start a second part.
    if (majorEnd == std::string_view::npos || majorEnd + 1 == oemVersion.size()) {
        throw std::out_of_range("invalid vector<T> subscript");
    }
    const int major = LeadingNumber(oemVersion.substr(0, majorEnd));
    const int minor = LeadingNumber(oemVersion.substr(majorEnd + 1));
    return major > kNeededMajor || (major == kNeededMajor && minor >= kNeededMinor);
}
