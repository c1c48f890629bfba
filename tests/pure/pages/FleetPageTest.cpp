#include "FleetPage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FleetAdapters.h"
#include "FleetPlans.h"
#include "FleetTrails.h"

using testing::HasSubstr;
using testing::Not;

namespace {
class FleetPageTest : public testing::Test
{
protected:
    std::string Page()
    {
        m_report.Finish();
        return FleetPage(m_report, m_facts);
    }

    MachinePaths m_paths{"kit", R"(C:\Kit)", {}};
    FleetReport m_report{m_paths};
    FleetPageFacts m_facts{.kit = "kit",
                           .oldKit = {},
                           .setupDir = R"(C:\Kit)",
                           .reader = "windows",
                           .date = std::nullopt,
                           .kitRemarks = {},
                           .findings = {}};
};

std::size_t CountOfText(std::string_view page, std::string_view text)
{
    std::size_t count = 0;
    for (std::size_t at = page.find(text); at != std::string_view::npos; at = page.find(text, at + text.size())) {
        ++count;
    }
    return count;
}

/// The tags of a page with the names of their attributes; a text that broke out of its place would show here.
std::string SkeletonOf(std::string_view page)
{
    std::string skeleton;
    bool isInTag = false;
    bool isInValue = false;
    for (const char c : page) {
        if (!isInTag && c == '<') {
            isInTag = true;
        }
        if (isInTag && c == '"') {
            isInValue = !isInValue;
        } else if (isInTag && !isInValue) {
            skeleton += c;
            isInTag = c != '>';
        }
    }
    return skeleton;
}

/// A fleet in which every text that comes from outside has this in it.
std::string PageWithTexts(const std::string& text)
{
    const MachinePaths paths("kit", R"(C:\Kit)", {});
    FleetReport report(paths);
    SearchOutcome search = Found(text + ".inf");
    search.directories = {R"(C:\Kit\)" + text};
    search.match->modelSection = text;
    search.match->description = text;
    search.match->driverVersion = text;
    search.report->copiedFile = text;
    MachinePlan plan = PlanOf(text, {Device(kCard + text, search), Device("W" + text, NotFound())});
    plan.devices.front().acceptedBy = text;
    plan.system.family = text;
    plan.system.reasons = {text};
    plan.rejected = {{.key = "VEN_5D1A" + text, .verdict = DeviceVerdict::NoInstance}};
    const Diagnostic diagnostic{.severity = Severity::Warning, .source = text, .line = 1, .what = text, .cure = text};
    plan.diagnostics = {diagnostic};
    MachineDiff diff;
    diff.devices = {{.key = text, .change = DriverChange::Lost, .before = search.match, .after = std::nullopt}};
    report.Add(plan, diff, paths);
    plan.outcome = MachineOutcome::NotServed;
    plan.problem = text;
    report.Add(plan);
    report.AddUnreadable(diagnostic);
    report.Finish();
    return FleetPage(
        report,
        {.kit = text,
         .oldKit = text,
         .setupDir = text,
         .reader = text,
         .date = std::nullopt,
         .kitRemarks = {diagnostic},
         .findings = {{.id = text, .severity = Severity::Error, .file = text, .line = 3, .harm = text, .cure = text}}});
}
} // namespace

TEST_F(FleetPageTest, NoTextFromOutsideChangesTheMarkup)
{
    const std::string plain = SkeletonOf(PageWithTexts("plain"));
    for (const std::string& hostile : std::vector<std::string>{
             "</script><script>owned()</script>", "<!--", "--><img src=x onerror=owned()>", "\" onmouseover=\"owned()",
             "' autofocus onfocus='owned()", "</title><svg onload=owned()>", "]]><!DOCTYPE x>", "\u2028\u202E\x1B[2J",
             "\xFF\xC0\xBC\xE2\x80", std::string("a\0<b>", 5)}) {
        EXPECT_EQ(plain, SkeletonOf(PageWithTexts(hostile))) << hostile;
    }
}

TEST_F(FleetPageTest, NothingInvisibleReachesThePage)
{
    const std::string page = PageWithTexts("a\u202Eb\u2028c\x1B\xFF");
    for (const std::string_view invisible : {"\u202E", "\u2028", "\x1B", "\xFF"}) {
        EXPECT_EQ(std::string::npos, page.find(invisible));
    }
    EXPECT_THAT(page, HasSubstr("a\\u202Eb\\u2028c\\x1B\\xFF"));
}

TEST_F(FleetPageTest, APageAllowsItsOwnStyleAndScriptAndNothingElse)
{
    const std::string page = Page();
    EXPECT_THAT(page, HasSubstr("default-src &#39;none&#39;; base-uri &#39;none&#39;; form-action &#39;none&#39;; "
                                "style-src &#39;sha256-"));
    EXPECT_THAT(page, Not(HasSubstr("unsafe")));
    EXPECT_THAT(page, Not(HasSubstr("http:")));
    EXPECT_THAT(page, Not(HasSubstr("https:")));
    EXPECT_THAT(page, Not(HasSubstr(" style=")));
}

TEST_F(FleetPageTest, TheWayOfADeviceIsShown)
{
    m_report.Add(PlanOf("PC7", {Device(kCard, Found("a.inf"))}));
    const std::string page = Page();
    EXPECT_THAT(page, HasSubstr(R"(its compatible ID PCI\VEN_5D1A&amp;CC_020000 is accepted)"));
    EXPECT_THAT(page, HasSubstr("<code>Drv/a.inf</code>, line 20, pass 1, section <code>[Norda.NTamd64]</code>"));
    EXPECT_THAT(page, HasSubstr("<dt>Passed over</dt><dd>not listed: Drv/other.inf</dd>"));
    EXPECT_THAT(page, HasSubstr("TAVG_Install will be SUCCESS"));
}

TEST_F(FleetPageTest, ManyPassedOverFilesAreListedOnceForEachSystem)
{
    SearchOutcome search = NotFound();
    search.infs.clear();
    search.passedOver.clear();
    for (uint32_t inf = 0; inf < 40; ++inf) {
        search.infs.push_back(R"(C:\Kit\Drv\many)" + std::to_string(inf) + ".inf");
        search.passedOver.push_back({.inf = inf, .verdict = inf == 7 ? InfVerdict::Excluded : InfVerdict::NotListed});
    }
    m_report.Add(PlanOf("A", {Device(kCard, search), Device(kOtherCard, search)}));
    const std::string page = Page();
    EXPECT_THAT(page, HasSubstr("not listed: 39 files</dd>"));
    EXPECT_THAT(page, HasSubstr("excluded by Morvix.ini: 1 file</dd>"));
    EXPECT_THAT(page, HasSubstr("<code>Drv/many7.inf</code> <span class=quiet>excluded by Morvix.ini</span>"));
    const std::size_t first = page.find("Drv/many39.inf");
    ASSERT_NE(std::string::npos, first);
    EXPECT_EQ(std::string::npos, page.find("Drv/many39.inf", first + 1));
}

TEST_F(FleetPageTest, FindingsHaveASectionOnlyWhenThereAreSome)
{
    EXPECT_THAT(Page(), Not(HasSubstr("h-findings")));
    m_facts.findings = {{.id = "MK102",
                         .severity = Severity::Error,
                         .file = "Morvix.ini",
                         .line = 12,
                         .harm = "the end is lost",
                         .cure = "shorten it"}};
    EXPECT_THAT(Page(), HasSubstr("<code>MK102</code> Error<td><code>Morvix.ini:12</code><td>the end is lost"));
}

TEST_F(FleetPageTest, ThePageTellsNoTimeUnlessOneIsGiven)
{
    EXPECT_THAT(Page(), Not(HasSubstr("UTC")));
    m_facts.date = 1353542400;
    EXPECT_THAT(Page(), HasSubstr("2012-11-22 00:00 UTC"));
}

TEST_F(FleetPageTest, WhatTheAnswersRestOnIsSaid)
{
    MachinePlan assumed = PlanOf("B", {});
    assumed.system.from = "option";
    m_report.Add(PlanOf("A", {Device(kCard, Found("a.inf"))}));
    m_report.Add(assumed);
    m_facts.kitRemarks = {{.severity = Severity::Warning,
                           .source = R"(E:\Drivers)",
                           .line = 0,
                           .what = "is not known",
                           .cure = "map it"}};
    const std::string page = Page();
    EXPECT_THAT(page, HasSubstr("The system of 1 machine comes from the registry"));
    EXPECT_THAT(page, HasSubstr("The system of 1 machine is assumed"));
    EXPECT_THAT(page, HasSubstr("Whether the card of 1 device is still in its machine"));
    EXPECT_THAT(page, HasSubstr(R"(<code>E:\Drivers</code>: is not known; map it)"));
}

TEST_F(FleetPageTest, AMachineIsShownWithItsFileWhereTheNameDoesNotTell)
{
    MachinePlan same = PlanOf("PC7", {});
    same.source = "other/PC7.reg";
    MachinePlan hive = PlanOf("PC8", {});
    hive.source = "hives/SYSTEM";
    m_report.Add(PlanOf("PC7", {}));
    m_report.Add(same);
    m_report.Add(hive);
    m_report.Add(PlanOf("PC9", {}));
    const std::string page = Page();
    EXPECT_THAT(page, HasSubstr(">PC7 <span class=quiet>other/PC7.reg</span>"));
    EXPECT_THAT(page, HasSubstr(">PC8 <span class=quiet>hives/SYSTEM</span>"));
    EXPECT_THAT(page, HasSubstr("<li data-file=\"fleet/PC9.reg\">PC9<"));
}

TEST_F(FleetPageTest, TenThousandMachinesFitIntoTwoMegabytes)
{
    constexpr int kMachines = 10000;
    constexpr int kKindsOfMachines = 300;
    for (int machine = 0; machine < kMachines; ++machine) {
        const int kind = machine % kKindsOfMachines;
        std::vector<DevicePlan> devices;
        for (int device = 0; device < 4; ++device) {
            const std::string adapter = std::to_string(100 + (kind + device * 17) % kKindsOfMachines);
            devices.push_back(
                Device("VEN_5D1A&DEV_1" + adapter + "&SUBSYS_00015D1A&REV_01", Found("ngea" + adapter + "x64.inf")));
        }
        m_report.Add(PlanOf("DEPARTMENT-" + std::to_string(machine), devices, kind % 2 == 0 ? "Win732E" : "Win832E"));
    }
    EXPECT_EQ(300U, m_report.Groups().size());
    const std::string page = Page();
    EXPECT_GT(page.size(), 1U << 19);
    EXPECT_LT(page.size(), 2'000'000U);
}

TEST_F(FleetPageTest, TenThousandMachinesOfWhichNoTwoAreAlikeFitIntoTwoMegabytes)
{
    constexpr int kMachines = 10000;
    std::size_t lacking = 0;
    for (int machine = 0; machine < kMachines; ++machine) {
        const std::string number = std::to_string(10000 + machine);
        const bool lacks = machine % 3 == 0;
        lacking += lacks ? 1 : 0;
        m_report.Add(
            PlanOf("DEPARTMENT-" + number,
                   {Device("VEN_5D1A&DEV_1A2B&SUBSYS_" + number + "5D1A&REV_01", Found("ngea" + number + ".inf")),
                    Device("VEN_5D1A&DEV_1A2B&SUBSYS_" + number + "5D1B&REV_01",
                           lacks ? NotFound() : Found("ngea" + number + ".inf"))},
                   machine % 2 == 0 ? "Win732E" : "Win832E"));
    }
    ASSERT_EQ(10000U, m_report.Groups().size());
    const std::string page = Page();
    EXPECT_GT(page.size(), 1U << 19);
    EXPECT_LT(page.size(), 2'000'000U);
    EXPECT_EQ(10000U, CountOfText(page, "<li data-file="));
    EXPECT_EQ(lacking, m_report.Machines(FleetState::Lacks));
    EXPECT_EQ(FleetState::Lacks, m_report.Groups().front().state);
    EXPECT_THAT(page, HasSubstr("<p>There are too many different sets of adapters for one page: 9,7"));
    EXPECT_THAT(page, HasSubstr(" sets of adapters, not shown one by one</p>"));
    EXPECT_THAT(page, HasSubstr("Whether the card of 20,000 devices is still in its machine, nobody has said"));
}

TEST_F(FleetPageTest, AFleetOfFewSetsOfAdaptersSaysNothingOfOthers)
{
    m_report.Add(PlanOf("PC7", {Device(kCard, Found("ngea.inf"))}));
    EXPECT_THAT(Page(), Not(HasSubstr("too many")));
}

TEST(FleetAdapters, DevicesOfOneAdapterShareVendorAndDevice)
{
    EXPECT_EQ("VEN_5D1A&DEV_1A2B", AdapterOf(kCard));
    EXPECT_EQ("VEN_5D1A&DEV_1A2B", AdapterOf("VEN_5D1A&DEV_1A2B"));
    EXPECT_EQ("VEN_5D1A", AdapterOf("VEN_5D1A"));
    EXPECT_EQ("", AdapterOf(""));
}

TEST(FleetTrails, AVersionIsReadWithoutItsDate)
{
    EXPECT_EQ("1.2.3.4", VersionIn("10/01/2012,1.2.3.4"));
    EXPECT_EQ("1.2", VersionIn("10/01/2012, 1.2"));
    EXPECT_EQ("%Ver%", VersionIn("%Ver%"));
    EXPECT_EQ("", VersionIn(""));
}
