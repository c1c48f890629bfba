#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

/// Which driver files of a family belong to systems of generation 6.1.
enum class FilesFor61
{
    Plain, ///< the same as on every other system
    Own62, ///< files of their own, with "62" behind the prefix
};

/// A driver family: the INF names that belong to it, where its driver file is looked for, and what its result is
/// called.
struct DriverFamily
{
    std::string_view infPrefix;    ///< upper case; the backslash ties it to the start of the file name
    std::string_view resultPrefix; ///< first part of the names of the result values
    FilesFor61 filesFor61;
};

/// The maker's driver families. The order matters: the first row whose prefix fits wins.
inline constexpr std::array kDriverFamilies = std::to_array<DriverFamily>({
    // gigabit, PCI
    {R"(\NG1K)", "TAVG_", FilesFor61::Plain},
    // 100 Mb
    {R"(\NF5A)", "TAVF_", FilesFor61::Plain},
    {R"(\NG1F)", "TAVF_", FilesFor61::Plain},
    {R"(\NF6A)", "TAVF_", FilesFor61::Own62},
    // gigabit, PCI Express
    {R"(\NGEA)", "TAVG_PCIE_", FilesFor61::Own62},
    {R"(\NGEB)", "TAVG_PCIE_", FilesFor61::Own62},
    {R"(\NGEC)", "TAVG_PCIE_", FilesFor61::Own62},
    {R"(\NGED)", "TAVG_PCIE_", FilesFor61::Own62},
    {R"(\NGEF)", "TAVG_PCIE_", FilesFor61::Own62},
    {R"(\NGEH)", "TAVG_PCIE_", FilesFor61::Own62},
    {R"(\NGEK)", "TAVG_PCIE_", FilesFor61::Own62},
    {R"(\NGEM)", "TAVG_PCIE_", FilesFor61::Own62},
    // gigabit, later PCI parts
    {R"(\NGP1)", "TAVG_", FilesFor61::Own62},
    {R"(\NGP2)", "TAVG_", FilesFor61::Own62},
    {R"(\NGP3)", "TAVG_", FilesFor61::Own62},
    {R"(\NGPV)", "TAVG_", FilesFor61::Plain},
    // 10 gigabit
    {R"(\NXGA)", "TAVX_", FilesFor61::Own62},
    {R"(\NXGB)", "TAVX_", FilesFor61::Own62},
    {R"(\NXGC)", "TAVX_", FilesFor61::Own62},
    {R"(\NXGD)", "TAVX_", FilesFor61::Own62},
    {R"(\NXGE)", "TAVX_", FilesFor61::Own62},
});

namespace driver_families {
constexpr bool IsInfPrefix(std::string_view prefix)
{
    if (prefix.size() < 4 || prefix.size() > 6 || !prefix.starts_with('\\')) {
        return false;
    }
    for (const char c : prefix.substr(1)) {
        if (!((c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'))) {
            return false;
        }
    }
    return true;
}

constexpr bool HasShape()
{
    for (const DriverFamily& family : kDriverFamilies) {
        if (!IsInfPrefix(family.infPrefix)) {
            return false;
        }
    }
    const std::string_view first = kDriverFamilies[0].infPrefix;
    const std::string_view third = kDriverFamilies[2].infPrefix;
    return kDriverFamilies.size() == 21 && first != third &&
           first.substr(0, first.size() - 1) == third.substr(0, third.size() - 1);
}
static_assert(HasShape(), "21 rows of three to five upper-case letters or digits; rows 1 and 3 differ in the last one");
} // namespace driver_families

/// @param upperFileName  File name of the INF in upper case, from its path's last backslash on (included).
/// @return the first family whose prefix occurs in it, or null when the INF belongs to none.
[[nodiscard]] const DriverFamily* FamilyOfInf(std::string_view upperFileName);

/// @param is61System  The system is Windows 7 or Windows Server 2008 R2; later and earlier ones use the plain pattern.
/// @return the search pattern of the family's driver file, to be appended to the driver directory's path as it stands.
[[nodiscard]] std::string DriverFilePattern(const DriverFamily& family, bool is61System);
