#pragma once

/// Whether the user who started the installation acts with administrator rights, by the token that this thread runs
/// with. An administrator who has not elevated the program counts as a standard user; the system account is an
/// administrator.
[[nodiscard]] bool CallerIsAdministrator();
