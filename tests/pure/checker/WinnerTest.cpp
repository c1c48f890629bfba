#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <set>

#include "DriverVersion.h"
#include "Kits.h"
#include "Planner.h"
#include "SearchIds.h"

// The winner that a finding names is the one that a plan of such a machine takes. Random kits of a few INF files in two
// directories, with IDs of all four forms and versions of which some cannot be compared.

namespace {
constexpr int kKits = 30;
constexpr int kFiles = 4;

class RandomKit
{
public:
    explicit RandomKit(unsigned seed) : m_engine(seed)
    {
        m_files["Morvix.ini"] = Ini("InfSectionName=Norda.NTamd64,Norda.NTamd64.6.2\nInfDir=A\nInfDir=B\n");
        for (int file = 0; file < kFiles; ++file) {
            AddInf(std::string(Below(2) == 0 ? "A" : "B") + "/nge" + std::string(1, static_cast<char>('a' + Below(4))) +
                   std::to_string(file) + ".inf");
        }
    }

    [[nodiscard]] const KitFiles& Files() const { return m_files; }
    [[nodiscard]] const std::map<std::string, DriverVersion>& Versions() const { return m_versions; }

private:
    int Below(int limit) { return static_cast<int>(m_engine() % static_cast<unsigned>(limit)); }

    std::string Id()
    {
        std::string id = "VEN_5D1A&DEV_7A0" + std::to_string(Below(2));
        id += Below(2) == 0 ? "" : "&SUBSYS_0011" + std::string(Below(2) == 0 ? "5D1A" : "1E2B");
        return id + (Below(2) == 0 ? "" : "&REV_0" + std::to_string(Below(2)));
    }

    std::string Models()
    {
        std::string lines;
        for (int count = 1 + Below(3); count > 0; --count) {
            lines += Model(Id());
        }
        return lines;
    }

    void AddInf(const std::string& name)
    {
        const std::string version = std::to_string(1 + Below(12)) + "/01/201" + std::to_string(Below(3)) +
                                    (Below(4) == 0 ? "" : ",1." + std::to_string(Below(3)));
        const std::string inf = Changed(Changed(InfWithModels(Models()), "10/01/2012,2.0.0.0", version), "[Nic.ndi]",
                                        "[Norda.NTamd64.6.2]\n" + Models() + "[Nic.ndi]");
        m_files[name] = Changed(inf, "NTamd64\n[", "NTamd64,NTamd64.6.2\n[");
        m_versions[name] = ParseDriverVersion(version);
    }

    std::mt19937 m_engine;
    KitFiles m_files;
    std::map<std::string, DriverVersion> m_versions;
};

/// Tells of a kit in a folder which INF file wins for a device.
class Winners
{
public:
    explicit Winners(const TestFolder& folder) : m_kit(PlaceOf(folder), ProfileDialect::Windows), m_planner(m_kit, {})
    {
    }

    /// @return the INF file and the pass; an empty name when none lists the device.
    [[nodiscard]] std::pair<std::string, int> Of(const std::string& device)
    {
        const MachinePlan plan = m_planner.Plan(MachineWithCards({device}));
        const auto& match = plan.devices.at(0).search->match;
        return match ? std::pair(m_kit.Paths().NameOf(match->inf), match->pass) : std::pair(std::string(), 0);
    }

private:
    KitFolder m_kit;
    Planner m_planner;
};

/// @return the devices that an ID is of: with each sub-system and revision that it leaves open.
std::vector<std::string> DevicesOf(const std::string& id)
{
    std::vector<std::string> devices;
    const std::string device = id.substr(0, std::string("VEN_5D1A&DEV_7A00").size());
    for (const char* const subSystem : {"&SUBSYS_00115D1A", "&SUBSYS_00111E2B", "&SUBSYS_00990000"}) {
        for (const char* const revision : {"&REV_00", "&REV_01", "&REV_09"}) {
            const std::string name = device + subSystem + revision;
            bool isOne = false;
            for (int pass = kFirstSearchPass; pass <= kLastSearchPass; ++pass) {
                isOne = isOne || PlanPass(name, pass).searchId == id;
            }
            if (isOne) {
                devices.push_back(name);
            }
        }
    }
    return devices;
}

/// "ID is also in FILE" and its like.
struct Claim
{
    std::string id;
    std::string other;
};

Claim ClaimOf(const std::string& what)
{
    return {.id = what.substr(0, what.find(' ')), .other = what.substr(what.rfind(' ') + 1)};
}

/// Calls `look` with random kits, one after the other, with the findings about their order and who wins in them.
void ForEachKit(const std::function<void(const RandomKit&, const std::vector<Finding>&, Winners&)>& look)
{
    for (unsigned seed = 0; seed < kKits; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const RandomKit kit(seed);
        const TestFolder folder;
        WriteKit(folder, kit.Files());
        std::vector<Finding> findings = FindingsIn(folder, {"Win832E"}, Readers::Windows).findings;
        std::erase_if(findings, [](const Finding& finding) { return finding.rule < 401 || finding.rule > 403; });
        Winners winners(folder);
        look(kit, findings, winners);
    }
}
} // namespace

TEST(OrderFindings, NameTheWinnerThatAPlanTakes)
{
    int claims = 0;
    ForEachKit([&](const RandomKit& kit, const std::vector<Finding>& findings, Winners& winners) {
        for (const Finding& finding : findings) {
            const Claim claim = ClaimOf(finding.what);
            const std::vector<std::string> devices = DevicesOf(claim.id);
            ++claims;
            // Longer IDs of other files may win for some of the devices, but the named file wins for one at least, and
            // the other file for none that the ID decides.
            EXPECT_TRUE(std::ranges::any_of(
                devices, [&](const std::string& device) { return winners.Of(device).first == finding.file; }))
                << finding.what << " in " << finding.file;
            for (const std::string& device : devices) {
                const auto [winner, pass] = winners.Of(device);
                if (PlanPass(device, pass).searchId == claim.id) {
                    EXPECT_EQ(finding.file, winner) << device << ": " << finding.what;
                }
            }
            if (finding.rule != 403) {
                EXPECT_EQ(std::partial_ordering::less,
                          Compare(kit.Versions().at(finding.file), kit.Versions().at(claim.other)));
            }
        }
    });
    EXPECT_LT(kKits, claims);
}

TEST(OrderFindings, TellOfEachIdForWhichAnOlderFileOfTwoWins)
{
    int lost = 0;
    ForEachKit([&](const RandomKit& kit, const std::vector<Finding>& findings, Winners& winners) {
        std::set<std::pair<std::string, std::string>> found;
        for (const Finding& finding : findings) {
            if (finding.rule != 403) {
                found.emplace(finding.file, ClaimOf(finding.what).other);
            }
        }
        for (const auto& [name, version] : kit.Versions()) {
            // Alone, the file serves the device; beside the others an older one does.
            const TestFolder alone;
            WriteKit(alone, {{"Morvix.ini", kit.Files().at("Morvix.ini")}, {name, kit.Files().at(name)}});
            Winners itself(alone);
            for (const std::string& device : DevicesOf("VEN_5D1A&DEV_7A00")) {
                const auto [own, pass] = itself.Of(device);
                const auto [winner, winnersPass] = winners.Of(device);
                if (own.empty() || winner == own || winnersPass != pass ||
                    Compare(kit.Versions().at(winner), version) != std::partial_ordering::less) {
                    continue;
                }
                ++lost;
                EXPECT_TRUE(found.contains({winner, name})) << device << ": " << winner << " before " << name;
            }
        }
    });
    EXPECT_LT(kKits / 4, lost);
}
