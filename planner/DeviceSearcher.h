#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "KitFolder.h"
#include "KitSearch.h"
#include "Plan.h"

/// What a search depends on beside the device.
struct SearchTerms
{
    OSCode system = osUNSUPPORTED;
    std::string family;
    uint32_t codePage = 0; ///< of the machine's 8-bit calls
    bool scanAll = false;  ///< excluded INF files are searched too

    // The comparison with 0 that the checker finds is the compiler's.
    friend auto operator<=>(const SearchTerms&, const SearchTerms&) = default; // NOLINT(modernize-use-nullptr)
};

/// The two texts that a search writes, and the search that writes to them.
class KitQuestion
{
public:
    /// @param stored  File names that went to the driver store in this run.
    KitQuestion(FolderKitSource& source, SearchLog& log, const SearchTerms& terms, std::vector<std::string>& stored);
    ~KitQuestion() = default;
    KitQuestion(const KitQuestion&) = delete;
    KitQuestion& operator=(const KitQuestion&) = delete;

    [[nodiscard]] const KitSearch& Search() const { return m_search; }
    [[nodiscard]] std::string Description() const { return m_description.data(); }

private:
    std::array<char, 256> m_matchedId{};
    std::array<char, 260> m_description{};
    KitSearch m_search;
};

/// Hears a search and keeps nothing of it.
class SilentLog : public SearchLog
{
public:
    void SayPieces(std::span<const std::string_view> /*pieces*/) override {}
    void Store(const std::string& /*infPath*/, const std::string& /*sourceDirectory*/) override {}
};

/// Runs the installer's search for one device of a kit and takes notes, as if no INF had gone to the driver store
/// before.
[[nodiscard]] SearchOutcome SearchKit(FolderKitSource& source, const SearchTerms& terms, const std::string& deviceKey);

/// The same in the middle of a run: what has gone to the driver store before does not count as qualified again.
/// @param storedInfs  The run's list of the installer; appended to.
/// @param listener    Hears all of the search.
[[nodiscard]] SearchOutcome SearchKit(FolderKitSource& source, const SearchTerms& terms, const std::string& deviceKey,
                                      std::vector<std::string>& storedInfs, SearchLog& listener);

/// Hands the INF files that qualified in a search to the driver store of a run.
/// @param storedInfs  The run's list of the installer; appended to.
/// @return the file names that are stored now.
[[nodiscard]] std::vector<std::string> StoreQualified(FolderKitSource& source, const SearchTerms& terms,
                                                      const SearchOutcome& search,
                                                      std::vector<std::string>& storedInfs);

/// The test for the first bytes of two-byte characters in a code page.
[[nodiscard]] LeadByteTest LeadByteTestOf(uint32_t codePage);
