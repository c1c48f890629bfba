#pragma once

#include <string>
#include <vector>

/// A file on a disc.
struct DiscFile
{
    std::string path; ///< ASCII, with "/" between its parts, each of at most 60 characters
    std::string content;
};

/// @return the image of a disc with these files: ISO 9660, with the names as they are in its Joliet form. In the plain
/// form,
///         for systems without Joliet, files have numbers for names.
/// @param label  Name of the disc: up to 16 capitals and digits.
[[nodiscard]] std::string IsoImage(const std::vector<DiscFile>& files, const std::string& label);
