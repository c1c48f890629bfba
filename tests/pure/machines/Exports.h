#pragma once

#include <string>

#include "Machine.h"

/// Exports for the tests, and how they are read.

inline const std::string kExportHeader = "Windows Registry Editor Version 5.00\r\n\r\n";
inline const std::string kPciKey = R"(HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Enum\PCI)";
inline const std::string kCardName = "VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A&REV_01";

/// @return the ASCII text as regedit writes it: UTF-16 with its mark.
[[nodiscard]] std::string Utf16(const std::string& text);
/// @return the bytes as an export shows them, a few in each line: "hex(7):50,00,\", "  43,00".
[[nodiscard]] std::string Hex(uint32_t type, const std::string& bytes);
/// @return a line such as [HKEY_LOCAL_MACHINE\...\Enum\PCI\<device>\<instance>].
[[nodiscard]] std::string DeviceKey(const std::string& device, const std::string& instance);
/// @return a device whose first instance has one compatible ID, in version 5 of the format.
[[nodiscard]] std::string Device(const std::string& device, const std::string& id);

/// Reads an export from memory, in one block.
[[nodiscard]] Machine ReadText(const std::string& bytes, std::optional<uint32_t> codePage = std::nullopt);
/// The same in blocks of that many bytes.
[[nodiscard]] Machine ReadInBlocks(const std::string& bytes, std::size_t blockBytes);
/// @return everything about a machine in one text, to compare by.
[[nodiscard]] std::string Describe(const Machine& machine);
/// @return the texts of the remarks, one a line.
[[nodiscard]] std::string Remarks(const Machine& machine);
