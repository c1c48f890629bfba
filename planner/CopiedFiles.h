#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "OSCode.h"
#include "SetupInf.h"

/// Which files an INF copies, as far as its own lists say so. The platform's set-up functions do that work; the
/// installer only looks afterwards whether a file is there.

struct CopiedFile
{
    std::string name;        ///< at its destination
    std::string source;      ///< in the package
    std::string destination; ///< as "DestinationDirs" gives it: a number, and perhaps a comma and a folder below
    ProfilePlace place;      ///< of the line that names it

    [[nodiscard]] bool GoesToDriverDirectory() const; ///< system32\drivers
    [[nodiscard]] bool StaysInDriverStore() const;    ///< the package's own folder there
};

struct CopiedFiles
{
    bool known = false;                         ///< the install section was found
    bool namesOtherInfs = false;                ///< further lines come from INF files that "Include" names
    ProfilePlace place;                         ///< of the first line of the install section
    std::vector<CopiedFile> files;              ///< all of them
    std::vector<std::string> inDriverDirectory; ///< names of the files that go to system32\drivers
};

/// @param installSection  As the model line names it, without the parts that name a system or processor.
/// @param processor       As INF files name it.
[[nodiscard]] CopiedFiles FilesCopiedBy(const SetupInf& inf, std::string_view installSection,
                                        std::string_view processor);
[[nodiscard]] CopiedFiles FilesCopiedBy(const Profile& inf, std::string_view installSection, OSCode system);

/// @return the processor of a system as INF files name it: "amd64", "ia64" or "x86".
[[nodiscard]] std::string_view ProcessorOf(OSCode system);

/// @param modelValue  What follows the equals sign of a model line.
/// @return the install section that it names.
[[nodiscard]] std::string InstallSectionOf(std::string_view modelValue);

/// @param pattern  With any number of asterisks. Letter case does not count.
[[nodiscard]] bool FitsPattern(std::string_view name, std::string_view pattern);
