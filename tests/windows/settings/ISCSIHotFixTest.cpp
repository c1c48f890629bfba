// The hotfixes of the initiator, and its service.
#include <windows.h>
// oleauto.h needs windows.h first.
#include <oleauto.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "EntryPoints.h"
#include "ISCSIMachine.h"
#include "ImportOverride.h"
#include "InstalledHotFix.h"
#include "ServiceDouble.h"

using testing::ElementsAre;

namespace {
// The texts that this program hands to WMI. The calls go through, past the import table.
std::vector<std::wstring> handedOver;

BSTR WINAPI NoteText(const OLECHAR* text)
{
    static const auto allocate =
        FindEntry<decltype(&SysAllocString)>(GetModuleHandleA("oleaut32.dll"), "SysAllocString");
    handedOver.emplace_back(text);
    return allocate(text);
}

/// What a check asks WMI: name space, language, query.
std::vector<std::wstring> Asked(bool (CISCSISupport::*check)() const)
{
    handedOver.clear();
    const ImportOverride noted("SysAllocString", reinterpret_cast<void*>(NoteText));
    EXPECT_FALSE((kServer2003Sp1.*check)());
    return handedOver;
}
} // namespace

TEST(ISCSIHotFix, InstalledFixIsFoundAndAnyOtherIsNot)
{
    const std::string installed = AnInstalledHotFix();
    Checked checked = Check([&] { return kServer2008R2.CheckHotFixInstalled(installed); });
    EXPECT_TRUE(checked.result) << installed;
    EXPECT_THAT(checked.lines, ElementsAre(Entry("CheckHotFixInstalled"), Exit("CheckHotFixInstalled", true)));
    for (const char* other : {"KB0000000", "", "KB' OR HotFixID <> '"}) {
        checked = Check([&] { return kServer2008R2.CheckHotFixInstalled(other); });
        EXPECT_FALSE(checked.result) << other;
        EXPECT_THAT(checked.lines, ElementsAre(Entry("CheckHotFixInstalled"), Exit("CheckHotFixInstalled", false)));
    }
}

TEST(ISCSIHotFix, Server2003Sp2NeedsNoQuery)
{
    const Checked checked = Check([] { return kServer2003Sp2.isTheiSCSIHotFixInstalled(); });
    EXPECT_TRUE(checked.result);
    EXPECT_THAT(checked.lines, ElementsAre(Entry("isTheiSCSIHotFixInstalled"),
                                           "CISCSISupport::isTheiSCSIHotFixInstalled() This is WS03 SP2, no need to "
                                           "call CheckiSCSIHotFixInstalled()",
                                           Exit("isTheiSCSIHotFixInstalled", true)));
}

TEST(ISCSIHotFix, OtherSystemsAreAskedForTheirFixes)
{
    // No machine of today has these two.
    EXPECT_THAT(Check([] { return kServer2003Sp1.isTheiSCSIHotFixInstalled(); }).lines,
                ElementsAre(Entry("isTheiSCSIHotFixInstalled"), Entry("CheckHotFixInstalled"),
                            Exit("CheckHotFixInstalled", false), Exit("isTheiSCSIHotFixInstalled", false)));
    EXPECT_THAT(Check([] { return kServer2003Sp1.IsTheiSCSIDumpHotFixInstalled_OnW2K3(); }).lines,
                ElementsAre(Entry("IsTheiSCSIDumpHotFixInstalled_OnW2K3"), Entry("CheckHotFixInstalled"),
                            Exit("CheckHotFixInstalled", false), Exit("IsTheiSCSIDumpHotFixInstalled_OnW2K3", false)));
}

TEST(ISCSIHotFix, EachCheckAsksForItsOwnFix)
{
    EXPECT_THAT(
        Asked(&CISCSISupport::isTheiSCSIHotFixInstalled),
        ElementsAre(LR"(root\cimv2)", L"WQL", L"SELECT * FROM Win32_QuickFixEngineering WHERE HotFixID = 'KB902113'"));
    EXPECT_THAT(
        Asked(&CISCSISupport::IsTheiSCSIDumpHotFixInstalled_OnW2K3),
        ElementsAre(LR"(root\cimv2)", L"WQL", L"SELECT * FROM Win32_QuickFixEngineering WHERE HotFixID = 'KB939875'"));
}

TEST(ISCSIHotFix, Server2008NeedsTheDumpFixUntilServicePack2)
{
    EXPECT_THAT(Check([] { return kServer2008.IsISCSIDumpHotFixNeeded_OnW2K8(); }).lines,
                ElementsAre(Entry("IsISCSIDumpHotFixNeeded_OnW2K8"), Exit("IsISCSIDumpHotFixNeeded_OnW2K8", true)));
    EXPECT_THAT(Check([] { return kServer2008Sp2.IsISCSIDumpHotFixNeeded_OnW2K8(); }).lines,
                ElementsAre(Entry("IsISCSIDumpHotFixNeeded_OnW2K8"), Exit("IsISCSIDumpHotFixNeeded_OnW2K8", false)));
}

TEST(ISCSIService, RunningServiceIsSeenAndAStoppedOrMissingOneIsNot)
{
    constexpr char kEntryLine[] = "Entering CISCSISupport::IsTheIscsiServiceRunning";
    constexpr char kRuns[] = "Leaving CISCSISupport::IsTheIscsiServiceRunning - return value is: 1";
    constexpr char kDoesNot[] = "Leaving CISCSISupport::IsTheIscsiServiceRunning - return value is: 0";
    EXPECT_THAT(Check([] { return kServer2008R2.IsTheIscsiServiceRunning(); }).lines,
                ElementsAre(kEntryLine, kDoesNot));
    ServiceDouble service("MSiSCSI");
    EXPECT_FALSE(kServer2008R2.IsTheIscsiServiceRunning()) << "installed, not started";
    service.Start();
    const Checked checked = Check([] { return kServer2008R2.IsTheIscsiServiceRunning(); });
    EXPECT_TRUE(checked.result);
    EXPECT_THAT(checked.lines, ElementsAre(kEntryLine, kRuns));
    service.Stop();
    EXPECT_FALSE(kServer2008R2.IsTheIscsiServiceRunning());
}
