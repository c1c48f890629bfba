#pragma once

#include <string>
#include <utility>

#include "KitSearch.h"
#include "PlatformKit.h"

/// Traces a search, hands INF files to the platform's INF store, and makes the calls that a search makes without using
/// their results.
class InstallerLog final : public SearchLog
{
public:
    void SayPieces(std::span<const std::string_view> pieces) override;
    void Store(const std::string& infPath, const std::string& sourceDirectory) override;
    void Reached(SearchStep step) override;
};

/// A search with the options, the places and the texts of this run.
/// @param system  Read by whatever depends on the system: not by the levels, the resolved directories and the reading
///                of one INF.
/// @param family  Read where INF files are qualified.
[[nodiscard]] KitSearch SearchOfThisRun(KitSource& source, SearchLog& log, OSCode system = osUNSUPPORTED,
                                        std::string family = {});

/// The same over the platform, for one question.
class InstallerSearch
{
public:
    explicit InstallerSearch(OSCode system = osUNSUPPORTED, std::string family = {})
        : m_search(SearchOfThisRun(m_kit, m_log, system, std::move(family)))
    {
    }
    ~InstallerSearch() = default;
    InstallerSearch(const InstallerSearch&) = delete;
    InstallerSearch& operator=(const InstallerSearch&) = delete;

    operator const KitSearch&() const { return m_search; }

private:
    PlatformKit m_kit;
    InstallerLog m_log;
    KitSearch m_search;
};
