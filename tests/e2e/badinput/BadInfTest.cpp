// Malformed INF files: each is judged by what the platform reads from it, and the next file is still reached.

#include <gmock/gmock.h>

#include <functional>
#include <ostream>

#include "Adapter.h"
#include "BadFiles.h"
#include "EmulatedSystem.h"
#include "OwnInfs.h"
#include "PlatformView.h"

namespace {
using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr char kDevice[] = "VEN_5D1A&DEV_7A01&SUBSYS_00115D1A&REV_03";

struct BadInf
{
    const char* name;
    std::function<std::string(const std::string& good)> content;
    Verdict verdict;
    bool portable = true; ///< every platform reads it alike; otherwise as Wine does
};

void PrintTo(const BadInf& tested, std::ostream* out)
{
    *out << tested.name;
}

/// The good file with lines in front of its device's line.
std::string WithModelLine(const std::string& good, const std::string& line)
{
    return Replaced(good, "%Nic.DeviceDesc%=", line + "\r\n%Nic.DeviceDesc%=");
}

std::string WithIdOf(const std::string& good, std::size_t length)
{
    return WithModelLine(good, R"(%Long%=Nic.ndi, PCI\)" + std::string(length, 'V'));
}

class BadInfFile : public DoubleRun, public testing::WithParamInterface<BadInf>
{
protected:
    BadInfFile()
    {
        const std::string content = GetParam().content(InfFor(kDevice));
        m_unicode = content.starts_with(kUtf16Mark);
        WriteInf("first.inf", content);
        WriteInf("second.inf", InfFor(kDevice));
    }

    [[nodiscard]] Verdict Expected()
    {
        return GetParam().portable || RunsInWine() ? GetParam().verdict
                                                   : VerdictByThePlatform(Folder().At("Inf\\first.inf"), kDevice);
    }

    [[nodiscard]] const char* EncodingLine() const { return m_unicode ? "file is Unicode\n" : "file is not Unicode\n"; }

    const Adapter m_adapter{kDevice};

private:
    bool m_unicode = false;
};

TEST_P(BadInfFile, IsJudgedByWhatThePlatformReadsAndTheNextFileIsReached)
{
    const Verdict expected = Expected();
    EXPECT_EQ(VerdictByThePlatform(Folder().At("Inf\\first.inf"), kDevice), expected);

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    std::vector<std::string> said{"processing: first.inf\n", "Entering - IsFileUnicode", EncodingLine()};
    if (expected == Verdict::Refused) {
        said.emplace_back("signature section match for this OS not found\n");
    }
    if (expected == Verdict::Refused || expected == Verdict::NotOurs) {
        said.emplace_back("processing: second.inf\n");
        EXPECT_THAT(run.Between("processing: first.inf\n", "processing: second.inf\n"), ElementsAreArray(said));
    } else {
        EXPECT_EQ(run.Count("Adding INF first.infto vector\n"), 1u);
    }
    const bool serves = expected == Verdict::Serves;
    EXPECT_EQ(run.Traced("processing: second.inf\n"), !serves);
    EXPECT_EQ(run.Count("matched:" + std::string(kDevice) + "\n"), 1u);
    EXPECT_EQ(run.Count("!!FOUND INF MATCH\n"), 1u);
    EXPECT_THAT(Installs(), ElementsAre(InstallLine(serves ? "Inf\\first.inf" : "Inf\\second.inf", kDevice)));
}

using Text = const std::string&;

const std::vector<BadInf> kBadInfs = {
    {"Empty", [](Text) { return std::string(); }, Verdict::Refused},
    {"OneBracket", [](Text) { return std::string("["); }, Verdict::Refused},
    {"Binary", [](Text) { return BinaryNoise(65536); }, Verdict::Refused},
    {"Zeros", [](Text) { return std::string(65536, '\0'); }, Verdict::Refused},
    {"FiftyMegabytesInFront", [](Text good) { return FiftyMegabytesOfComments() + good; }, Verdict::Serves},
    {"FiftyMegabytesInTheLastLine", [](Text good) { return good + FiftyMegabyteLine(); }, Verdict::Serves},
    {"OneEndlessLine", OneEndlessLine, Verdict::Refused},
    {"OnlyComments", OnlyComments, Verdict::Refused},
    {"NulsAtLineEnds", WithNuls, Verdict::Serves, false},
    {"OldMacLineEnds", WithOldMacLineEnds, Verdict::Serves, false},
    {"Utf16WithMark", [](Text good) { return kUtf16Mark + AsUtf16(good); }, Verdict::Serves},
    {"Utf16WithoutMark", AsUtf16, Verdict::Refused},
    {"Utf8MarkBeforeAComment", [](Text good) { return kUtf8Mark + (";\r\n" + good); }, Verdict::Serves},
    {"Utf8MarkBeforeASection", [](Text good) { return kUtf8Mark + good; }, Verdict::Serves, false},
    // Of another maker, because the platform's INF store takes half a minute for so many sections.
    {"TenThousandSections",
     [](Text good) { return TenThousandSections() + Replaced(good, "%Mfg%=Norda", "%Mfg%=Contoso"); },
     Verdict::NotOurs},
    {"NoBracketClosed", WithUnclosedBrackets, Verdict::Refused},
    {"VersionNotClosed", [](Text good) { return Replaced(good, "[Version]", "[Version"); }, Verdict::Refused},
    {"ManufacturerNotClosed", [](Text good) { return Replaced(good, "[Manufacturer]", "[Manufacturer"); },
     Verdict::NotOurs},
    {"ModelsNotClosed",
     [](Text good) { return Replaced(good, "[" + std::string(kModelSection) + "]", "[" + std::string(kModelSection)); },
     Verdict::Stored},
    {"IdOf259", [](Text good) { return WithIdOf(good, 259); }, Verdict::Serves},
    {"IdOf260", [](Text good) { return WithIdOf(good, 260); }, Verdict::Serves},
    // The section's 32767 characters end within it.
    {"IdOf32767", [](Text good) { return WithIdOf(good, 32767); }, Verdict::Stored},
    {"SectionNameOf32767", [](Text good) { return "[" + std::string(32767, 's') + "]\r\nKey=Value\r\n" + good; },
     Verdict::Serves},
    {"DescriptionKeyOf259",
     [](Text good) { return Replaced(good, "%Nic.DeviceDesc%", "%" + std::string(257, 'k') + "%"); }, Verdict::Serves},
    {"DescriptionKeyOf260",
     [](Text good) { return Replaced(good, "%Nic.DeviceDesc%", "%" + std::string(258, 'k') + "%"); }, Verdict::Serves},
    {"DescriptionKeyOf32000",
     [](Text good) { return Replaced(good, "%Nic.DeviceDesc%", "%" + std::string(31998, 'k') + "%"); },
     Verdict::Stored},
    {"SignatureOf32767", [](Text good) { return Replaced(good, "$Windows NT$", std::string(32767, '$')); },
     Verdict::Refused},
    {"ManufacturerKeyOf32767",
     [](Text good) { return Replaced(good, "%Mfg%=Norda", "%" + std::string(32765, 'm') + "%=Norda"); },
     Verdict::NotOurs},
    {"DescriptionOfFormatCharacters", [](Text good) { return Replaced(good, kDeviceDescription, "%s%n%s%x %1!s!"); },
     Verdict::Serves},
    {"DescriptionOf32767", [](Text good) { return Replaced(good, kDeviceDescription, std::string(32767, 'd')); },
     Verdict::Serves},
    {"OnlySigns", [](Text good) { return WithModelLine(good, "=\r\n==\r\n%\r\n%%=\\\\\\\r\n,\r\n\\\r\n\"\""); },
     Verdict::Serves},
};

INSTANTIATE_TEST_SUITE_P(Each, BadInfFile, testing::ValuesIn(kBadInfs),
                         [](const testing::TestParamInfo<BadInf>& tested) { return std::string(tested.param.name); });

class InfNames : public DoubleRun
{
};

TEST_F(InfNames, APathThatTheRecordCannotHoldLeavesItsFieldEmptyAndIsNeverCut)
{
    const Adapter adapter(kDevice);
    const std::size_t folder = Folder().At("Inf\\").size();
    // The record holds 255 characters, and 259 is the longest path that the platform's 8-bit functions take.
    for (const std::size_t length : {std::size_t{255}, std::size_t{256}, std::size_t{259}}) {
        const std::string name = "Inf\\" + std::string(length - folder - 4, 'n') + ".inf";
        Folder().Write(name, InfFor(kDevice));
        const FinishedRun run = RunMorvix("/s /nr");
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_EQ(run.Count("!!FOUND INF MATCH\n"), 1u) << length;
        const std::string path = length == 255 ? InfInUpperCase(name) : std::string();
        EXPECT_THAT(Installs(), ElementsAre("InstallForRecord family=[Windows Vista] inf=[" + path + "] id=[PCI\\" +
                                            kDevice + "] flags=0 source=[" + path + "]"))
            << length;
        Folder().Remove(name);
        Folder().Remove("journal.txt");
    }
}
} // namespace
