#include "InfDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "InfCopies.h"
#include "MemoryKit.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {
constexpr char kDrivers[] = "C:\\Kit\\Drv\\";
constexpr char kKey[] = "VEN_5D1A&DEV_7A01";
constexpr char kOtherKey[] = "VEN_5D1A&DEV_7A02";

using Judged = NotingLog::JudgedInf;

class InfDirectory : public testing::Test
{
protected:
    InfDirectory() { m_memory.kit.Add(R"(C:\Kit\Morvix.ini)", "[Win732E]\nInfSectionName=Norda.NTamd64,Norda\n"); }
    static std::string At(const std::string& name) { return kDrivers + name; }
    void Add(const std::string& name, const std::string& text) { m_memory.kit.Add(At(name), text); }
    std::optional<std::string> Find(const std::vector<std::string>& excludes = {})
    {
        return FindInf(m_memory.Search(), kKey, "C:\\Kit\\Drv", excludes);
    }

    MemorySearch m_memory;
};

std::string Replaced(std::string text, const std::string& what, const std::string& by)
{
    return text.replace(text.find(what), what.size(), by);
}
} // namespace

TEST_F(InfDirectory, TheFirstInfThatListsTheDeviceEndsTheSearch)
{
    Add("a.inf", InfThatLists(kOtherKey));
    Add("b.inf", InfThatLists(kKey));
    Add("c.inf", InfThatLists(kKey));
    EXPECT_EQ(Find(), At("b.inf"));
    EXPECT_THAT(m_memory.log.judged,
                ElementsAre(Judged{At("a.inf"), InfVerdict::NotListed}, Judged{At("b.inf"), InfVerdict::ListsDevice}));
    EXPECT_FALSE(m_memory.log.Said("processing: c.inf\n"));
}

TEST_F(InfDirectory, EverySkippedFileHasItsReason)
{
    Add("1.inf", InfThatLists(kKey));
    Add("2.inf", Replaced(InfThatLists(kKey), "Windows NT", "Chicago"));
    Add("3.inf", Replaced(InfThatLists(kKey), "=Norda,", "=norda,"));
    Add("4.inf", InfThatLists(kOtherKey));
    Add("5.inf", InfThatLists(kKey, "Norda.NTx86"));
    Add("6.inf", "");
    EXPECT_EQ(Find({"1.INF"}), std::nullopt);
    EXPECT_THAT(
        m_memory.log.judged,
        ElementsAre(Judged{At("1.inf"), InfVerdict::Excluded}, Judged{At("2.inf"), InfVerdict::OtherSignature},
                    Judged{At("3.inf"), InfVerdict::OtherBrand}, Judged{At("4.inf"), InfVerdict::NotListed},
                    Judged{At("5.inf"), InfVerdict::NotListed}, Judged{At("6.inf"), InfVerdict::OtherSignature}));
    EXPECT_THAT(m_memory.log.stored, ElementsAre(At("4.inf"), At("5.inf"))) << "what qualifies, and nothing else";
    EXPECT_THAT(m_memory.log.directories, ElementsAre(kDrivers, kDrivers));
}

TEST_F(InfDirectory, AMatchIsTracedStepByStep)
{
    Add("a.inf", InfThatLists(kKey));
    EXPECT_EQ(Find(), At("a.inf"));
    EXPECT_THAT(
        m_memory.log.lines,
        ElementsAre(
            "Entering - GetInfFile", "GetInfFile(), key:[[" + std::string(kKey) + "]], dir:C:\\Kit\\Drv\n",
            "Entering - GetINFSectionNamesFromINI", "section names from ini: Norda.NTamd64,Norda\n",
            "added section name: Norda\n", "added section name: Norda.NTamd64\n", "processing: a.inf\n",
            "Entering - IsFileUnicode", "file is not Unicode\n", "Adding INF a.infto vector\n",
            "Entering - ParseINFile",
            "ParseINFFile(): key=" + std::string(kKey) + ", section name=Norda, file name=" + At("a.inf") + "\n",
            "GetPrivateProfileSection() failed", "Entering - ParseINFile",
            "ParseINFFile(): key=" + std::string(kKey) + ", section name=Norda.NTamd64, file name=" + At("a.inf") +
                "\n",
            "matched:" + std::string(kKey) + "\n", "done processing infs in this directory\n"));
}

TEST_F(InfDirectory, ADirectoryWithoutInfFilesIsNoMatch)
{
    EXPECT_EQ(Find(), std::nullopt);
    EXPECT_THAT(m_memory.log.judged, IsEmpty());
    EXPECT_EQ(m_memory.log.lines.back(), "done processing infs in this directory\n");
}

TEST_F(InfDirectory, AForcedScanSearchesExcludedFilesToo)
{
    Add("a.inf", InfThatLists(kKey));
    KitSearch search = m_memory.Search();
    EXPECT_EQ(FindInf(search, kKey, kDrivers, {"a.inf"}), std::nullopt);
    EXPECT_FALSE(m_memory.log.Said("Entering - IsFileUnicode")) << "an excluded file is not read";
    search.forceInfScan = true;
    EXPECT_EQ(FindInf(search, kKey, kDrivers, {"a.inf"}), At("a.inf"));
}

TEST_F(InfDirectory, RulesFollowTheFamilyAndTheSystem)
{
    KitSearch search = m_memory.Search();
    InfSearchRules rules = ReadSearchRules(search, {"x.inf"});
    EXPECT_EQ(rules.expectedSignature, "$Windows NT$");
    EXPECT_THAT(rules.sectionNames, ElementsAre("Norda", "Norda.NTamd64"));
    EXPECT_THAT(rules.excludes, ElementsAre("x.inf"));
    search.family = "Windows 98";
    search.system = osWIN98;
    rules = ReadSearchRules(search, {});
    EXPECT_EQ(rules.expectedSignature, "$Chicago$");
    EXPECT_THAT(rules.sectionNames, ElementsAre(""));
}

TEST_F(InfDirectory, ASignatureCountsInAnyLetterCaseAndUpTo99Characters)
{
    for (const std::size_t length : {98U, 99U, 100U, 101U}) {
        Add("a.inf", Replaced(InfThatLists(kKey), "$Windows NT$", std::string(length, 'S')));
        const auto why = WhyNotQualified(m_memory.Search(), At("a.inf"), std::string(length, 's'));
        EXPECT_EQ(why, length <= 99 ? std::nullopt : std::optional(InfVerdict::OtherSignature)) << length;
    }
}

TEST_F(InfDirectory, OtherSignaturesAreTracedAndOtherBrandsAreNot)
{
    Add("a.inf", Replaced(InfThatLists(kKey), "=Norda,", "=Other,"));
    EXPECT_EQ(WhyNotQualified(m_memory.Search(), At("a.inf"), "$Windows NT$"), InfVerdict::OtherBrand);
    EXPECT_THAT(m_memory.log.lines, IsEmpty());
    EXPECT_EQ(WhyNotQualified(m_memory.Search(), At("a.inf"), "$Chicago$"), InfVerdict::OtherSignature);
    EXPECT_THAT(m_memory.log.lines, ElementsAre("signature section match for this OS not found\n"));
}

TEST_F(InfDirectory, KeysOfManufacturersCountUpTo98CharactersAndTheirValuesUpTo499)
{
    const auto qualifies = [&](const std::string& keyBefore, const std::string& valueBefore) {
        Add("a.inf", "[Version]\nSignature=s\n[Manufacturer]\n" + keyBefore + "k=" + valueBefore + "Norda\n");
        return !WhyNotQualified(m_memory.Search(), At("a.inf"), "s").has_value();
    };
    // The list of keys needs a terminator for the key and one for the list.
    EXPECT_TRUE(qualifies(std::string(95, 'b') + "=x\n", ""));
    EXPECT_TRUE(qualifies(std::string(96, 'b') + "=x\n", ""));
    EXPECT_FALSE(qualifies(std::string(97, 'b') + "=x\n", ""));
    EXPECT_TRUE(qualifies("", std::string(493, 'v') + ","));
    EXPECT_FALSE(qualifies("", std::string(494, 'v') + ","));
}

TEST_F(InfDirectory, AnInfIsStoredOncePerNameInAnyLetterCase)
{
    const KitSearch search = m_memory.Search();
    StoreInfOnce(search, "Tav1.INF", "C:\\a\\Tav1.INF", "C:\\a\\");
    StoreInfOnce(search, "tav1.inf", "C:\\b\\tav1.inf", "C:\\b\\");
    StoreInfOnce(search, "tav2.infx", "C:\\b\\tav2.infx", "C:\\b\\");
    EXPECT_THAT(m_memory.log.stored, ElementsAre("C:\\a\\Tav1.INF", "C:\\b\\tav2.infx"));
    EXPECT_THAT(m_memory.log.directories, ElementsAre("C:\\a\\", "C:\\b\\"));
    EXPECT_THAT(m_memory.storedInfs, ElementsAre("Tav1.inf", "tav2.inf"));
    EXPECT_THAT(m_memory.log.lines, ElementsAre("Adding INF Tav1.infto vector\n", "Adding INF tav2.infto vector\n"));
}
