#pragma once

#include <span>
#include <string>
#include <string_view>

#include "Plan.h"
#include "SearchLog.h"
#include "ServedFamilies.h"

/// The device pass as the installer would trace it, one line of text for each line of trace. The line feed at a line's
/// end is not shown; a control character within a line is escaped. What only the platform of that machine can say is
/// one line in angle brackets, which takes the place of any number of lines.

/// Answers of the driver store, for one INF.
inline constexpr std::string_view kStorePlaceholder = "<what the driver store answers>";
/// Answers of the platform's or the maker's installation, up to the result of the driver.
inline constexpr std::string_view kInstallPlaceholder = "<what the installation answers>";
/// From the look into the driver directory to the end of the result.
inline constexpr std::string_view kResultPlaceholder = "<what the driver directory holds>";
/// Whether the machine boots over the adapter: asked only after an installation that left no error.
inline constexpr std::string_view kStorageBootPlaceholder = "<what the adapter says about storage boot>";

/// Writes the trace of a device pass.
class TraceLog final : public SearchLog
{
public:
    /// @param out  Appended to.
    explicit TraceLog(std::string& out) : m_out(out) {}

    void SayPieces(std::span<const std::string_view> pieces) override;
    void Store(const std::string& infPath, const std::string& sourceDirectory) override;
    void Reached(SearchStep step) override;

    void PassStarts() { Say("************ enumerating registry for devices...\n"); }
    void PassEnds() { Say("************ finished enumerating registry for devices\n"); }

    /// What follows a match.
    /// @param recordPath  The INF's path as the install record holds it.
    void Installed(InstallRoute route, const std::string& deviceKey, const std::string& recordPath,
                   const PlannedSystem& system, LeadByteTest isLeadByte);

private:
    void InstalledByInterface(const std::string& recordPath, const PlannedSystem& system, LeadByteTest isLeadByte);
    void Placeholder(std::string_view line);

    std::string& m_out;
};
