#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "KitFolder.h"
#include "Machine.h"

/// A folder of its own for a test, removed with the object.
class TestFolder
{
public:
    TestFolder();
    ~TestFolder();
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& Path() const { return m_path; }
    /// Writes a file, and the folders above it.
    void Write(const std::string& name, std::string_view text) const;

private:
    std::filesystem::path m_path;
};

/// What an INF says.
struct InfText
{
    std::string signature = "$Windows NT$";
    std::string manufacturer = "%Mfg%=Norda,NTamd64";
    std::string driverVersion = "10/01/2012,1.2.3.4";
    std::string before{};           ///< first lines of [Norda.NTamd64]
    std::vector<std::string> ids{}; ///< first IDs of its further lines
    std::string more{};             ///< further sections
};
[[nodiscard]] std::string Inf(const InfText& text);

inline constexpr char kSection[] = "Win832E";
inline constexpr char kSetupDir[] = R"(C:\Kit)";
inline constexpr char kServedId[] = R"(PCI\VEN_5D1A&CC_020000)";
inline constexpr char kCard[] = "VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A&REV_01";
inline constexpr char kOtherCard[] = "VEN_5D1A&DEV_1B3C&SUBSYS_00015D1A&REV_02";

/// A kit with a Morvix.ini of one section: model section Norda.NTamd64, folder Drv, and further lines.
[[nodiscard]] std::string SetupIni(const std::string& moreLines = {});

/// The kit in a folder, as it lies in C:\Kit.
[[nodiscard]] KitFolder::Place PlaceOf(const TestFolder& folder);

/// A workstation of Windows 8 x64 with one PCI device for each name and list of compatible IDs.
[[nodiscard]] Machine MachineWith(const std::vector<std::pair<std::string, std::vector<std::string>>>& devices);
/// The same with devices that are all served.
[[nodiscard]] Machine MachineWithCards(const std::vector<std::string>& names);
