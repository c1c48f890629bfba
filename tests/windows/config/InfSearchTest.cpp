#include "InfSearch.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <algorithm>
#include <array>

#include "DebugOutput.h"
#include "HandleCount.h"
#include "InfDirectory.h"
#include "InfFiles.h"
#include "InfReader.h"
#include "InfStore.h"
#include "InstallerSearch.h"
#include "LocationInfo.h"
#include "OSVersion.h"
#include "RunOptions.h"
#include "ScratchDirectory.h"
#include "StoredInfs.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using testing::SizeIs;

namespace {
constexpr char kKey[] = "VEN_5D1A&DEV_7A01";
constexpr char kUntouched[] = "untouched";

DriverInstallRecord RecordOf(std::string_view family)
{
    DriverInstallRecord record;
    std::ranges::copy(family, record.osFamily.begin());
    return record;
}

bool Qualifies(const std::string& infPath, const std::string& expectedSignature)
{
    return !WhyNotQualified(InstallerSearch(), infPath, expectedSignature);
}

class InfSearch : public testing::Test
{
protected:
    InfSearch()
    {
        LocationInfo.setupDir = m_directory.At("Setup");
        CopiedInfList = {};
        RunOptions = {};
        WriteIni("Norda.NTamd64");
    }
    ~InfSearch() override
    {
        LocationInfo = {};
        CopiedInfList = {};
        RunOptions = {};
    }

    /// Writes a setup INI with these model sections for the running system.
    void WriteIni(const std::string& sectionNames)
    {
        WriteFileBytes(m_directory.At(R"(Setup\Morvix.ini)"),
                       "[" + std::string(RowOf(COSVersion().GetOSCode()).sectionKey) +
                           "]\r\nInfSectionName=" + sectionNames + "\r\n");
    }

    [[nodiscard]] std::string Drivers() const { return m_directory.At("Drv\\"); }
    void WriteInf(const std::string& name, const std::string& content) { WriteFileBytes(Drivers() + name, content); }

    bool Find(const std::string& family = "Windows Vista", const std::vector<std::string>& excludes = {})
    {
        m_infPath.fill('\0');
        std::ranges::copy(std::string_view(kUntouched), m_infPath.begin());
        return GetInfFile(kKey, Drivers(), RecordOf(family), m_infPath.data(), excludes);
    }
    [[nodiscard]] std::string InfPath() const { return m_infPath.data(); }

    /// The names of the INF files that a directory walk reports, in its order.
    static std::vector<std::string> Processed(const std::vector<std::string>& messages)
    {
        constexpr std::string_view kHead = "processing: ";
        std::vector<std::string> names;
        for (const std::string& message : messages) {
            if (message.starts_with(kHead)) {
                names.push_back(message.substr(kHead.size(), message.size() - kHead.size() - 1));
            }
        }
        return names;
    }

    ScratchDirectory m_directory;
    StoredInfs m_stored;
    std::array<char, 260> m_infPath{};
};

/// Replaces a part of a text that must be there.
std::string With(std::string text, const std::string& part, const std::string& replacement)
{
    const auto place = text.find(part);
    EXPECT_NE(place, std::string::npos) << part;
    return text.replace(place, part.size(), replacement);
}
} // namespace

TEST_F(InfSearch, AMatchGivesTheFullPathAndTracesEachStep)
{
    WriteInf("tav1.inf", QualifiedInf(kKey));
    TraceCapture trace;
    EXPECT_TRUE(Find());
    EXPECT_EQ(InfPath(), Drivers() + "tav1.inf");
    EXPECT_EQ(std::string(matchedHardwareId.data()), kKey);
    EXPECT_EQ(std::string(deviceDescription.data()), std::string("Norda Adapter ") + kKey);
    EXPECT_THAT(CopiedInfList.names, ElementsAre("tav1.inf"));
    EXPECT_THAT(m_stored.New(), SizeIs(1));

    std::vector<std::string> messages = trace.Messages();
    const std::string path = Drivers() + "tav1.inf";
    // What the store says about itself is another test's subject.
    const auto copy = std::ranges::find(messages, "Entering - SetupCopyInf");
    const auto copied = std::ranges::find(messages, "Adding INF tav1.infto vector\n");
    ASSERT_LT(copy, copied);
    messages.erase(copy + 1, copied);
    EXPECT_THAT(messages, ElementsAre("Entering - GetInfFile",
                                      "GetInfFile(), key:[[" + std::string(kKey) + "]], dir:" + Drivers() + "\n",
                                      "Entering - GetINFSectionNamesFromINI", "section names from ini: Norda.NTamd64\n",
                                      "added section name: Norda.NTamd64\n", "processing: tav1.inf\n",
                                      "Entering - IsFileUnicode", "file is not Unicode\n", "Entering - SetupCopyInf",
                                      "Adding INF tav1.infto vector\n", "Entering - ParseINFile",
                                      "ParseINFFile(): key=" + std::string(kKey) +
                                          ", section name=Norda.NTamd64, file name=" + path + "\n",
                                      "matched:" + std::string(kKey) + "\n", "Entering - GetLanguageSpecificString",
                                      "done processing infs in this directory\n"));
}

TEST_F(InfSearch, ADirectoryWithoutABackslashGetsOne)
{
    WriteInf("tav1.inf", QualifiedInf(kKey));
    const std::string directory = m_directory.At("Drv");
    TraceCapture trace;
    EXPECT_TRUE(GetInfFile(kKey, directory, RecordOf("Windows Vista"), m_infPath.data(), {}));
    EXPECT_EQ(InfPath(), Drivers() + "tav1.inf");
    EXPECT_EQ(trace.Messages().at(1), "GetInfFile(), key:[[" + std::string(kKey) + "]], dir:" + directory + "\n");
    EXPECT_THAT(trace.Messages(),
                Contains("SetupCopyOEMInfA(), src inf:" + Drivers() + "tav1.inf, src media loc:" + Drivers() + "\n"));
}

TEST_F(InfSearch, AnEmptyOrMissingDirectoryEndsTheWalkAtOnceAndLeavesThePathAlone)
{
    const auto traceOfNothing =
        ElementsAre("Entering - GetInfFile", "GetInfFile(), key:[[" + std::string(kKey) + "]], dir:" + Drivers() + "\n",
                    "Entering - GetINFSectionNamesFromINI", "section names from ini: Norda.NTamd64\n",
                    "added section name: Norda.NTamd64\n", "done processing infs in this directory\n");
    {
        TraceCapture trace;
        EXPECT_FALSE(Find()) << "missing";
        EXPECT_EQ(InfPath(), kUntouched);
        EXPECT_THAT(trace.Messages(), traceOfNothing);
    }
    WriteInf("readme.txt", "x");
    TraceCapture trace;
    EXPECT_FALSE(Find()) << "without INF files";
    EXPECT_EQ(InfPath(), kUntouched);
    EXPECT_THAT(trace.Messages(), traceOfNothing);
}

TEST_F(InfSearch, TheFirstOfTwoInfFilesThatListTheDeviceWinsAndTheSecondIsNotReached)
{
    WriteInf("tav1.inf", QualifiedInf(kKey));
    WriteInf("tav2.inf", QualifiedInf(kKey));
    TraceCapture trace;
    EXPECT_TRUE(Find());
    const std::vector<std::string> processed = Processed(trace.Messages());
    ASSERT_THAT(processed, SizeIs(1));
    EXPECT_EQ(InfPath(), Drivers() + processed.front());
    EXPECT_THAT(CopiedInfList.names, ElementsAre(processed.front()));
}

TEST_F(InfSearch, EveryQualifiedInfThatIsReachedIsCopiedWhetherOrNotItListsTheDevice)
{
    WriteInf("tav1.inf", QualifiedInf("VEN_5D1A&DEV_0001"));
    WriteInf("tav2.inf", QualifiedInf("VEN_5D1A&DEV_0002"));
    EXPECT_FALSE(Find());
    EXPECT_EQ(InfPath(), kUntouched);
    EXPECT_THAT(CopiedInfList.names, testing::UnorderedElementsAre("tav1.inf", "tav2.inf"));
    EXPECT_THAT(m_stored.New(), SizeIs(2));
}

TEST_F(InfSearch, AnInfOfTheSameNameInASecondDirectoryIsNotCopiedAgain)
{
    WriteInf("tav1.inf", QualifiedInf("VEN_5D1A&DEV_0001"));
    EXPECT_FALSE(Find());
    const std::string second = m_directory.At("Drv2\\");
    WriteFileBytes(second + "TAV1.INF", QualifiedInf(kKey));
    TraceCapture trace;
    EXPECT_TRUE(GetInfFile(kKey, second, RecordOf("Windows Vista"), m_infPath.data(), {}));
    EXPECT_EQ(InfPath(), second + "TAV1.INF");
    EXPECT_THAT(CopiedInfList.names, ElementsAre("tav1.inf"));
    EXPECT_THAT(trace.Messages(), Not(Contains("Entering - SetupCopyInf")));
    EXPECT_THAT(m_stored.New(), SizeIs(1));
}

TEST_F(InfSearch, ManufacturerValuesWithOurBrandAsAWordQualify)
{
    for (const char* const value : {"NORDA,NTamd64", "Norda Networks", "Lumarc, NTamd64", "NTamd64 Lumarc"}) {
        CopiedInfList = {};
        WriteInf("tav1.inf", With(QualifiedInf(kKey), "=Norda,NTamd64", std::string("=") + value));
        EXPECT_TRUE(Find()) << value;
    }
}

TEST_F(InfSearch, ManufacturerValuesWithoutOurBrandDoNotAndNothingIsTraced)
{
    for (const char* const value : {"norda,NTamd64", "NordaNet", "LUMARC", "", "Other,Norda.NTamd64"}) {
        WriteInf("tav1.inf", With(QualifiedInf(kKey), "=Norda,NTamd64", std::string("=") + value));
        TraceCapture trace;
        EXPECT_FALSE(Find()) << value;
        const std::vector<std::string> messages = trace.Messages();
        ASSERT_GE(messages.size(), 3U);
        EXPECT_THAT(std::vector<std::string>(messages.end() - 3, messages.end()),
                    ElementsAre("Entering - IsFileUnicode", "file is not Unicode\n",
                                "done processing infs in this directory\n"));
    }
    EXPECT_THAT(CopiedInfList.names, IsEmpty());
}

TEST_F(InfSearch, AnyKeyOfTheManufacturerSectionMayNameTheBrand)
{
    WriteInf("tav1.inf", With(QualifiedInf(kKey), "%Provider%=Norda,NTamd64", "%A%=Other\r\n%B%=Lumarc,NTamd64"));
    EXPECT_TRUE(Find());
}

TEST_F(InfSearch, AnInfWithoutAManufacturerSectionDoesNotQualify)
{
    WriteInf("tav1.inf", With(QualifiedInf(kKey), "[Manufacturer]", "[Other]"));
    EXPECT_FALSE(Find());
    EXPECT_THAT(CopiedInfList.names, IsEmpty());
}

TEST_F(InfSearch, ManufacturerKeysBeyondTheKeyBufferAreNotSeen)
{
    const std::string many = "%" + std::string(60, 'a') + "%=Other\r\n%" + std::string(60, 'b') + "%=Norda,NTamd64";
    WriteInf("tav1.inf", With(QualifiedInf(kKey), "%Provider%=Norda,NTamd64", many));
    EXPECT_FALSE(Find()) << "100 bytes hold the first key and a part of the second";
}

TEST_F(InfSearch, AnotherSignatureIsTracedAndSkipped)
{
    WriteInf("tav1.inf", With(QualifiedInf(kKey), "$Windows NT$", "$Chicago$"));
    TraceCapture trace;
    EXPECT_FALSE(Find());
    const std::vector<std::string> messages = trace.Messages();
    EXPECT_THAT(
        std::vector<std::string>(messages.end() - 5, messages.end()),
        ElementsAre("processing: tav1.inf\n", "Entering - IsFileUnicode", "file is not Unicode\n",
                    "signature section match for this OS not found\n", "done processing infs in this directory\n"));
    EXPECT_TRUE(Find("Windows 98"));
}

TEST_F(InfSearch, ASignatureIsCutAfter99Characters)
{
    const auto write = [this](const std::string& signature) {
        WriteInf("tav1.inf", With(QualifiedInf(kKey), "\"$Windows NT$\"", signature));
    };
    const std::string longest(99, 's');
    write(longest);
    EXPECT_TRUE(Qualifies(Drivers() + "tav1.inf", longest));
    write(longest + "and more");
    EXPECT_TRUE(Qualifies(Drivers() + "tav1.inf", longest));
    EXPECT_FALSE(Qualifies(Drivers() + "tav1.inf", longest + "and more"));
}

TEST_F(InfSearch, ABrandAfter499CharactersOfTheValueIsNotSeen)
{
    const auto withBrandFrom = [this](std::size_t place) {
        WriteInf("tav1.inf", With(QualifiedInf(kKey), "=Norda,NTamd64", "=" + std::string(place - 1, 'x') + ",Norda"));
        return Qualifies(Drivers() + "tav1.inf", "$Windows NT$");
    };
    EXPECT_TRUE(withBrandFrom(494)) << "ends with character 499";
    EXPECT_FALSE(withBrandFrom(495));
}

TEST_F(InfSearch, OneSearchHandleStaysOpenPerDirectory)
{
    // The searches end with a match: one that has come to its end may hold no handle of the system any more.
    const std::string second = m_directory.At("Drv2\\");
    WriteInf("tav1.inf", QualifiedInf(kKey));
    WriteFileBytes(second + "tav1.inf", QualifiedInf(kKey));
    CopiedInfList.names = {"tav1.inf"};
    const auto search = [this](const std::string& directory) {
        return GetInfFile(kKey, directory, RecordOf("Windows Vista"), m_infPath.data(), {});
    };
    // What the first search sets up for the life of the process does not count.
    EXPECT_TRUE(search(Drivers()));
    const unsigned before = CountOwnHandles();
    EXPECT_TRUE(search(Drivers()));
    EXPECT_EQ(CountOwnHandles(), before + 1);
    EXPECT_TRUE(search(second));
    EXPECT_EQ(CountOwnHandles(), before + 2);
    EXPECT_FALSE(search(m_directory.At("none")));
    EXPECT_EQ(CountOwnHandles(), before + 2) << "a search that could not start leaves nothing";
}

TEST_F(InfSearch, SignaturesIgnoreLetterCase)
{
    WriteInf("tav1.inf", With(QualifiedInf(kKey), "$Windows NT$", "$WINDOWS nt$"));
    EXPECT_TRUE(Find());
}

TEST_F(InfSearch, AnUnknownFamilyTakesOnlyInfFilesWithoutASignature)
{
    WriteInf("tav1.inf", QualifiedInf(kKey));
    EXPECT_FALSE(Find("Windows NT"));
    WriteInf("tav2.inf", With(QualifiedInf(kKey), "Signature=\"$Windows NT$\"\r\n", ""));
    EXPECT_TRUE(Find("Windows NT"));
    EXPECT_EQ(InfPath(), Drivers() + "tav2.inf");
    EXPECT_TRUE(Find("windows vista"));
    EXPECT_EQ(InfPath(), Drivers() + "tav2.inf") << "families are compared exactly";
}

TEST_F(InfSearch, ExcludedFilesAreSkippedWithoutAFurtherTrace)
{
    WriteInf("tav1.inf", QualifiedInf(kKey));
    TraceCapture trace;
    EXPECT_FALSE(Find("Windows Vista", {"other.inf", "TAV1.INF"}));
    const std::vector<std::string> messages = trace.Messages();
    EXPECT_THAT(std::vector<std::string>(messages.end() - 2, messages.end()),
                ElementsAre("processing: tav1.inf\n", "done processing infs in this directory\n"));
}

TEST_F(InfSearch, ForcedScanProcessesExcludedFilesLikeAnyOther)
{
    WriteInf("tav1.inf", QualifiedInf(kKey));
    RunOptions.forceInfScan = 1;
    EXPECT_TRUE(Find("Windows Vista", {"tav1.inf"}));
    EXPECT_EQ(InfPath(), Drivers() + "tav1.inf");
    WriteInf("tav1.inf", With(QualifiedInf(kKey), "$Windows NT$", "$Chicago$"));
    EXPECT_FALSE(Find("Windows Vista", {"tav1.inf"})) << "nothing else changes";
}

TEST_F(InfSearch, ModelSectionsAreTriedInListOrderUntilOneMatches)
{
    WriteIni("Norda.NTamd64,Norda.NTamd64.6.0,Norda.NTamd64.6.1");
    WriteInf("tav1.inf", QualifiedInf(kKey, "Norda.NTamd64.6.0"));
    TraceCapture trace;
    EXPECT_TRUE(Find());
    std::vector<std::string> sections;
    for (const std::string& message : trace.Messages()) {
        if (message.starts_with("ParseINFFile(): ")) {
            const auto begin = message.find("section name=") + 13;
            sections.push_back(message.substr(begin, message.find(", file name") - begin));
        }
    }
    EXPECT_THAT(sections, ElementsAre("Norda.NTamd64.6.1", "Norda.NTamd64.6.0"));
}

TEST_F(InfSearch, WithoutModelSectionsNothingMatches)
{
    WriteIni("");
    WriteInf("tav1.inf", QualifiedInf(kKey));
    EXPECT_FALSE(Find());
    EXPECT_THAT(CopiedInfList.names, ElementsAre("tav1.inf")) << "it still qualified";
}

TEST_F(InfSearch, Utf16InfFilesAreReportedAndStillSearched)
{
    std::string content("\xFF\xFE");
    for (const char c : QualifiedInf(kKey)) {
        content += c;
        content += '\0';
    }
    WriteInf("tav1.inf", content);
    TraceCapture trace;
    EXPECT_TRUE(Find());
    EXPECT_THAT(trace.Messages(),
                IsSupersetOf(std::vector<std::string>{"file is Unicode\n", "matched:" + std::string(kKey) + "\n"}));
}

TEST_F(InfSearch, EmptyAndBinaryFilesAndDirectoriesOfThatNameDoNotQualify)
{
    std::string binary;
    for (int index = 0; index < 50000; ++index) {
        binary += static_cast<char>(index * 31 % 257);
    }
    WriteInf("empty.inf", "");
    WriteInf("binary.inf", binary);
    WriteInf("zeros.inf", std::string(5000, '\0'));
    WriteInf(R"(directory.inf\file.txt)", "x");
    for (const char* const family : {"Windows Vista", "Windows NT"}) {
        TraceCapture trace;
        EXPECT_FALSE(Find(family));
        EXPECT_THAT(Processed(trace.Messages()),
                    testing::UnorderedElementsAre("empty.inf", "binary.inf", "zeros.inf", "directory.inf"));
    }
    EXPECT_THAT(CopiedInfList.names, IsEmpty());
}

TEST_F(InfSearch, VeryLongDirectoryAndFileNamesDoNotMatchAndDoNoHarm)
{
    EXPECT_FALSE(
        GetInfFile(kKey, m_directory.At(std::string(300, 'd')), RecordOf("Windows Vista"), m_infPath.data(), {}));
    EXPECT_FALSE(GetInfFile(std::string(5000, 'k').c_str(), std::string(5000, 'd'), RecordOf("Windows Vista"),
                            m_infPath.data(), {}));
    EXPECT_FALSE(GetInfFile(nullptr, "", RecordOf(""), m_infPath.data(), {}));
    EXPECT_EQ(m_infPath[0], '\0');
}

TEST_F(InfSearch, ASearchForAnotherSystemNeedsNoMachineOfThatKind)
{
    WriteFileBytes(m_directory.At(R"(Setup\Morvix.ini)"), "[WinXP32]\r\nInfSectionName=A,B\r\n");
    const InfSearchRules rules = ReadSearchRules(InstallerSearch(osWINXP32, "Windows Whistler"), {"x.inf"});
    EXPECT_EQ(rules.expectedSignature, "$Windows NT$");
    EXPECT_THAT(rules.sectionNames, ElementsAre("B", "A"));
    EXPECT_THAT(rules.excludes, ElementsAre("x.inf"));
    RunOptions.forceInfScan = true;
    EXPECT_THAT(ReadSearchRules(InstallerSearch(osWINXP32, "Windows Whistler"), {"x.inf"}).excludes, IsEmpty());
}
