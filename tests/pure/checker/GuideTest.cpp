#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "FindingText.h"
#include "Kits.h"

namespace {
const std::filesystem::path kSources = MORVIX_SOURCE_FOLDER;

std::string TextOf(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    std::stringstream text;
    text << stream.rdbuf();
    return text.str();
}

std::vector<std::string> LinesOfText(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// A block of the guide: "```inf kit=smallest file=Setup\Drivers\first.inf".
struct Block
{
    std::string language;
    std::string kit;
    std::string file;
    std::string text;
};

std::string WordOf(const std::string& line, const std::string& name)
{
    const std::size_t start = line.find(name + "=");
    if (start == std::string::npos) {
        return {};
    }
    const std::size_t value = start + name.size() + 1;
    return line.substr(value, line.find(' ', value) - value);
}

struct Trap
{
    std::string rule; ///< "MK102"
    std::string kit;  ///< of the first block after it; empty when the next trap or heading comes first
};

struct Guide
{
    std::vector<Block> blocks;
    std::vector<Trap> traps;
    std::size_t trapsWithoutRule = 0;

    [[nodiscard]] std::vector<Block> Of(const std::string& kit, const std::string& language) const
    {
        std::vector<Block> found;
        std::ranges::copy_if(blocks, std::back_inserter(found),
                             [&](const Block& block) { return block.kit == kit && block.language == language; });
        return found;
    }
};

Guide ReadGuide()
{
    Guide guide;
    bool inBlock = false;
    bool afterTrap = false;
    for (const std::string& line : LinesOfText(TextOf(kSources / "docs/KIT-AUTHORS.md"))) {
        if (inBlock && line == "```") {
            inBlock = false;
        } else if (inBlock) {
            guide.blocks.back().text += line + "\n";
        } else if (line.starts_with("```")) {
            inBlock = true;
            guide.blocks.push_back({.language = line.substr(3, line.find(' ') - 3),
                                    .kit = WordOf(line, "kit"),
                                    .file = WordOf(line, "file"),
                                    .text = {}});
            if (afterTrap) {
                guide.traps.back().kit = guide.blocks.back().kit;
            }
            afterTrap = false;
        } else if (line.starts_with("**Trap:")) {
            const std::size_t rule = line.find("** ([MK");
            guide.trapsWithoutRule += rule == std::string::npos ? 1 : 0;
            guide.traps.push_back({.rule = rule == std::string::npos ? "" : line.substr(rule + 5, 5), .kit = {}});
            afterTrap = true;
        } else if (line.starts_with("#")) {
            afterTrap = false;
        }
    }
    return guide;
}

std::map<std::string, std::string> SectionsOf(const std::string& text, std::vector<std::string>& order)
{
    std::map<std::string, std::string> sections;
    std::string name;
    for (const std::string& line : LinesOfText(text)) {
        if (line.starts_with("[")) {
            name = line;
            if (!sections.contains(name)) {
                order.push_back(name);
            }
        }
        sections[name] += line + "\n";
    }
    return sections;
}

/// The smallest kit's INF file with the sections of an example in place of its own.
std::string CompleteInf(const std::string& base, const std::string& example)
{
    std::vector<std::string> order;
    std::map<std::string, std::string> sections = SectionsOf(base, order);
    for (const auto& [name, text] : SectionsOf(example, order)) {
        sections[name] = text;
    }
    std::string whole;
    std::ranges::sort(order);
    order.erase(std::unique(order.begin(), order.end()), order.end());
    for (const std::string& name : order) {
        whole += sections[name];
    }
    return whole;
}

/// The files of an example's kit, as the guide's own test lays them down.
KitFiles KitOf(const Guide& guide, const std::string& kit)
{
    const std::string base = guide.Of("smallest", "inf").front().text;
    const std::vector<Block> inis = guide.Of(kit, "ini");
    const std::vector<Block> infs = guide.Of(kit, "inf");
    KitFiles files{{"Morvix.ini", (inis.empty() ? guide.Of("smallest", "ini") : inis).front().text}};
    for (const Block& block : infs.empty() ? guide.Of("smallest", "inf") : infs) {
        std::string name = block.file.substr(std::string("Setup\\").size());
        std::ranges::replace(name, '\\', '/');
        files[name] = CompleteInf(base, block.text);
    }
    return files;
}

/// Kits for the traps of which the guide shows no kit, or one that avoids the trap.
std::map<std::string, KitFiles> KitsForOtherTraps()
{
    const std::string card = Model("VEN_5D1A&DEV_7A01");
    const std::string good = InfWithModels(card);
    return {
        {"MK303", KitWith({{kPerfectInf, InfWithModels(Model("VEN_5D1A&REV_03&DEV_7A01"))}})},
        {"MK405",
         KitWith({{"Morvix.ini", Ini("InfSectionName=Norda.NTamd64.6.2,Norda.NTamd64\nInfDir=Drv\n")},
                  {kPerfectInf, Changed(Changed(good, "NTamd64\n[", "NTamd64,NTamd64.6.2\n["), "[Nic.ndi]",
                                        "[Norda.NTamd64.6.2]\n" + Model("VEN_5D1A&DEV_7A02") + "[Nic.ndi]")}})},
        {"MK503", KitWith({{kPerfectInf, Changed(good, "\nngea.sys\n", "\nngea.sys\nngea-diag.sys\n")}})},
        {"MK507", KitWith({{kPerfectInf, Changed(good, "DefaultDestDir=12", "DefaultDestDir=13")}})},
        {"MK602", KitWith({{"Drv/ngea.inf_old", good}})},
    };
}
} // namespace

TEST(KitAuthorsGuide, EveryTrapYieldsItsFinding)
{
    const Guide guide = ReadGuide();
    const std::map<std::string, KitFiles> others = KitsForOtherTraps();
    EXPECT_EQ(0U, guide.trapsWithoutRule);
    ASSERT_LE(19U, guide.traps.size());
    for (const Trap& trap : guide.traps) {
        SCOPED_TRACE(trap.rule + " " + trap.kit);
        const auto other = others.find(trap.rule);
        ASSERT_TRUE(other != others.end() || !trap.kit.empty());
        const KitFiles kit = other != others.end() ? other->second : KitOf(guide, trap.kit);
        const std::vector<std::string> found = FoundIn(kit, {"Win832E"});
        EXPECT_TRUE(std::ranges::any_of(found, [&trap](const std::string& id) { return id.starts_with(trap.rule); }))
            << testing::PrintToString(found);
    }
}

TEST(RulesDocument, IsCurrent)
{
    EXPECT_EQ(RulesDocument(), TextOf(kSources / "docs/RULES.md"))
        << "morvix-kit rules --markdown writes docs/RULES.md";
}

TEST(Rules, HaveTextsForEverything)
{
    for (const Rule& rule : AllRules()) {
        SCOPED_TRACE(IdOf(rule));
        EXPECT_EQ(&rule, FindRule(IdOf(rule)));
        for (const std::string_view sentence : {rule.harm, rule.cure, rule.why}) {
            EXPECT_TRUE(sentence.ends_with('.')) << sentence;
        }
        EXPECT_FALSE(rule.name.empty() || rule.bad.empty() || rule.good.empty());
    }
    EXPECT_EQ(nullptr, FindRule("MK999"));
    EXPECT_EQ(nullptr, FindRule("MK"));
    EXPECT_EQ(nullptr, FindRule("102x"));
}

namespace {
/// @return the INF files below the folder, by their paths in there.
std::vector<std::filesystem::path> InfFilesIn(const TestFolder& folder)
{
    std::vector<std::filesystem::path> infs;
    for (const auto& file : std::filesystem::recursive_directory_iterator(folder.Path())) {
        if (file.path().extension() == ".inf") {
            infs.push_back(file.path().lexically_relative(folder.Path()));
        }
    }
    return infs;
}

/// The sample kit. Its drivers are built elsewhere, and its catalogs are made there.
void WriteSampleKit(const TestFolder& folder)
{
    std::filesystem::copy(kSources / "kit", folder.Path(), std::filesystem::copy_options::recursive);
    for (const char* const driver : {"nf6a", "ngea", "ngp1", "nxga", "qdatdma"}) {
        for (const char* const system : {"WinXPx64", "WinVistax64", "Win7x64", "Win8x64"}) {
            const bool is61 = std::string(system) == "Win7x64" && std::string(driver) != "qdatdma";
            folder.Write("Drv/" + std::string(system) + "/" + driver + (is61 ? "62x64" : "") + ".sys", "driver");
        }
    }
    for (const std::filesystem::path& inf : InfFilesIn(folder)) {
        folder.Write(std::filesystem::path(inf).replace_extension(".cat").string(), "catalog");
    }
}

std::vector<std::string> FoundInSampleKit(const TestFolder& folder)
{
    std::vector<std::string> found;
    const KitFindings findings = FindingsIn(folder, {});
    EXPECT_EQ(7U, findings.systems.size());
    for (const Finding& finding : findings.findings) {
        found.push_back(IdOf(RuleOf(finding)) + " " + finding.file + ": " + finding.what);
    }
    return found;
}
} // namespace

TEST(SampleKit, YieldsNothing)
{
    const TestFolder folder;
    WriteSampleKit(folder);
    EXPECT_EQ(std::vector<std::string>(), FoundInSampleKit(folder));
}

TEST(SampleKit, YieldsThatCatalogsAreMissingOnEverySystemThatNeedsThem)
{
    const TestFolder folder;
    WriteSampleKit(folder);
    for (const std::filesystem::path& inf : InfFilesIn(folder)) {
        std::filesystem::remove(folder.Path() / std::filesystem::path(inf).replace_extension(".cat"));
    }
    const std::vector<std::string> found = FoundInSampleKit(folder);
    EXPECT_EQ(15U, found.size());
    for (const std::string& finding : found) {
        EXPECT_TRUE(finding.starts_with("MK505 ")) << finding;
        EXPECT_EQ(std::string::npos, finding.find("WinXPx64")) << finding;
    }
}
