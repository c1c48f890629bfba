#pragma once

#include <array>
#include <string>

/// Reading of one INF file: does one of its model sections list a device, and what is that device called?

/// The normalised hardware ID of the model line that matched last. Written by ParseINFile on the install thread.
extern std::array<char, 256> matchedHardwareId;

/// The device description that ParseINFile looked up last, on the install thread. After a match it is that of the
/// matched line, after a miss that of the section's last line.
extern std::array<char, 260> deviceDescription;

/// Looks for a device in one model section of an INF.
/// @param key          Hardware ID without the bus prefix; letter case does not count.
/// @param sectionName  Model section; null gives 0 at once and leaves both buffers alone.
/// @param infPath      Full path of the INF.
/// @return 1 when the first hardware ID of a line of the section is `key`, 0 otherwise.
int ParseINFile(const char* key, const char* sectionName, const char* infPath);

/// @return 1 when the file starts with the little-endian UTF-16 byte-order mark (FF FE), 0 otherwise and on every
///         error. Other marks are not looked for, on purpose.
int IsFileUnicode(const std::string& path);
