#pragma once

#include <windows.h>

#include <span>
#include <string>

/// A value below HKEY_LOCAL_MACHINE as readable text: texts as they are, numbers in decimals; empty when there is none.
[[nodiscard]] std::string ReadRegistryText(const char* key, const char* value);

/// A value as one readable line: texts with their control characters escaped, numbers, anything else as bytes.
[[nodiscard]] std::string ShownValue(DWORD type, std::span<const BYTE> data);
