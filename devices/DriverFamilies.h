#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

/// How a family's driver files for Windows 7 and Windows Server 2008 R2 (version 6.1) are named.
enum class DriverFilesFor61
{
    LikeElsewhere, ///< they are the files of every other system
    Named62,       ///< they are others, with "62" after the prefix
};

/// A driver family: the INF names that belong to it, where its driver file is looked for, and what its result is
/// called.
struct DriverFamily
{
    std::string_view infPrefix;    ///< upper case, with the backslash before the file name
    std::string_view resultPrefix; ///< first part of the names of the result values
    DriverFilesFor61 filesFor61;
};

/// The maker's driver families. The order matters: the first row whose prefix fits wins.
inline constexpr std::array kDriverFamilies = std::to_array<DriverFamily>({
    // gigabit, PCI
    {R"(\NG1K)", "TAVG_", DriverFilesFor61::LikeElsewhere},
    // 100 Mb
    {R"(\NF5A)", "TAVF_", DriverFilesFor61::LikeElsewhere},
    {R"(\NG1F)", "TAVF_", DriverFilesFor61::LikeElsewhere},
    {R"(\NF6A)", "TAVF_", DriverFilesFor61::Named62},
    // gigabit, PCI Express
    {R"(\NGEA)", "TAVG_PCIE_", DriverFilesFor61::Named62},
    {R"(\NGEB)", "TAVG_PCIE_", DriverFilesFor61::Named62},
    {R"(\NGEC)", "TAVG_PCIE_", DriverFilesFor61::Named62},
    {R"(\NGED)", "TAVG_PCIE_", DriverFilesFor61::Named62},
    {R"(\NGEF)", "TAVG_PCIE_", DriverFilesFor61::Named62},
    {R"(\NGEH)", "TAVG_PCIE_", DriverFilesFor61::Named62},
    {R"(\NGEK)", "TAVG_PCIE_", DriverFilesFor61::Named62},
    {R"(\NGEM)", "TAVG_PCIE_", DriverFilesFor61::Named62},
    // gigabit, later PCI parts
    {R"(\NGP1)", "TAVG_", DriverFilesFor61::Named62},
    {R"(\NGP2)", "TAVG_", DriverFilesFor61::Named62},
    {R"(\NGP3)", "TAVG_", DriverFilesFor61::Named62},
    {R"(\NGPV)", "TAVG_", DriverFilesFor61::LikeElsewhere},
    // 10 gigabit
    {R"(\NXGA)", "TAVX_", DriverFilesFor61::Named62},
    {R"(\NXGB)", "TAVX_", DriverFilesFor61::Named62},
    {R"(\NXGC)", "TAVX_", DriverFilesFor61::Named62},
    {R"(\NXGD)", "TAVX_", DriverFilesFor61::Named62},
    {R"(\NXGE)", "TAVX_", DriverFilesFor61::Named62},
});

namespace driver_families {
constexpr bool IsInfPrefix(std::string_view prefix)
{
    if (prefix.size() < 4 || prefix.size() > 6 || !prefix.starts_with('\\')) {
        return false;
    }
    return std::ranges::all_of(prefix.substr(1),
                               [](char c) { return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); });
}

constexpr bool HasShape()
{
    const std::string_view first = kDriverFamilies[0].infPrefix;
    const std::string_view third = kDriverFamilies[2].infPrefix;
    return kDriverFamilies.size() == 21 &&
           std::ranges::all_of(kDriverFamilies, IsInfPrefix, &DriverFamily::infPrefix) && first != third &&
           first.substr(0, first.size() - 1) == third.substr(0, third.size() - 1);
}
static_assert(HasShape(), "21 rows of three to five upper-case letters or digits; rows 1 and 3 differ in the last one");
} // namespace driver_families

/// @param upperFileName  File name of the INF in upper case, from its path's last backslash on (included).
/// @return the first family with whose prefix it begins, or null when the INF belongs to none.
[[nodiscard]] const DriverFamily* FamilyOfInf(std::string_view upperFileName);

/// @param is61System  The system is Windows 7 or Windows Server 2008 R2; later and earlier ones use the plain pattern.
/// @return the search pattern of the family's driver file, to be appended to the driver directory's path as it is.
[[nodiscard]] std::string DriverFilePattern(const DriverFamily& family, bool is61System);
