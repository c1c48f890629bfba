#pragma once

/// Characters of two bytes in 8-bit text: the second byte may look like a letter or a backslash.

/// @return true when `byte` starts a character of two bytes in the code page of the text.
using LeadByteTest = bool (*)(unsigned char byte);

/// The test for the system's code page, which the platform uses for paths.
[[nodiscard]] bool IsSystemLeadByte(unsigned char byte);
