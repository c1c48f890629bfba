#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "OSCode.h"
#include "Profile.h"

/// Which files an INF copies, as far as its own lists say so. The platform's set-up functions do that work; the
/// installer only looks afterwards whether a file is there.
struct CopiedFiles
{
    bool known = false;                         ///< the install section was found
    std::vector<std::string> inDriverDirectory; ///< names of the files that go to system32\drivers
};

/// @param installSection  As the model line names it, without the parts that name a system or processor.
[[nodiscard]] CopiedFiles FilesCopiedBy(const Profile& inf, std::string_view installSection, OSCode system);

/// @param modelValue  What follows the equals sign of a model line.
/// @return the install section that it names.
[[nodiscard]] std::string InstallSectionOf(std::string_view modelValue);

/// @param pattern  With any number of asterisks. Letter case does not count.
[[nodiscard]] bool FitsPattern(std::string_view name, std::string_view pattern);
