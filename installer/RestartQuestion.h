#pragma once

/// Whether the outcome of the run needs a restart. Asks the iSCSI support first, and lets the system's iSCSI boot
/// configuration tool verify its settings where an iSCSI boot adapter is present and every iSCSI condition holds.
[[nodiscard]] bool RestartIsNeeded();
