#pragma once

#include <string>

/// Copies the logs of device installation and of Windows Installer that this machine has.
/// @param folder  Where to; it is there.
void CopySystemLogs(const std::string& folder);

/// Packs everything below a folder into a .zip file.
void PackFolder(const std::string& folder, const std::string& archive);
