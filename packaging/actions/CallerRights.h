#pragma once

/// Whether the user who started the installation has administrator rights, by this thread's token. An administrator who
/// has not elevated the program counts as a standard user; the system account is an administrator.
[[nodiscard]] bool CallerIsAdministrator();
