// Missing entry points and names that cannot be converted, and what still works.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string_view>

#include "EntryPoints.h"
#include "HbaApiInt.h"
#include "HbaLibraryDouble.h"
#include "ImportOverride.h"
#include "LibraryTrace.h"
#include "ProductKeys.h"
#include "RegistryKeys.h"

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {
/// One name cannot be converted to 8-bit text for the life of the object. One object at a time.
class NameThatCannotBeConverted
{
public:
    explicit NameThatCannotBeConverted(std::wstring_view name) { s_name = name; }

private:
    static int WINAPI Convert(UINT codePage, DWORD flags, LPCWCH source, int sourceLength, LPSTR target, int bytes,
                              LPCCH defaultChar, LPBOOL usedDefault)
    {
        if (sourceLength == -1 && source != nullptr && source == s_name) {
            return 0;
        }
        // Past the import table, which leads here.
        static const auto convert =
            FindEntry<decltype(&WideCharToMultiByte)>(GetModuleHandleA("kernel32.dll"), "WideCharToMultiByte");
        return convert(codePage, flags, source, sourceLength, target, bytes, defaultChar, usedDefault);
    }

    static inline std::wstring_view s_name;
    ImportOverride m_conversion{"WideCharToMultiByte", reinterpret_cast<void*>(Convert)};
};

class HbaRefusals : public ::testing::Test
{
protected:
    static void DebugValue(const std::string& name, DWORD value)
    {
        SetRegistryNumber(kProduct, "Debugging", 1);
        SetRegistryNumber(kDebug, name, value);
    }

    const ScratchRegistryKey registry{kNetworkServices};
    HBA_HANDLE handle = 55;
    NORDA_FCANDNICPROPERTIES properties{};
};
} // namespace

TEST_F(HbaRefusals, AMissingEntryPointAndANameThatCannotBeConvertedAreBothTraced)
{
    const HbaLibraryDouble library("NORDA_GetFCoEControllerHandle");
    CHBAAPIInt hba;
    ASSERT_TRUE(hba.InitHBAAPIMod());
    const LibraryTrace trace;
    EXPECT_FALSE(hba.GetAdapterHandle(nullptr, handle));
    EXPECT_EQ(handle, 55u);
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering CHBAAPIInt::GetAdapterHandle",
                                              "GetProcAddress of NORDA_GetControllerHandle failed with error 127",
                                              "CHBAAPIInt::GetAdapterHandle ConvertTCHARToChar failed",
                                              "Exiting CHBAAPIInt::GetAdapterHandle  bRet = 0"));
}

TEST_F(HbaRefusals, AnAdapterNameThatThePlatformCannotConvertIsNotPassedOn)
{
    const HbaLibraryDouble library;
    CHBAAPIInt hba;
    ASSERT_TRUE(hba.InitHBAAPIMod());
    static_cast<void>(library.TakeJournal());
    const LibraryTrace trace;
    {
        const NameThatCannotBeConverted name(kAdapter);
        EXPECT_FALSE(hba.GetAdapterHandle(kAdapter, handle));
    }
    EXPECT_EQ(handle, 55u);
    EXPECT_THAT(library.TakeJournal(), IsEmpty());
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering CHBAAPIInt::GetAdapterHandle",
                                              "CHBAAPIInt::GetAdapterHandle ConvertTCHARToChar failed",
                                              "Exiting CHBAAPIInt::GetAdapterHandle  bRet = 0"));
}

TEST_F(HbaRefusals, AnEntryNameThatCannotBeConvertedMakesInitFailAndLeavesTheLibraryLoaded)
{
    struct Row
    {
        const wchar_t* name;
        std::vector<std::string> asked;
    };
    for (const Row& row :
         {Row{L"NORDA_InitializeLibrary", {}}, Row{L"HBA_RegisterLibrary", {"NORDA_InitializeLibrary"}}}) {
        const HbaLibraryDouble library;
        CHBAAPIInt hba;
        const LibraryTrace trace;
        {
            const NameThatCannotBeConverted name(row.name);
            EXPECT_FALSE(hba.InitHBAAPIMod());
        }
        EXPECT_EQ(library.TakeJournal(), row.asked);
        EXPECT_THAT(trace.Messages(), ElementsAre("Entering CHBAAPIInt::InitHBAAPIMod",
                                                  "CHBAAPIInt::InitHBAAPIMod ConvertTCHARToChar failed",
                                                  "Exiting CHBAAPIInt::InitHBAAPIMod bRet = 0"));
        EXPECT_TRUE(IsHbaLibraryLoaded());
        EXPECT_TRUE(hba.DeInitHBAAPIMod());
        EXPECT_FALSE(IsHbaLibraryLoaded());
    }
}

TEST_F(HbaRefusals, PropertiesWhoseEntryNameCannotBeConvertedFailAtOnceWithoutExitLineAndDebugValues)
{
    const HbaLibraryDouble library;
    CHBAAPIInt hba;
    ASSERT_TRUE(hba.InitHBAAPIMod());
    static_cast<void>(library.TakeJournal());
    DebugValue("FcoE_RemoteBooted", 1);
    const LibraryTrace trace;
    {
        const NameThatCannotBeConverted name(L"NORDA_GetFCAndNICProperties");
        EXPECT_FALSE(hba.GetFCEthernetProperties(7, &properties));
    }
    EXPECT_EQ(properties.Flags, 0u);
    EXPECT_THAT(library.TakeJournal(), IsEmpty());
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering CHBAAPIInt::GetFCEthernetProperties"));
}

TEST_F(HbaRefusals, TheDebugValuesSetTheirFlagsWhenTheLibraryLacksTheEntryPoint)
{
    const HbaLibraryDouble library("NORDA_GetFCAndNICProperties");
    CHBAAPIInt hba;
    ASSERT_TRUE(hba.InitHBAAPIMod());
    const LibraryTrace trace;
    properties.Flags = 4;
    DebugValue("FcoE_RemoteBooted", 1);
    EXPECT_TRUE(hba.GetFCEthernetProperties(7, &properties));
    EXPECT_EQ(properties.Flags, 4 | kNordaRemoteBooted);

    properties.Flags = 4;
    DebugValue("FcoE_RemoteBooted", 0);
    DebugValue("FcoE_RemotePageFile", 1);
    EXPECT_TRUE(hba.GetFCEthernetProperties(7, &properties));
    EXPECT_EQ(properties.Flags, 4 | kNordaRemotePageFile);
    EXPECT_THAT(trace.Messages(), Contains("GetFCEthernetProperties GetProcAddress failed").Times(2));
    EXPECT_THAT(trace.Messages(), Contains("Exiting CHBAAPIInt::GetFCEthernetProperties").Times(2));
}
