#pragma once

#include <optional>
#include <string>

#include "Handles.h"

/// The image of a disc in a drive of its own, for the life of the object.
class MountedDisc
{
public:
    /// @return why this system mounts no images; no value when it does.
    [[nodiscard]] static std::optional<std::string> WhyNot();

    /// Throws std::runtime_error when the image cannot be mounted.
    explicit MountedDisc(const std::string& image);

    /// "X:"
    [[nodiscard]] const std::string& Drive() const { return m_drive; }

private:
    UniqueHandle m_disc; ///< the disc stays in the drive while this is open
    std::string m_drive;
};

/// @return the image of a disc that holds everything below `folder`, in a folder of that name.
[[nodiscard]] std::string DiscOf(const std::string& folder);
