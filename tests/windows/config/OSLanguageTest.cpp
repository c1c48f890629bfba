#include "OSLanguage.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <array>
#include <cstring>

#include "ChildProcess.h"
#include "DebugOutput.h"
#include "ImportOverride.h"
#include "LanguageTable.h"
#include "LibraryLoads.h"

using testing::ElementsAre;

namespace {
decltype(&GetProcAddress) realGetProcAddress = nullptr;

FARPROC WINAPI WithoutTheLanguage(HMODULE module, LPCSTR name)
{
    return std::strcmp(name, "GetSystemDefaultLangID") == 0 ? nullptr : realGetProcAddress(module, name);
}
} // namespace

TEST(GetOSLanguageID, AnswersForTheSystemsLanguageAndTracesItsEntry)
{
    TraceCapture trace;
    const RunLanguage expected = LanguageForSystem(GetSystemDefaultLangID());
    std::array<char, 8> code{};
    code.fill('x');
    EXPECT_EQ(GetOSLanguageID(code.data(), code.size()), expected.id);
    EXPECT_EQ(std::string(code.data()), expected.code3);
    for (std::size_t index = expected.code3.size(); index < code.size(); ++index) {
        EXPECT_EQ(code[index], '\0') << "all bytes are cleared first";
    }
    EXPECT_EQ(GetOSLanguageID(nullptr, 0), expected.id);
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering - GetOSLanguageID", "Entering - GetOSLanguageID"));
}

TEST(GetOSLanguageID, FillsABufferOfExactlyFour)
{
    const RunLanguage expected = LanguageForSystem(GetSystemDefaultLangID());
    std::array<char, 5> code{'x', 'x', 'x', 'x', 'x'};
    EXPECT_EQ(GetOSLanguageID(code.data(), 4), expected.id);
    EXPECT_EQ(std::string(code.data()), expected.code3);
    EXPECT_EQ(code[4], 'x');
}

TEST(GetOSLanguageID, GivesTheRawIdentifierWhenTheCodeDoesNotFit)
{
    for (const int size : {3, 1, 0, -1}) {
        std::array<char, 4> code{'x', 'x', 'x', 'x'};
        EXPECT_EQ(GetOSLanguageID(code.data(), size), GetSystemDefaultLangID()) << size;
        for (int index = 0; index < 4; ++index) {
            EXPECT_EQ(code[static_cast<std::size_t>(index)], index < size ? '\0' : 'x') << size;
        }
    }
}

TEST(GetOSLanguageID, ASizeWithoutABufferIsIgnored)
{
    EXPECT_EQ(GetOSLanguageID(nullptr, 3), LanguageForSystem(GetSystemDefaultLangID()).id);
}

TEST(GetOSLanguageID, AsksEveryGenerationOfSystemsForItsDefaultLanguage)
{
    for (const char* const version : {"win98", "nt40", "win2k", "win8"}) {
        const ChildReport report = RunChild("language", {version, {}, {}});
        const RunLanguage expected = LanguageForSystem(static_cast<uint16_t>(std::stoul(report.At("system"))));
        EXPECT_EQ(report.At("system"), std::to_string(GetSystemDefaultLangID())) << version;
        EXPECT_EQ(report.At("id"), std::to_string(expected.id)) << version;
        EXPECT_EQ(report.At("code"), expected.code3) << version;
        EXPECT_THAT(report.trace, ElementsAre("Entering - GetOSLanguageID")) << version;
    }
}

TEST(GetOSLanguageID, WithoutTheEntryPointNoLanguageIsSupported)
{
    realGetProcAddress = &GetProcAddress;
    const ImportOverride withoutIt("GetProcAddress", reinterpret_cast<void*>(WithoutTheLanguage));
    std::array<char, 4> code{'x', 'x', 'x', 'x'};
    EXPECT_EQ(GetOSLanguageID(code.data(), 4), 0);
    EXPECT_EQ(std::string(code.data()), "");
    EXPECT_EQ(GetOSLanguageID(nullptr, 0), 0);
    EXPECT_EQ(GetOSLanguageID(code.data(), 3), 0xFFFF);
}

TEST(GetOSLanguageID, ALibraryWithoutTheEntryPointIsFreedAgain)
{
    const LibraryLoads loads("GetSystemDefaultLangID");
    EXPECT_EQ(GetOSLanguageID(nullptr, 0), 0);
    EXPECT_THAT(loads.Loaded(), ElementsAre("Kernel32.dll"));
    EXPECT_TRUE(loads.StillLoaded().empty());
}
