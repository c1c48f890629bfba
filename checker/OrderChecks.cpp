#include <algorithm>
#include <compare>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <unordered_map>

#include "Checks.h"
#include "EqualsIgnoringCase.h"
#include "HardwareIds.h"
#include "NetworkDevices.h"
#include "PathResolution.h"
#include "SearchIds.h"
#include "SetupModels.h"

// The findings about which INF file wins, and what set-up makes of it.

namespace {
/// The first line of an INF file that lists an ID.
struct Listing
{
    std::size_t met = 0; ///< place in the list of INF files
    const ModelEntry* entry = nullptr;
};

/// All IDs of a system, each with the files that list it in the order of the search: directory, file, name of the model
/// section, line. The first one wins.
class Listings
{
public:
    explicit Listings(const SystemReading& on) : m_on(on)
    {
        for (std::size_t place = 0; place < on.infs.size(); ++place) {
            if (on.infs[place].Qualifies()) {
                AddFile(place);
            }
        }
    }

    [[nodiscard]] const MetInf& MetOf(const Listing& listing) const { return m_on.infs[listing.met]; }
    [[nodiscard]] const std::unordered_map<std::string_view, std::vector<Listing>>& All() const { return m_all; }
    /// @return the IDs of a device, without its sub-system, that have a revision.
    [[nodiscard]] std::vector<std::string> RevisionsOf(const std::string& device) const
    {
        const auto found = m_revisions.find(device);
        return found == m_revisions.end() ? std::vector<std::string>() : found->second;
    }
    [[nodiscard]] const std::vector<Listing>* Of(const std::string& id) const
    {
        const auto found = m_all.find(id);
        return found == m_all.end() ? nullptr : &found->second;
    }

private:
    void AddFile(std::size_t place)
    {
        for (const std::string& section : m_on.sectionNames) {
            for (const ModelEntry& entry : m_on.infs[place].inf->EntriesOf(section)) {
                if (!entry.servesDevice) {
                    continue;
                }
                std::vector<Listing>& listings = m_all[*entry.found];
                if (listings.empty() && entry.found->find("&SUBSYS") == std::string::npos) {
                    AddRevision(*entry.found);
                }
                if (listings.empty() || listings.back().met != place) {
                    listings.push_back({.met = place, .entry = &entry});
                }
            }
        }
    }

    void AddRevision(const std::string& id)
    {
        if (const std::size_t revision = id.find("&REV"); revision != std::string::npos) {
            m_revisions[id.substr(0, revision)].push_back(id);
        }
    }

    const SystemReading& m_on;
    std::unordered_map<std::string_view, std::vector<Listing>> m_all;
    std::unordered_map<std::string, std::vector<std::string>> m_revisions;
};

bool IsOlder(const InfFacts& inf, const InfFacts& other)
{
    return Compare(inf.Version(), other.Version()) == std::partial_ordering::less;
}

/// Findings about pairs of INF files: the first ID in the order of the lines speaks for all.
class PairFindings
{
public:
    PairFindings(const KitCheck& check, const SystemReading& on) : m_check(check), m_on(on) {}

    void Add(int rule, const Listing& winner, const Listing& other, std::string_view why)
    {
        Pair& pair = m_pairs[{rule, winner.met, other.met}];
        ++pair.count;
        if (pair.entry == nullptr || winner.entry->place.line < pair.entry->place.line) {
            pair.entry = winner.entry;
            pair.why = why;
        }
    }

    void Report(const KitFolder& folder) const
    {
        for (const auto& [key, pair] : m_pairs) {
            const auto& [rule, winner, other] = key;
            const std::string more = pair.count == 1 ? "" : " (and " + std::to_string(pair.count - 1) + " more)";
            m_check.Add(rule, m_on.infs[winner].inf->Path(), pair.entry->place,
                        *pair.entry->found + more + pair.why + folder.Paths().NameOf(m_on.infs[other].inf->Path()),
                        m_on.system.section);
        }
    }

private:
    struct Pair
    {
        const ModelEntry* entry = nullptr;
        std::string why;
        std::size_t count = 0;
    };

    const KitCheck& m_check;
    const SystemReading& m_on;
    std::map<std::tuple<int, std::size_t, std::size_t>, Pair> m_pairs;
};

/// Two INF files that list one ID.
void CheckSameId(const Listings& all, const std::vector<Listing>& listings, PairFindings& pairs)
{
    const Listing& winner = listings.front();
    for (std::size_t place = 1; place < listings.size(); ++place) {
        const Listing& other = listings[place];
        if (IsOlder(*all.MetOf(winner).inf, *all.MetOf(other).inf)) {
            pairs.Add(401, winner, other, " is also in the newer ");
        }
        if (all.MetOf(other).directory == all.MetOf(winner).directory) {
            pairs.Add(403, winner, other, " is also in ");
        }
    }
}

/// A longer ID that wins over a shorter one in a newer file.
void CheckShorterIds(const Listings& all, const std::string& id, const Listing& winner, PairFindings& pairs)
{
    const std::vector<Listing>& same = *all.Of(id);
    std::set<std::string> shorter;
    for (int pass = kFirstSearchPass; pass <= kLastSearchPass; ++pass) {
        shorter.insert(PlanPass(id, pass).searchId);
    }
    if (id.find("&SUBSYS") != std::string::npos && id.find("&REV") == std::string::npos) {
        // A device with this sub-system can have any of these revisions, which are searched later.
        std::ranges::copy(all.RevisionsOf(PlanPass(id, kLastSearchPass).searchId),
                          std::inserter(shorter, shorter.end()));
    }
    for (const std::string& general : shorter) {
        const std::vector<Listing>* const listings = general != id ? all.Of(general) : nullptr;
        if (listings == nullptr || listings->front().met == winner.met) {
            continue;
        }
        const Listing& other = listings->front();
        const bool listsBoth = std::ranges::any_of(same, [&other](const Listing& one) { return one.met == other.met; });
        if (!listsBoth && IsOlder(*all.MetOf(winner).inf, *all.MetOf(other).inf)) {
            pairs.Add(402, winner, other, " is longer than an ID in the newer ");
        }
    }
}

/// Files of one name in two directories.
void CheckSameNames(const KitCheck& check, const SystemReading& on)
{
    std::map<std::string, const MetInf*> stored;
    for (const MetInf& met : on.infs) {
        if (!met.Qualifies()) {
            continue;
        }
        const std::string name = UpperAscii(BaseNameOf(met.inf->FileName()));
        if (met.isStored) {
            stored.emplace(name, &met);
        } else if (const auto first = stored.find(name); first != stored.end()) {
            check.Add(404, met.inf->Path(), {},
                      "of the same name as " + check.reading.Folder().Paths().NameOf(first->second->inf->Path()),
                      on.system.section, met.inf->Path());
        }
    }
}

/// @return the IDs that set-up finds in the INF on any product of a system.
std::set<std::string> IdsOfSetup(const InfFacts& inf, const std::vector<std::vector<std::string>>& sectionsByProduct)
{
    std::set<std::string> sections;
    for (const std::vector<std::string>& ofProduct : sectionsByProduct) {
        sections.insert(ofProduct.begin(), ofProduct.end());
    }
    std::set<std::string> ids;
    for (const std::string& section : sections) {
        for (const SetupInf::Line& line : inf.Setup().LinesOf(section)) {
            for (std::size_t field = 1; field < line.fields.size(); ++field) {
                ids.insert(ComparedId(line.fields[field]));
            }
        }
    }
    return ids;
}

/// Lines that the search finds and set-up does not.
void CheckSectionsOfSetup(const KitCheck& check, const SystemReading& on, const MetInf& met)
{
    std::vector<std::vector<std::string>> bySetup;
    for (const SetupSystem& product : ProductsOf(on.system.code, on.system.facts)) {
        bySetup.push_back(SectionsOfSetup(met.inf->Setup(), product));
    }
    std::optional<std::set<std::string>> ids;
    for (const std::string& section : on.sectionNames) {
        const auto takes = [&section](const std::vector<std::string>& sections) {
            return std::ranges::any_of(
                sections, [&section](const std::string& name) { return EqualsIgnoringCase(name, section); });
        };
        const std::vector<ModelEntry>& entries = met.inf->EntriesOf(section);
        if (entries.empty() || std::ranges::any_of(bySetup, takes)) {
            continue;
        }
        if (!ids) {
            ids = IdsOfSetup(*met.inf, bySetup);
        }
        for (const ModelEntry& entry : entries) {
            if (entry.servesDevice && !ids->contains(*entry.found)) {
                const std::vector<std::string>& taken = bySetup.front();
                check.Add(405, met.inf->Path(), entry.place,
                          *entry.found + " is found in [" + section + "]; set-up takes " +
                              (taken.empty() ? "no section" : "[" + taken.front() + "]"),
                          on.system.section);
                break;
            }
        }
    }
}
} // namespace

void CheckOrder(const KitCheck& check, const SystemReading& on)
{
    const Listings all(on);
    PairFindings pairs(check, on);
    for (const auto& [id, listings] : all.All()) {
        CheckSameId(all, listings, pairs);
        CheckShorterIds(all, std::string(id), listings.front(), pairs);
    }
    pairs.Report(check.reading.Folder());
    CheckSameNames(check, on);
    for (const MetInf& met : on.infs) {
        if (met.Qualifies()) {
            CheckSectionsOfSetup(check, on, met);
        }
    }
}

void CheckAcceptedDevices(const KitCheck& check)
{
    /// What a system lists, excluded files included: leaving one out is a decision.
    const auto lists = [&check](const std::string& system, std::string_view id) {
        const SystemReading& on = check.reading.On(system);
        return std::ranges::any_of(on.infs, [&](const MetInf& met) {
            const bool counts = met.Qualifies() || *met.passedOver == InfVerdict::Excluded;
            return counts && std::ranges::any_of(on.sectionNames, [&](const std::string& section) {
                       return std::ranges::any_of(met.inf->EntriesOf(section), [id](const ModelEntry& entry) {
                           return entry.found && entry.found->starts_with(id) &&
                                  (entry.found->size() == id.size() || (*entry.found)[id.size()] == '&');
                       });
                   });
        });
    };
    for (std::size_t row = kAcceptedClassRows; row < kAcceptedCompatibleIds.size(); ++row) {
        const std::string id = ComparedId(kAcceptedCompatibleIds[row]);
        std::vector<std::string> without;
        for (const std::string& system : check.systems) {
            if (!lists(system, id)) {
                without.push_back(system);
            }
        }
        if (without.size() == check.systems.size()) {
            continue;
        }
        for (const std::string& system : without) {
            const SystemReading& on = check.reading.On(system);
            if (on.HasSection() && !on.infs.empty()) {
                check.Add(701, check.reading.SetupIni(), on.place, id + " is in no INF file of [" + system + "]",
                          system, system + " " + id);
            }
        }
    }
}
