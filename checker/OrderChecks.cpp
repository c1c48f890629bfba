#include <algorithm>
#include <array>
#include <compare>
#include <deque>
#include <map>
#include <unordered_map>

#include "AsciiCase.h"
#include "Checks.h"
#include "EqualsIgnoringCase.h"
#include "HardwareIds.h"
#include "NetworkDevices.h"
#include "PathResolution.h"
#include "SetupModels.h"

// The findings about which INF file wins, and what set-up makes of it.

namespace {
/// The first line of an INF file that lists an ID.
struct Listing
{
    std::size_t met = 0; ///< place in the list of INF files
    const ModelEntry* entry = nullptr;
    const Listing* next = nullptr; ///< of the same ID, in the next file that lists it
};

/// All IDs of a system, each with the files that list it in the order of the search: directory, file, name of the model
/// section, line. The first one wins.
class Listings
{
public:
    Listings(const SystemReading& on, KnownIds& ids) : m_on(on), m_ids(ids)
    {
        for (std::size_t place = 0; place < on.infs.size(); ++place) {
            if (on.infs[place].Qualifies()) {
                AddFile(place);
            }
        }
    }
    Listings(const Listings&) = delete;
    Listings& operator=(const Listings&) = delete;

    [[nodiscard]] KnownIds& Ids() const { return m_ids; }
    [[nodiscard]] const MetInf& MetOf(const Listing& listing) const { return m_on.infs[listing.met]; }
    /// @return the winner of each ID, in the order in which the search meets them.
    [[nodiscard]] const std::vector<const Listing*>& Winners() const { return m_winners; }
    /// @return null for an ID that no file lists.
    [[nodiscard]] const Listing* Of(const KnownId* id) const
    {
        return id != nullptr && id->number < m_chains.size() ? m_chains[id->number].first : nullptr;
    }
    /// @param device  Without sub-system and revision.
    /// @return its IDs that have a revision and no sub-system.
    [[nodiscard]] const std::vector<const KnownId*>& RevisionsOf(const KnownId& device) const
    {
        static const std::vector<const KnownId*> kNone;
        const auto found = m_revisions.find(device.text);
        return found == m_revisions.end() ? kNone : found->second;
    }

private:
    struct Chain
    {
        const Listing* first = nullptr;
        Listing* last = nullptr;
    };

    void AddFile(std::size_t place)
    {
        for (const std::string& section : m_on.sectionNames) {
            for (const ModelEntry& entry : m_on.infs[place].inf->EntriesOf(section)) {
                if (entry.ServesDevice()) {
                    Add(place, entry);
                }
            }
        }
    }

    void Add(std::size_t place, const ModelEntry& entry)
    {
        const KnownId& id = *entry.found;
        if (id.number >= m_chains.size()) {
            m_chains.resize(m_ids.Count()); // the entries of a file are read when they are asked for
        }
        Chain& chain = m_chains[id.number];
        if (chain.last != nullptr && chain.last->met == place) {
            return;
        }
        m_listings.push_back({.met = place, .entry = &entry});
        Listing& listing = m_listings.back();
        if (chain.last != nullptr) {
            chain.last->next = &listing;
        } else {
            chain.first = &listing;
            m_winners.push_back(&listing);
            if (id.hasRevision && !id.hasSubSystem) {
                m_revisions[std::string_view(id.text).substr(0, id.text.find("&REV"))].push_back(&id);
            }
        }
        chain.last = &listing;
    }

    const SystemReading& m_on;
    KnownIds& m_ids;
    std::deque<Listing> m_listings; // keeps the addresses
    std::vector<Chain> m_chains;    // by number of the ID
    std::vector<const Listing*> m_winners;
    std::unordered_map<std::string_view, std::vector<const KnownId*>> m_revisions;
};

bool IsOlder(const InfFacts& inf, const InfFacts& other)
{
    return Compare(inf.Version(), other.Version()) == std::partial_ordering::less;
}

struct OrderFinding
{
    int rule = 0;
    std::string file; ///< on the machine
    ProfilePlace place;
    std::string what;
};

/// Findings about pairs of INF files: the first ID in the order of the lines speaks for all.
class PairFindings
{
public:
    PairFindings(const MachinePaths& paths, const SystemReading& on) : m_paths(paths), m_on(on) {}

    void Add(int rule, const Listing& winner, const Listing& other, std::string_view why)
    {
        Pair& pair = m_pairs[{rule, winner.met, other.met}];
        ++pair.count;
        if (pair.entry == nullptr || winner.entry->place.line < pair.entry->place.line) {
            pair.entry = winner.entry;
            pair.why = why;
        }
    }

    [[nodiscard]] std::vector<OrderFinding> Findings() const
    {
        std::vector<OrderFinding> findings;
        for (const auto& [key, pair] : m_pairs) {
            const auto& [rule, winner, other] = key;
            const std::string more = pair.count == 1 ? "" : " (and " + std::to_string(pair.count - 1) + " more)";
            findings.push_back(
                {.rule = rule,
                 .file = m_on.infs[winner].inf->Path(),
                 .place = pair.entry->place,
                 .what = pair.entry->found->text + more + pair.why + m_paths.NameOf(m_on.infs[other].inf->Path())});
        }
        return findings;
    }

private:
    struct Pair
    {
        const ModelEntry* entry = nullptr;
        std::string why;
        std::size_t count = 0;
    };

    const MachinePaths& m_paths;
    const SystemReading& m_on;
    std::map<std::tuple<int, std::size_t, std::size_t>, Pair> m_pairs;
};

/// Two INF files that list one ID.
void CheckSameId(const Listings& all, const Listing& winner, PairFindings& pairs)
{
    for (const Listing* other = winner.next; other != nullptr; other = other->next) {
        if (IsOlder(*all.MetOf(winner).inf, *all.MetOf(*other).inf)) {
            pairs.Add(401, winner, *other, " is also in the newer ");
        }
        if (all.MetOf(*other).directory == all.MetOf(winner).directory) {
            pairs.Add(403, winner, *other, " is also in ");
        }
    }
}

bool ListsToo(const Listing& winner, std::size_t met)
{
    const Listing* one = &winner;
    while (one != nullptr && one->met != met) {
        one = one->next;
    }
    return one != nullptr;
}

/// An ID that is shorter than the winner's and searched later.
void CheckShorterId(const Listings& all, const Listing& winner, const KnownId* shorter, PairFindings& pairs)
{
    const Listing* const other = all.Of(shorter);
    if (other != nullptr && !ListsToo(winner, other->met) && IsOlder(*all.MetOf(winner).inf, *all.MetOf(*other).inf)) {
        pairs.Add(402, winner, *other, " is longer than an ID in the newer ");
    }
}

/// A longer ID that wins over a shorter one in a newer file.
void CheckShorterIds(const Listings& all, const Listing& winner, PairFindings& pairs)
{
    const KnownId& id = *winner.entry->found;
    const LaterIds later = all.Ids().LaterIdsOf(id);
    for (const KnownId* const shorter : later) {
        CheckShorterId(all, winner, shorter, pairs);
    }
    if (id.hasSubSystem && !id.hasRevision && later.back() != nullptr) {
        // A device with this sub-system can have any of these revisions, which are searched later.
        for (const KnownId* const shorter : all.RevisionsOf(*later.back())) {
            CheckShorterId(all, winner, shorter, pairs);
        }
    }
}

/// What decides the order of a search. Many systems have it in common, such as a workstation and its server.
using SearchedFiles = std::pair<std::vector<std::string>, std::vector<std::pair<const InfFacts*, std::size_t>>>;

SearchedFiles FilesSearchedOn(const SystemReading& on)
{
    SearchedFiles files{on.sectionNames, {}};
    for (const MetInf& met : on.infs) {
        if (met.Qualifies()) {
            files.second.emplace_back(met.inf, met.directory);
        }
    }
    return files;
}

std::vector<OrderFinding> OrderFindings(const KitCheck& check, const SystemReading& on)
{
    const Listings all(on, check.reading.Ids());
    PairFindings pairs(check.reading.Folder().Paths(), on);
    for (const Listing* const winner : all.Winners()) {
        CheckSameId(all, *winner, pairs);
        CheckShorterIds(all, *winner, pairs);
    }
    return pairs.Findings();
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

/// Lines that the search finds and set-up does not, on any product of the system.
void CheckSectionsOfSetup(const KitCheck& check, const SystemReading& on, const std::vector<SetupSystem>& products,
                          const MetInf& met)
{
    std::vector<std::vector<std::string>> bySetup;
    for (const SetupSystem& product : products) {
        bySetup.push_back(SectionsOfSetup(met.inf->Setup(), met.inf->Makers(), product));
    }
    const auto isTaken = [&](const std::string& section) {
        return std::ranges::any_of(bySetup, [&section](const std::vector<std::string>& sections) {
            return std::ranges::any_of(
                sections, [&section](const std::string& name) { return EqualsIgnoringCase(name, section); });
        });
    };
    std::vector<const ModelLines*> linesOfSetup;
    for (const std::vector<std::string>& sections : bySetup) {
        for (const std::string& section : sections) {
            linesOfSetup.push_back(&met.inf->LinesOf(section));
        }
    }
    const auto isInSetup = [&](const KnownId* id) {
        return std::ranges::any_of(
            linesOfSetup, [id](const ModelLines* lines) { return std::ranges::binary_search(lines->setupIds, id); });
    };
    for (const std::string& section : on.sectionNames) {
        const std::vector<ModelEntry>& entries = met.inf->EntriesOf(section);
        if (entries.empty() || isTaken(section)) {
            continue;
        }
        const auto entry = std::ranges::find_if(
            entries, [&](const ModelEntry& one) { return one.ServesDevice() && !isInSetup(one.found); });
        if (entry != entries.end()) {
            const std::vector<std::string>& taken = bySetup.front();
            check.Add(405, met.inf->Path(), entry->place,
                      entry->found->text + " is found in " + InBrackets(section) + "; set-up takes " +
                          (taken.empty() ? "no section" : InBrackets(taken.front())),
                      on.system.section);
        }
    }
}

/// Whether a system lists each of the accepted devices, excluded files included: leaving one out is a decision.
using ListedRows = std::array<bool, kAcceptedCompatibleIds.size()>;

ListedRows RowsListedOn(const SystemReading& on)
{
    ListedRows listed{};
    for (const MetInf& met : on.infs) {
        if (!met.Qualifies() && *met.passedOver != InfVerdict::Excluded) {
            continue;
        }
        for (const std::string& section : on.sectionNames) {
            for (const ModelEntry& entry : met.inf->EntriesOf(section)) {
                if (entry.found != nullptr && entry.found->acceptedRow) {
                    listed.at(*entry.found->acceptedRow) = true;
                }
            }
        }
    }
    return listed;
}
} // namespace

void CheckOrder(const KitCheck& check)
{
    std::map<SearchedFiles, std::vector<OrderFinding>> known;
    for (const std::string& system : check.systems) {
        const SystemReading& on = check.reading.On(system);
        const auto [found, isNew] = known.try_emplace(FilesSearchedOn(on));
        if (isNew) {
            found->second = OrderFindings(check, on);
        }
        for (const auto& [rule, file, place, what] : found->second) {
            check.Add(rule, file, place, what, system);
        }
        CheckSameNames(check, on);
        const std::vector<SetupSystem> products = ProductsOf(on.system.code, on.system.facts);
        for (const MetInf& met : on.infs) {
            if (met.Qualifies()) {
                CheckSectionsOfSetup(check, on, products, met);
            }
        }
    }
}

void CheckAcceptedDevices(const KitCheck& check)
{
    std::vector<ListedRows> listed;
    for (const std::string& system : check.systems) {
        listed.push_back(RowsListedOn(check.reading.On(system)));
    }
    for (std::size_t row = kAcceptedClassRows; row < kAcceptedCompatibleIds.size(); ++row) {
        if (std::ranges::none_of(listed, [row](const ListedRows& rows) { return rows.at(row); })) {
            continue;
        }
        const std::string id(WithoutBus(kAcceptedCompatibleIds.at(row)));
        for (std::size_t place = 0; place < check.systems.size(); ++place) {
            const std::string& system = check.systems[place];
            const SystemReading& on = check.reading.On(system);
            if (!listed[place].at(row) && on.HasSection() && !on.infs.empty()) {
                check.Add(701, check.reading.SetupIni(), on.place, id + " is in no INF file of [" + system + "]",
                          system, system + " " + id);
            }
        }
    }
}
