#pragma once

#include <optional>
#include <string>

/// A folder of this machine as a share of this machine, for the life of the object.
class NetworkShare
{
public:
    /// @return why there are no shares here; no value when there are.
    [[nodiscard]] static std::optional<std::string> WhyNot();

    /// Throws std::runtime_error when it cannot be made.
    explicit NetworkShare(const std::string& folder);
    ~NetworkShare();
    NetworkShare(const NetworkShare&) = delete;
    NetworkShare& operator=(const NetworkShare&) = delete;

    /// "\\localhost\name"
    [[nodiscard]] std::string Path() const;
};

/// A drive letter for a share, for the life of the object.
class MappedDrive
{
public:
    /// Throws std::runtime_error when there is no free letter or the share cannot be connected.
    explicit MappedDrive(const std::string& share);
    ~MappedDrive();
    MappedDrive(const MappedDrive&) = delete;
    MappedDrive& operator=(const MappedDrive&) = delete;

    /// "X:"
    [[nodiscard]] const std::string& Path() const { return m_drive; }

private:
    std::string m_drive;
};
