#pragma once

/// Whether the outcome of the run needs a restart. Asks the iSCSI support first, and runs the system's iSCSI boot
/// configuration tool when an iSCSI boot adapter is present and every iSCSI condition holds.
bool RestartIsNeeded();
