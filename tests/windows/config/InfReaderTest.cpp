#include "InfReader.h"

#include <gmock/gmock.h>
#include <windows.h>

#include "DebugOutput.h"
#include "DriverInstallRecord.h"
#include "Handles.h"
#include "ImportOverride.h"
#include "LangString.h"
#include "LibraryTrace.h"
#include "OrvSecure.h"
#include "ScratchDirectory.h"
#include "TestThread.h"

using testing::ElementsAre;

namespace {
constexpr char kSection[] = "Norda.NTamd64";

class InfReader : public testing::Test
{
protected:
    InfReader()
    {
        matchedHardwareId.fill('\0');
        deviceDescription.fill('\0');
    }

    [[nodiscard]] std::string InfPath() const { return m_directory.At("tav1.inf"); }

    /// Writes an INF with the given lines in its model section and in "Strings".
    void WriteInf(const std::string& models, const std::string& strings = "")
    {
        WriteFileBytes(InfPath(), "[Version]\r\nSignature=\"$Windows NT$\"\r\n[" + std::string(kSection) + "]\r\n" +
                                      models + "\r\n[Strings]\r\n" + strings + "\r\n");
    }

    [[nodiscard]] int Parse(const std::string& key, const char* section = kSection) const
    {
        return ParseINFile(key.c_str(), section, InfPath().c_str());
    }

    [[nodiscard]] static std::string Matched() { return std::string(TextIn(matchedHardwareId)); }
    [[nodiscard]] static std::string Description() { return std::string(TextIn(deviceDescription)); }

    ScratchDirectory m_directory;
};
} // namespace

TEST_F(InfReader, AMatchTracesTheKeyAndFillsBothBuffers)
{
    WriteInf("%Nic.DeviceDesc% = Nic.ndi, PCI\\VEN_5D1A&DEV_7A01&SUBSYS_A01F5D1A",
             "Nic.DeviceDesc=\"Norda Adapter X\"");
    const std::string key = "ven_5d1a&dev_7a01&subsys_a01f5d1a";
    TraceCapture trace;
    EXPECT_EQ(Parse(key), 1);
    EXPECT_EQ(Matched(), "VEN_5D1A&DEV_7A01&SUBSYS_A01F5D1A");
    EXPECT_EQ(Description(), "Norda Adapter X");
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering - ParseINFile",
                                              "ParseINFFile(): key=" + key +
                                                  ", section name=Norda.NTamd64, file name=" + InfPath() + "\n",
                                              "matched:" + key + "\n", "Entering - GetLanguageSpecificString"));
}

TEST_F(InfReader, AMissTracesNoMatchAndKeepsTheMatchedId)
{
    WriteInf("%D%=I, PCI\\VEN_1", "D=One");
    ASSERT_EQ(Parse("VEN_1"), 1);
    TraceCapture trace;
    EXPECT_EQ(Parse("VEN_2"), 0);
    EXPECT_EQ(Matched(), "VEN_1");
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Entering - ParseINFile",
                            "ParseINFFile(): key=VEN_2, section name=Norda.NTamd64, file name=" + InfPath() + "\n",
                            "Entering - GetLanguageSpecificString"));
}

TEST_F(InfReader, ClassCodeIsCutAndLetterCaseIgnored)
{
    WriteInf("%D.DeviceDesc%=Inst.ndi, PCI\\VEN_5D1A&DEV_7A01&CC_0200");
    EXPECT_EQ(Parse("VEN_5D1A&DEV_7A01"), 1);
    EXPECT_EQ(Parse("ven_5d1a&Dev_7a01"), 1);
    EXPECT_EQ(Parse("VEN_5D1A&DEV_7A01&CC_0200"), 0);
}

TEST_F(InfReader, ALineWithASubsystemMatchesOnlyTheKeyWithTheSame)
{
    WriteInf("%D.DeviceDesc%=Inst.ndi, PCI\\VEN_5D1A&DEV_7A01&SUBSYS_00015D1A");
    EXPECT_EQ(Parse("VEN_5D1A&DEV_7A01&SUBSYS_00015D1A"), 1);
    EXPECT_EQ(Parse("VEN_5D1A&DEV_7A01"), 0);
    EXPECT_EQ(Parse("VEN_5D1A&DEV_7A01&SUBSYS_00025D1A"), 0);
}

TEST_F(InfReader, CompatibleIdsNeverMatch)
{
    WriteInf("%D%=Inst.ndi, PCI\\VEN_1&DEV_1, PCI\\VEN_5D1A&DEV_7A01");
    EXPECT_EQ(Parse("VEN_5D1A&DEV_7A01"), 0);
    EXPECT_EQ(Parse("VEN_1&DEV_1"), 1);
}

TEST_F(InfReader, LinesWithoutABackslashAreSkipped)
{
    WriteInf("%A%=Inst.ndi, VEN_1\r\n%B%=Inst.ndi\r\n%C%=\r\nword\r\n%D%=Inst.ndi, PCI\\VEN_1", "D=Last");
    EXPECT_EQ(Parse("VEN_1"), 1);
    EXPECT_EQ(Description(), "Last");
}

TEST_F(InfReader, TheFirstMatchingLineEndsTheWalk)
{
    WriteInf("%A%=I, PCI\\VEN_1\r\n%B%=I, PCI\\VEN_2&CC_0200\r\n%C%=I, PCI\\VEN_2", "A=One\r\nB=Two\r\nC=Three");
    EXPECT_EQ(Parse("VEN_2"), 1);
    EXPECT_EQ(Matched(), "VEN_2");
    EXPECT_EQ(Description(), "Two");
}

TEST_F(InfReader, AMissLeavesTheDescriptionOfTheLastLine)
{
    WriteInf("%A%=I, PCI\\VEN_1\r\n%B%=I, PCI\\VEN_2", "A=One\r\nB=Two");
    EXPECT_EQ(Parse("VEN_3"), 0);
    EXPECT_EQ(Description(), "Two");
}

TEST_F(InfReader, AnUndefinedStringGivesTheNameWithItsPerCentSign)
{
    WriteInf("%Nic.DeviceDesc% = I, PCI\\VEN_1");
    EXPECT_EQ(Parse("VEN_1"), 1);
    EXPECT_EQ(Description(), "%Nic.DeviceDesc");
}

TEST_F(InfReader, ANullSectionNameReturnsZeroAndLeavesBothBuffersAlone)
{
    WriteInf("%D%=I, PCI\\VEN_1", "D=One");
    ASSERT_EQ(Parse("VEN_1"), 1);
    TraceCapture trace;
    EXPECT_EQ(Parse("VEN_1", nullptr), 0);
    EXPECT_EQ(Matched(), "VEN_1");
    EXPECT_EQ(Description(), "One");
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Entering - ParseINFile",
                            "ParseINFFile(): key=VEN_1, section name=, file name=" + InfPath() + "\n"));
}

TEST_F(InfReader, AnEmptyOrMissingSectionStillLooksTheDescriptionUp)
{
    WriteInf("", "D=One");
    for (const char* const section : {kSection, "Norda.NTia64", ""}) {
        deviceDescription.fill('x');
        TraceCapture trace;
        EXPECT_EQ(Parse("VEN_1", section), 0);
        EXPECT_EQ(Description(), "") << section;
        EXPECT_THAT(trace.Messages(),
                    ElementsAre("Entering - ParseINFile",
                                "ParseINFFile(): key=VEN_1, section name=" + std::string(section) +
                                    ", file name=" + InfPath() + "\n",
                                "GetPrivateProfileSection() failed", "Entering - GetLanguageSpecificString"));
    }
}

TEST_F(InfReader, AMissingFileIsAMissingSection)
{
    TraceCapture trace;
    EXPECT_EQ(Parse("VEN_1"), 0);
    EXPECT_EQ(trace.Messages().at(2), "GetPrivateProfileSection() failed");
    EXPECT_FALSE(FileExists(InfPath()));
}

TEST_F(InfReader, NullTextsCountAsEmpty)
{
    EXPECT_EQ(ParseINFile(nullptr, kSection, nullptr), 0);
    EXPECT_EQ(Description(), "");
}

TEST_F(InfReader, ADescriptionKeyThatDoesNotFitIsEmpty)
{
    WriteInf("%" + std::string(300, 'k') + "%=I, PCI\\VEN_1", std::string(300, 'k') + "=Long");
    EXPECT_EQ(Parse("VEN_1"), 1);
    EXPECT_EQ(Description(), "");
    const std::string longest(257, 'k');
    WriteFileBytes(InfPath(), "[" + std::string(kSection) + "]\r\n%" + longest + "%=I, PCI\\VEN_2\r\n[Strings]\r\n" +
                                  longest + "=Fits\r\n");
    EXPECT_EQ(Parse("VEN_2"), 1);
    EXPECT_EQ(Description(), "Fits");
}

TEST_F(InfReader, TheFirstLineWalkedInstallsTheLibrarysHandlerForInvalidParameters)
{
    const auto before = OrvSecureState.installed.exchange(nullptr);
    WriteInf("");
    EXPECT_EQ(Parse("VEN_1"), 0);
    EXPECT_EQ(OrvSecureState.installed, nullptr) << "there is no line to copy from";
    WriteInf("%D%=I, PCI\\VEN_1");
    EXPECT_EQ(Parse("VEN_1"), 1);
    EXPECT_EQ(OrvSecureState.installed, OrvSecureInvalidParameterHandler);
    OrvSecureState.installed = before;
}

TEST_F(InfReader, ADescriptionKeyThatDoesNotFitIsReportedToTheLibrarysTrace)
{
    WriteInf("%" + std::string(300, 'k') + "%=I, PCI\\VEN_1");
    EXPECT_EQ(Parse("VEN_1"), 1);
    const LibraryTrace trace;
    EXPECT_EQ(Parse("VEN_1"), 1);
    EXPECT_THAT(trace.Messages(),
                ElementsAre("OrvSecureInvalidParameterHandler : ERROR",
                            testing::AllOf(testing::StartsWith("InstallerSearch ("),
                                           testing::EndsWith("strDestination size 0, or too small"))));
}

TEST_F(InfReader, LongIdsAndDescriptionsAreCutToTheirBuffers)
{
    const std::string id(400, 'V');
    WriteInf("%D%=I, PCI\\" + id, "D=" + std::string(400, 'd'));
    EXPECT_EQ(Parse(id), 1);
    EXPECT_EQ(Matched(), std::string(255, 'V'));
    EXPECT_EQ(Description(), std::string(259, 'd'));
}

TEST_F(InfReader, ASectionOfMoreThan32765CharactersIsReadCut)
{
    std::string models;
    for (int index = 0; index < 2000; ++index) {
        models += "%D" + std::to_string(10000 + index) + "%=I, PCI\\VEN_" + std::to_string(10000 + index) + "\r\n";
    }
    WriteInf(models); // 2000 lines of 26 characters
    EXPECT_EQ(Parse("VEN_10000"), 1);
    EXPECT_EQ(Parse("VEN_11000"), 1);
    EXPECT_EQ(Parse("VEN_11999"), 0);
}

TEST_F(InfReader, Utf16InfFilesAreReadLikeAnyOther)
{
    std::string content("\xFF\xFE");
    for (const char c : std::string("[Norda.NTamd64]\r\n%D%=I, PCI\\VEN_1\r\n[Strings]\r\nD=\"One\"\r\n")) {
        content += c;
        content += '\0';
    }
    WriteFileBytes(InfPath(), content);
    EXPECT_EQ(Parse("VEN_1"), 1);
    EXPECT_EQ(Description(), "One");
}

TEST_F(InfReader, BadFilesListNothing)
{
    std::string binary;
    for (int index = 0; index < 65536; ++index) {
        binary += static_cast<char>(index * 31 % 257);
    }
    for (const std::string& content : {std::string(), binary, std::string(40000, '\0'), "[" + std::string(kSection),
                                       "[" + std::string(kSection) + "]\r\n=\r\n==\r\n%\r\n%%=\\\\\\"}) {
        WriteFileBytes(InfPath(), content);
        EXPECT_EQ(Parse("VEN_1"), 0);
    }
}

TEST_F(InfReader, ALastLineWithoutItsEndCounts)
{
    WriteFileBytes(InfPath(), "[Norda.NTamd64]\n%D%=I, PCI\\VEN_1");
    EXPECT_EQ(Parse("VEN_1"), 1);
    EXPECT_EQ(Description(), "%D");
}

class UnicodeMark : public InfReader
{
};

TEST_F(UnicodeMark, IsFoundAndTheFileIsClosed)
{
    WriteFileBytes(InfPath(), "\xFF\xFEx");
    TraceCapture trace;
    EXPECT_EQ(IsFileUnicode(InfPath()), 1);
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering - IsFileUnicode", "file is Unicode\n"));
    EXPECT_TRUE(DeleteFileA(InfPath().c_str())) << "a file still open would refuse it";
    EXPECT_FALSE(FileExists(InfPath()));
}

TEST_F(UnicodeMark, OtherMarksAndShortFilesAreNotUnicode)
{
    using namespace std::string_literals;
    for (const std::string& content :
         {"\xFE\xFFx"s, "\xEF\xBB\xBFx"s, "\xFF"s, ""s, "[Version]"s, "\xFF\xFF"s, "\xFE\xFE"s}) {
        WriteFileBytes(InfPath(), content);
        TraceCapture trace;
        EXPECT_EQ(IsFileUnicode(InfPath()), 0);
        EXPECT_THAT(trace.Messages(), ElementsAre("Entering - IsFileUnicode", "file is not Unicode\n"));
        EXPECT_TRUE(DeleteFileA(InfPath().c_str()));
    }
}

TEST_F(UnicodeMark, AFileOfTheMarkAloneIsUnicode)
{
    WriteFileBytes(InfPath(), "\xFF\xFE");
    EXPECT_EQ(IsFileUnicode(InfPath()), 1);
}

TEST_F(UnicodeMark, AFileThatCannotBeOpenedIsTraced)
{
    TraceCapture trace;
    EXPECT_EQ(IsFileUnicode(InfPath()), 0);
    EXPECT_EQ(IsFileUnicode(m_directory.Path()), 0);
    EXPECT_EQ(IsFileUnicode(""), 0);
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Entering - IsFileUnicode", "unable to open file: " + InfPath() + "\n",
                            "Entering - IsFileUnicode", "unable to open file: " + m_directory.Path() + "\n",
                            "Entering - IsFileUnicode", "unable to open file: \n"));
}

TEST_F(UnicodeMark, AReadFailureIsTracedAndIsNotUnicode)
{
    // A pipe can be opened like a file; reading fails once its other end is gone.
    const std::string pipe = R"(\\.\pipe\morvix-config-)" + std::to_string(GetCurrentProcessId());
    HANDLE server = CreateNamedPipeA(pipe.c_str(), PIPE_ACCESS_OUTBOUND, PIPE_TYPE_BYTE, 1, 0, 0, 0, nullptr);
    ASSERT_NE(server, INVALID_HANDLE_VALUE);
    TestThread otherEnd([server] {
        ConnectNamedPipe(server, nullptr);
        CloseHandle(server);
    });
    TraceCapture trace;
    EXPECT_EQ(IsFileUnicode(pipe), 0);
    otherEnd.join();
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Entering - IsFileUnicode", "unable to read from file\n", "file is not Unicode\n"));
}

namespace {
decltype(&WideCharToMultiByte) platformNarrow = nullptr;

struct TextBlockRequest
{
    HMODULE module = nullptr;
    ULONG_PTR type = 0;
    ULONG_PTR block = 0;
    WORD language = 0;
};
std::vector<TextBlockRequest> textBlockRequests;
std::vector<std::wstring> narrowed;

// A block of sixteen texts, each the number of its place.
constexpr std::wstring_view kNumberedTexts(
    L"\x01"
    L"0\x01"
    L"1\x01"
    L"2\x01"
    L"3\x01"
    L"4\x01"
    L"5\x01"
    L"6\x01"
    L"7\x01"
    L"8\x01"
    L"9\x01"
    L"A\x01"
    L"B\x01"
    L"C\x01"
    L"D\x01"
    L"E\x01"
    L"F");

HRSRC WINAPI FindTextBlock(HMODULE module, LPCSTR type, LPCSTR block, WORD language)
{
    textBlockRequests.push_back(
        {module, reinterpret_cast<ULONG_PTR>(type), reinterpret_cast<ULONG_PTR>(block), language});
    return reinterpret_cast<HRSRC>(&textBlockRequests);
}

HGLOBAL WINAPI LoadTextBlock(HMODULE, HRSRC block)
{
    return block;
}

LPVOID WINAPI LockTextBlock(HGLOBAL)
{
    return const_cast<wchar_t*>(kNumberedTexts.data());
}

DWORD WINAPI SizeOfTextBlock(HMODULE, HRSRC)
{
    return static_cast<DWORD>(kNumberedTexts.size() * sizeof(wchar_t));
}

int WINAPI NoteNarrowing(UINT codePage, DWORD flags, LPCWCH text, int chars, LPSTR target, int bytes, LPCCH other,
                         LPBOOL usedOther)
{
    narrowed.emplace_back(text);
    return platformNarrow(codePage, flags, text, chars, target, bytes, other, usedOther);
}
} // namespace

TEST_F(InfReader, EveryCallLoadsText17InTheRunsLanguage)
{
    WriteInf("%D%=I, PCI\\VEN_1", "D=One");
    textBlockRequests.clear();
    narrowed.clear();
    resourceModule = GetModuleHandleA(nullptr);
    runLanguageId = 1036;
    {
        const ImportOverride find("FindResourceExA", reinterpret_cast<void*>(FindTextBlock));
        const ImportOverride load("LoadResource", reinterpret_cast<void*>(LoadTextBlock));
        const ImportOverride lock("LockResource", reinterpret_cast<void*>(LockTextBlock));
        const ImportOverride size("SizeofResource", reinterpret_cast<void*>(SizeOfTextBlock));
        const ImportOverride narrow("WideCharToMultiByte",
                                    InPlaceOf(platformNarrow, &WideCharToMultiByte, &NoteNarrowing));
        EXPECT_EQ(Parse("VEN_1"), 1);
        EXPECT_EQ(Parse("VEN_2"), 0);
        EXPECT_EQ(Parse("VEN_1", nullptr), 0) << "without a section nothing is looked up and no text loaded";
    }
    resourceModule = nullptr;
    runLanguageId = 1033;
    // Texts 16 to 31 are the second block.
    EXPECT_THAT(narrowed, ElementsAre(L"1", L"1"));
    ASSERT_EQ(textBlockRequests.size(), 2U);
    for (const TextBlockRequest& request : textBlockRequests) {
        EXPECT_EQ(request.module, GetModuleHandleA(nullptr));
        EXPECT_EQ(request.type, 6U);
        EXPECT_EQ(request.block, 2U);
        EXPECT_EQ(request.language, 1036);
    }
    EXPECT_EQ(Description(), "One") << "the text itself is not used";
}
