#pragma once

#include <string>
#include <vector>

/// What the files of a benchmark's kit hold. Always the same text for the same arguments.

/// @return four hexadecimal digits.
[[nodiscard]] std::string Hexadecimal(int number);

/// An INF file of 60 KB with the model sections "Norda.NTamd64.6.1" and "Norda". Each lists 180 adapters: the one with
/// the device number N of the file number F is "PCI\VEN_5D1A&DEV_N&SUBSYS_F5D1A".
/// @param file       Number of the file.
/// @param listedIds  Hardware IDs without the bus prefix that the section "Norda" lists besides.
[[nodiscard]] std::string InfContent(int file, const std::vector<std::string>& listedIds);

[[nodiscard]] std::string InfFileName(int file);

/// A section of a setup INI whose INF files are in the directory "Drv".
[[nodiscard]] std::string SystemSection(const std::string& system);
