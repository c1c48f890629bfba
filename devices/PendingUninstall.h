#pragma once

/// Takes the maker's uninstaller out of the system's list of file operations pending until the next restart, so that a
/// deletion left over from an earlier uninstall does not hit what this run installs.
/// @return 1 when an entry was removed, 0 otherwise.
int isRegEntryTAVUnstl();
