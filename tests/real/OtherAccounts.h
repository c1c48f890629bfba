#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ChildReport.h"
#include "OpenFolder.h"

/// Copies of this program that run as somebody else.

/// @return why no task can run as the system account here; no value when one can.
[[nodiscard]] std::optional<std::string> WhyNoTaskAsSystem();

/// Does a task of ChildTask.h as the system account, in session 0, by the task scheduler. Throws std::runtime_error
/// when it does not run.
[[nodiscard]] ChildReport DoAsSystem(const OpenFolder& folder, const std::vector<std::string>& taskAndArguments);

/// @return why no user can be added here; no value when one can.
[[nodiscard]] std::optional<std::string> WhyNoOtherUser();

/// A user of this machine without administrator rights, for the life of the object.
class TemporaryUser
{
public:
    /// Throws std::runtime_error when it cannot be added.
    TemporaryUser();
    ~TemporaryUser();
    TemporaryUser(const TemporaryUser&) = delete;
    TemporaryUser& operator=(const TemporaryUser&) = delete;

    /// Does a task of ChildTask.h as this user. Throws std::runtime_error when it does not run.
    [[nodiscard]] ChildReport Do(const OpenFolder& folder, const std::vector<std::string>& taskAndArguments) const;

private:
    std::wstring m_password;
};
