#pragma once

#include <string>
#include <string_view>

/// Hardware IDs of INF files, judged with the installer's own rules.

/// @return the ID as the installer's search compares it, in upper case: without its bus, cut where the search cuts it.
///         Empty for an ID of another bus than PCI.
[[nodiscard]] std::string ComparedId(std::string_view hardwareId);

/// @param hardwareId  With the bus of PCI.
[[nodiscard]] std::string_view WithoutBus(std::string_view hardwareId);

/// @param compared  A result of ComparedId.
/// @return true when a device's key name exists for which one of the four passes searches this ID.
[[nodiscard]] bool IsSearched(const std::string& compared);

/// @return true when the ID has the vendor number of a row of the accepted compatible IDs.
[[nodiscard]] bool IsOfAcceptedVendor(std::string_view compared);

/// @return true for an ID with a class code and no device number: it names a kind of devices.
[[nodiscard]] bool NamesClassOnly(std::string_view hardwareId);
