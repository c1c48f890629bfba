#include "OSCode.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>

namespace {
constexpr uint16_t kX64 = kArchitectureX64;
constexpr uint16_t kIA64 = kArchitectureIA64;
constexpr uint16_t kX86 = 0;

/// Answers as prepared and counts the questions.
class ScriptedVerifier : public LaterSystemVerifier
{
public:
    explicit ScriptedVerifier(bool sixOne = false, bool sixTwoOrLater = false)
        : m_sixOne(sixOne), m_sixTwoOrLater(sixTwoOrLater)
    {
    }
    [[nodiscard]] bool IsSixOne() const override
    {
        ++asked;
        return m_sixOne;
    }
    [[nodiscard]] bool IsSixTwoOrLater() const override
    {
        ++asked;
        return m_sixTwoOrLater;
    }
    mutable int asked = 0;

private:
    bool m_sixOne;
    bool m_sixTwoOrLater;
};

SystemFacts Facts(uint32_t majorVersion, uint32_t minorVersion, uint32_t platform, uint8_t productType,
                  std::optional<uint16_t> architecture)
{
    SystemFacts facts;
    facts.valid = true;
    facts.majorVersion = majorVersion;
    facts.minorVersion = minorVersion;
    facts.platform = platform;
    facts.productType = productType;
    facts.architecture = architecture;
    return facts;
}

SystemFacts Nt(uint32_t majorVersion, uint32_t minorVersion, uint8_t productType, std::optional<uint16_t> architecture)
{
    return Facts(majorVersion, minorVersion, kPlatformNT, productType, architecture);
}

OSCode Decide(const SystemFacts& facts)
{
    return DecideOSCode(facts, ScriptedVerifier());
}

struct DecisionRow
{
    SystemFacts facts;
    OSCode code;
};

std::string Name(const SystemFacts& facts)
{
    return std::to_string(facts.majorVersion) + "." + std::to_string(facts.minorVersion) + " platform " +
           std::to_string(facts.platform) + " product " + std::to_string(facts.productType) + " architecture " +
           (facts.architecture ? std::to_string(*facts.architecture) : "unknown");
}
} // namespace

TEST(OSCode, NumbersAreFixed)
{
    const std::map<OSCode, uint32_t> numbers{
        {osUNSUPPORTED, 0},  {osWIN95, 1},        {osWIN98, 2},         {osWINME, 3},        {osWINNT351, 4},
        {osWINNT4, 5},       {osWIN2K, 6},        {osWINXP32, 7},       {osWINXP64, 8},      {osWINXP32E, 9},
        {osWIN2K3SRV32, 10}, {osWIN2K3SRV64, 11}, {osWIN2K3SRV32E, 12}, {osWINVISTA32, 13},  {osWINVISTA32E, 14},
        {osLONGHORN32, 15},  {osLONGHORN32E, 16}, {osLONGHORN64, 17},   {osWINSEVEN32, 18},  {osWINSEVEN32E, 19},
        {osWIN2K8R232E, 20}, {osWIN2K8R264, 21},  {osWINEIGHT32, 22},   {osWINEIGHT32E, 23}, {osWINEIGHTSRV32E, 24},
    };
    EXPECT_EQ(numbers.size(), 25U);
    for (const auto& [code, number] : numbers) {
        EXPECT_EQ(static_cast<uint32_t>(code), number);
    }
}

TEST(OSCode, ServedSystemsHaveTheirSectionKeyAndDetectionLine)
{
    const std::map<uint32_t, std::pair<std::string, std::string>> expected{
        {7, {"WinXP32", "osWINXP32 detected\n"}},           {8, {"WinXP64", "osWINXP64 detected\n"}},
        {9, {"WinXP32E", "osWINXP32E detected\n"}},         {10, {"WinSrv2K332", "osWIN2K3SRV32 detected\n"}},
        {11, {"WinSrv2K364", "osWIN2K3SRV64 detected\n"}},  {12, {"WinSrv2K332E", "osWIN2K3SRV32E detected\n"}},
        {13, {"WinVista32", "osWINVISTA32 detected\n"}},    {14, {"WinVista32E", "osWINVISTA32E detected\n"}},
        {15, {"WinSrv2K832", "osLONGHORN32 detected\n"}},   {16, {"WinSrv2K832E", "osLONGHORN32E detected\n"}},
        {17, {"WinSrv2K864", "osLONGHORN64 detected\n"}},   {18, {"Win732", "osWINSEVEN32 detected\n"}},
        {19, {"Win732E", "osWINSEVEN32E detected\n"}},      {20, {"WinSrv2K8R232E", "osWIN2K8R232E detected\n"}},
        {21, {"WinSrv2K8R264", "osWIN2K8R264 detected\n"}}, {22, {"Win832", "osWINEIGHT32 detected\n"}},
        {23, {"Win832E", "osWINEIGHT32E detected\n"}},      {24, {"Win832E", "osWINEIGHT32E detected\n"}},
    };
    for (uint32_t code = 7; code <= 24; ++code) {
        EXPECT_TRUE(IsServed(static_cast<OSCode>(code))) << code;
        EXPECT_EQ(RowOf(static_cast<OSCode>(code)).sectionKey, expected.at(code).first);
        EXPECT_EQ(RowOf(static_cast<OSCode>(code)).detectionLine, expected.at(code).second);
    }
}

TEST(OSCode, SixTwoServerSharesSectionAndLineWithItsWorkstationAndNobodyElseShares)
{
    EXPECT_EQ(RowOf(osWINEIGHTSRV32E).sectionKey, RowOf(osWINEIGHT32E).sectionKey);
    EXPECT_EQ(RowOf(osWINEIGHTSRV32E).detectionLine, RowOf(osWINEIGHT32E).detectionLine);
    std::set<std::string_view> keys;
    std::set<std::string_view> lines;
    for (uint32_t code = 7; code <= 22; ++code) {
        keys.insert(RowOf(static_cast<OSCode>(code)).sectionKey);
        lines.insert(RowOf(static_cast<OSCode>(code)).detectionLine);
    }
    EXPECT_EQ(keys.size(), 16U);
    EXPECT_EQ(lines.size(), 16U);
    EXPECT_FALSE(keys.contains("Win832E"));
}

TEST(OSCode, CodesZeroToSixAndUnknownNumbersAreNotServed)
{
    for (const uint32_t code : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 25U, 0xFFFFFFFFU}) {
        EXPECT_FALSE(IsServed(static_cast<OSCode>(code))) << code;
        EXPECT_EQ(RowOf(static_cast<OSCode>(code)).sectionKey, "") << code;
        EXPECT_EQ(RowOf(static_cast<OSCode>(code)).detectionLine, "unsupported os detected\n") << code;
        EXPECT_EQ(RowOf(static_cast<OSCode>(code)).code, code < kSystems.size() ? code : osUNSUPPORTED);
    }
}

TEST(DecideOSCode, KnowsEverySystemByVersionPlatformProductAndProcessor)
{
    const std::vector<DecisionRow> rows{
        {Facts(4, 0, kPlatform9x, 0, kX86), osWIN95},
        {Facts(4, 10, kPlatform9x, 0, kX86), osWIN98},
        {Facts(4, 90, kPlatform9x, 0, std::nullopt), osWINME},
        {Nt(3, 51, 0, std::nullopt), osWINNT351},
        {Nt(4, 0, 0, std::nullopt), osWINNT4},
        {Nt(4, 0, 3, kX86), osWINNT4},
        {Nt(5, 0, 1, std::nullopt), osWIN2K},
        {Nt(5, 0, 3, kX86), osWIN2K},
        {Nt(5, 1, 1, kX86), osWINXP32},
        {Nt(5, 1, 1, kX64), osWINXP32},
        {Nt(5, 2, 1, kX64), osWINXP32E},
        {Nt(5, 2, 1, kIA64), osWINXP64},
        {Nt(5, 2, 2, kX86), osWIN2K3SRV32},
        {Nt(5, 2, 3, std::nullopt), osWIN2K3SRV32},
        {Nt(5, 2, 2, kIA64), osWIN2K3SRV64},
        {Nt(5, 2, 3, kIA64), osWIN2K3SRV64},
        {Nt(5, 2, 2, kX64), osWIN2K3SRV32E},
        {Nt(5, 2, 3, kX64), osWIN2K3SRV32E},
        {Nt(6, 0, 1, kX86), osWINVISTA32},
        {Nt(6, 0, 1, std::nullopt), osWINVISTA32},
        {Nt(6, 0, 1, kX64), osWINVISTA32E},
        {Nt(6, 0, 2, kX86), osLONGHORN32},
        {Nt(6, 0, 3, std::nullopt), osLONGHORN32},
        {Nt(6, 0, 2, kX64), osLONGHORN32E},
        {Nt(6, 0, 3, kX64), osLONGHORN32E},
        {Nt(6, 0, 2, kIA64), osLONGHORN64},
        {Nt(6, 0, 3, kIA64), osLONGHORN64},
        {Nt(6, 1, 1, kX86), osWINSEVEN32},
        {Nt(6, 1, 1, kIA64), osWINSEVEN32},
        {Nt(6, 1, 1, kX64), osWINSEVEN32E},
        {Nt(6, 1, 2, kX64), osWIN2K8R232E},
        {Nt(6, 1, 3, kX64), osWIN2K8R232E},
        {Nt(6, 1, 0, kX64), osWIN2K8R232E},
        {Nt(6, 1, 3, kIA64), osWIN2K8R264},
        {Nt(6, 1, 0, kIA64), osWIN2K8R264},
        {Nt(6, 2, 1, kX86), osWINEIGHT32},
        {Nt(6, 2, 1, kIA64), osWINEIGHT32},
        {Nt(6, 2, 1, kX64), osWINEIGHT32E},
        {Nt(6, 2, 2, kX64), osWINEIGHTSRV32E},
        {Nt(6, 2, 3, kX64), osWINEIGHTSRV32E},
        {Nt(6, 2, 0, kX64), osWINEIGHTSRV32E},
    };
    std::set<OSCode> reached;
    for (const DecisionRow& row : rows) {
        EXPECT_EQ(Decide(row.facts), row.code) << Name(row.facts);
        reached.insert(row.code);
    }
    EXPECT_EQ(reached.size(), 24U) << "every code but osUNSUPPORTED has a row";
}

TEST(DecideOSCode, EverythingElseIsUnsupported)
{
    const std::vector<SystemFacts> unknown{
        Facts(4, 1, kPlatform9x, 0, kX86),
        Facts(4, 91, kPlatform9x, 0, kX86),
        Facts(3, 51, kPlatform9x, 0, kX86),
        Nt(3, 50, 0, kX86),
        Nt(4, 10, 0, kX86),
        Facts(5, 0, kPlatform9x, 1, kX86),
        Facts(5, 1, kPlatform9x, 1, kX86),
        Facts(5, 2, kPlatform9x, 3, kX64),
        Facts(5, 2, 3, 1, kX64),
        Nt(5, 3, 1, kX64),
        Nt(6, 4, 1, kX64),
        Nt(7, 0, 1, kX64),
        Nt(0, 0, 0, kX64),
        Nt(11, 0, 3, kX64),
        Facts(0, 0, 0, 0, std::nullopt),
        Nt(5, 2, 4, kX64),
        Nt(6, 0, 4, kX64),
    };
    for (const SystemFacts& facts : unknown) {
        EXPECT_EQ(Decide(facts), osUNSUPPORTED) << Name(facts);
    }
}

TEST(DecideOSCode, UnreadableVersionIsUnsupported)
{
    SystemFacts facts = Nt(6, 1, 1, kX64);
    facts.valid = false;
    EXPECT_EQ(Decide(facts), osUNSUPPORTED);
}

TEST(DecideOSCode, SixOneServerOnX64HasItsSectionAndA32BitOneHasNone)
{
    const OSCode x64 = Decide(Nt(6, 1, kProductServer, kX64));
    EXPECT_EQ(x64, osWIN2K8R232E);
    EXPECT_EQ(RowOf(x64).sectionKey, "WinSrv2K8R232E");
    for (const std::optional<uint16_t>& architecture : {std::optional<uint16_t>(kX86), std::optional<uint16_t>()}) {
        const OSCode x86 = Decide(Nt(6, 1, kProductServer, architecture));
        EXPECT_EQ(x86, osUNSUPPORTED);
        EXPECT_EQ(RowOf(x86).sectionKey, "");
    }
}

TEST(DecideOSCode, SixTwoServerOnX64IsCode24)
{
    EXPECT_EQ(Decide(Nt(6, 2, kProductServer, kX64)), 24U);
    EXPECT_EQ(Decide(Nt(6, 2, kProductDomainController, kX64)), 24U);
}

TEST(DecideOSCode, ThirtyTwoBitSixTwoServerHasNoServerCode)
{
    const OSCode code = Decide(Nt(6, 2, kProductServer, kX86));
    EXPECT_EQ(code, osWINEIGHT32);
    EXPECT_EQ(RowOf(code).sectionKey, "Win832");
}

TEST(DecideOSCode, ASixOneServerReportedAsSixZeroIsRecognised)
{
    const ScriptedVerifier sixOne(true, false);
    EXPECT_EQ(DecideOSCode(Nt(6, 0, kProductServer, kX64), sixOne), osWIN2K8R232E);
    EXPECT_EQ(DecideOSCode(Nt(6, 0, kProductDomainController, kX64), sixOne), osWIN2K8R232E);
    EXPECT_EQ(DecideOSCode(Nt(6, 0, kProductServer, kIA64), sixOne), osWIN2K8R264);
    EXPECT_EQ(DecideOSCode(Nt(6, 0, kProductServer, kX86), sixOne), osLONGHORN32);
    EXPECT_EQ(DecideOSCode(Nt(6, 0, 0, kX64), sixOne), osWIN2K8R232E);
    EXPECT_EQ(DecideOSCode(Nt(6, 0, 0, kX86), sixOne), osUNSUPPORTED);
}

TEST(DecideOSCode, ASixOneWorkstationReportedAsSixZeroStaysASixZeroWorkstation)
{
    const ScriptedVerifier sixOne(true, true);
    EXPECT_EQ(DecideOSCode(Nt(6, 0, kProductWorkstation, kX64), sixOne), osWINVISTA32E);
    EXPECT_EQ(DecideOSCode(Nt(6, 0, kProductWorkstation, kX86), sixOne), osWINVISTA32);
    EXPECT_EQ(DecideOSCode(Nt(6, 0, kProductWorkstation, kIA64), sixOne), osWINVISTA32);
    EXPECT_EQ(sixOne.asked, 3) << "the second question is not asked once the first one is answered";
}

TEST(DecideOSCode, ASixTwoOrLaterSystemReportedAsSixZeroIsASixTwoSystem)
{
    const ScriptedVerifier sixTwo(false, true);
    EXPECT_EQ(DecideOSCode(Nt(6, 0, kProductWorkstation, kX64), sixTwo), osWINEIGHT32E);
    EXPECT_EQ(DecideOSCode(Nt(6, 0, kProductServer, kX64), sixTwo), osWINEIGHTSRV32E);
    EXPECT_EQ(DecideOSCode(Nt(6, 0, kProductDomainController, kX64), sixTwo), osWINEIGHTSRV32E);
    EXPECT_EQ(DecideOSCode(Nt(6, 0, 0, kX64), sixTwo), osWINEIGHTSRV32E);
    EXPECT_EQ(DecideOSCode(Nt(6, 0, kProductWorkstation, kX86), sixTwo), osWINEIGHT32);
    EXPECT_EQ(DecideOSCode(Nt(6, 0, kProductServer, kIA64), sixTwo), osWINEIGHT32);
    EXPECT_EQ(DecideOSCode(Nt(6, 0, kProductServer, std::nullopt), sixTwo), osWINEIGHT32);
}

TEST(DecideOSCode, TheSystemIsVerifiedOnlyWhenItReportsSixZero)
{
    for (const SystemFacts& facts : {Nt(5, 2, 3, kX64), Nt(6, 1, 3, kX64), Nt(6, 2, 1, kX64), Nt(6, 3, 1, kX64),
                                     Nt(10, 0, 1, kX64), Nt(5, 0, 1, kX86), Facts(4, 0, kPlatform9x, 0, kX86)}) {
        const ScriptedVerifier verifier(true, true);
        EXPECT_EQ(DecideOSCode(facts, verifier), Decide(facts)) << Name(facts);
        EXPECT_EQ(verifier.asked, 0) << Name(facts);
    }
    const ScriptedVerifier none;
    EXPECT_EQ(DecideOSCode(Nt(6, 0, kProductServer, kX64), none), osLONGHORN32E);
    EXPECT_EQ(none.asked, 2);
}

TEST(DecideOSCode, VersionsSixThreeAndTenReportedAsSuchAreUnsupported)
{
    const ScriptedVerifier later(false, true);
    EXPECT_EQ(DecideOSCode(Nt(6, 3, kProductWorkstation, kX64), later), osUNSUPPORTED);
    EXPECT_EQ(DecideOSCode(Nt(6, 3, kProductServer, kX64), later), osUNSUPPORTED);
    EXPECT_EQ(DecideOSCode(Nt(10, 0, kProductWorkstation, kX64), later), osUNSUPPORTED);
}

TEST(DecideOSCode, FiveTwoWithoutAProductTypeIsUnsupported)
{
    EXPECT_EQ(Decide(Nt(5, 2, 0, kX64)), osUNSUPPORTED);
    EXPECT_EQ(Decide(Nt(5, 2, 0, kIA64)), osUNSUPPORTED);
    EXPECT_EQ(Decide(Nt(5, 2, 0, kX86)), osUNSUPPORTED);
}

TEST(DecideOSCode, FiveTwoWorkstationWithoutA64BitProcessorIsUnsupported)
{
    EXPECT_EQ(Decide(Nt(5, 2, kProductWorkstation, kX86)), osUNSUPPORTED);
    EXPECT_EQ(Decide(Nt(5, 2, kProductWorkstation, std::nullopt)), osUNSUPPORTED);
}

TEST(DecideOSCode, IA64WorkstationsAreTheirFamilys32BitCodeOnSixZeroAndTheirOwnOnFiveTwo)
{
    EXPECT_EQ(Decide(Nt(6, 0, kProductWorkstation, kIA64)), 13U);
    EXPECT_EQ(Decide(Nt(5, 2, kProductWorkstation, kIA64)), 8U);
}

TEST(DecideOSCode, ThePlatformDoesNotCountForVersionSix)
{
    EXPECT_EQ(Decide(Facts(6, 1, kPlatform9x, kProductWorkstation, kX64)), osWINSEVEN32E);
    EXPECT_EQ(Decide(Facts(6, 0, 0, kProductServer, kX64)), osLONGHORN32E);
    EXPECT_EQ(Decide(Facts(6, 2, 3, kProductWorkstation, kX64)), osWINEIGHT32E);
}
