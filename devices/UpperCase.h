#pragma once

#include <span>

#include "LeadByte.h"

/// Turns a to z into upper case, in place, up to the first NUL or the buffer's end. All other characters stay as they
/// are, and so does the second byte of a two-byte character, which may look like a letter.
void MakeUpperCase(std::span<char> text, LeadByteTest isLeadByte);
