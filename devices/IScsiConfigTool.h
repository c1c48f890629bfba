#pragma once

/// Runs the system's iSCSI boot configuration tool, which checks the boot settings and repairs them, without a window
/// and waits, without a time limit, until it has ended. A system without the tool is only traced.
void CalliSCSIConfigExe();
