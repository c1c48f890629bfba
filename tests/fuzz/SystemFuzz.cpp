// Which system it is and its language, where the program is, and which settings of iSCSI and FCoE boot are valid.

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "AddressRules.h"
#include "FcoeRules.h"
#include "ISCSIRules.h"
#include "LanguageTable.h"
#include "LocationInfo.h"
#include "OSCode.h"
#include "OSPredicates.h"
#include "Promise.h"

namespace {
class Verifier : public LaterSystemVerifier
{
public:
    Verifier(bool sixOne, bool sixTwoOrLater) : m_sixOne(sixOne), m_sixTwoOrLater(sixTwoOrLater) {}
    [[nodiscard]] bool IsSixOne() const override { return m_sixOne; }
    [[nodiscard]] bool IsSixTwoOrLater() const override { return m_sixTwoOrLater; }

private:
    bool m_sixOne;
    bool m_sixTwoOrLater;
};

struct SystemOfTheTable
{
    OSCode code;
    uint32_t major;
    uint32_t minor;
    uint32_t platform;         // 0: any
    std::string_view products; // digits of the product types; empty: any
    char processor;            // 'x' x64, 'i' IA-64, 'o' neither, 'n' not x64, '*' any
};

// Every system that has a code, as rows; everything else has none.
constexpr std::array kTable = std::to_array<SystemOfTheTable>({
    {osWIN95, 4, 0, 1, "", '*'},          {osWIN98, 4, 10, 1, "", '*'},
    {osWINME, 4, 90, 1, "", '*'},         {osWINNT351, 3, 51, 2, "", '*'},
    {osWINNT4, 4, 0, 2, "", '*'},         {osWIN2K, 5, 0, 2, "", '*'},
    {osWINXP32, 5, 1, 2, "", '*'},        {osWINXP64, 5, 2, 2, "1", 'i'},
    {osWINXP32E, 5, 2, 2, "1", 'x'},      {osWIN2K3SRV32, 5, 2, 2, "23", 'o'},
    {osWIN2K3SRV64, 5, 2, 2, "23", 'i'},  {osWIN2K3SRV32E, 5, 2, 2, "23", 'x'},
    {osWINVISTA32, 6, 0, 0, "1", 'n'},    {osWINVISTA32E, 6, 0, 0, "1", 'x'},
    {osLONGHORN32, 6, 0, 0, "23", 'o'},   {osLONGHORN32E, 6, 0, 0, "23", 'x'},
    {osLONGHORN64, 6, 0, 0, "23", 'i'},   {osWINSEVEN32, 6, 1, 0, "1", 'n'},
    {osWINSEVEN32E, 6, 1, 0, "1", 'x'},   {osWIN2K8R232E, 6, 1, 0, "0234", 'x'},
    {osWIN2K8R264, 6, 1, 0, "0234", 'i'}, {osWINEIGHT32, 6, 2, 0, "", 'n'},
    {osWINEIGHT32E, 6, 2, 0, "1", 'x'},   {osWINEIGHTSRV32E, 6, 2, 0, "0234", 'x'},
});

bool FitsProcessor(char wanted, const SystemFacts& facts)
{
    const char processor = facts.architecture == 9 ? 'x' : facts.architecture == 6 ? 'i' : 'o';
    return wanted == '*' || wanted == processor || (wanted == 'n' && processor != 'x');
}

OSCode CodeOfTheTable(const SystemFacts& facts)
{
    for (const SystemOfTheTable& row : kTable) {
        const char product = static_cast<char>('0' + facts.productType);
        if (facts.valid && row.major == facts.majorVersion && row.minor == facts.minorVersion &&
            (row.platform == 0 || row.platform == facts.platform) &&
            (row.products.empty() || row.products.find(product) != std::string_view::npos) &&
            FitsProcessor(row.processor, facts)) {
            return row.code;
        }
    }
    return osUNSUPPORTED;
}

/// The code for a process to which 6.0 is reported.
OSCode Corrected(OSCode told, const SystemFacts& facts, const Verifier& verifier)
{
    const bool workstation = facts.productType == 1;
    if (verifier.IsSixOne()) {
        if (workstation) {
            return told;
        }
        return facts.architecture == 9 ? osWIN2K8R232E : facts.architecture == 6 ? osWIN2K8R264 : told;
    }
    if (!verifier.IsSixTwoOrLater()) {
        return told;
    }
    return facts.architecture != 9 ? osWINEIGHT32 : workstation ? osWINEIGHT32E : osWINEIGHTSRV32E;
}

SystemFacts SomeSystem(FuzzedDataProvider& input)
{
    SystemFacts facts;
    facts.valid = input.ConsumeIntegralInRange(0, 15) != 0;
    facts.majorVersion = input.ConsumeBool() ? input.ConsumeIntegralInRange<uint32_t>(3, 10)
                                             : input.PickValueInArray<uint32_t>({4, 5, 6, 6, 0, 0xFFFFFFFF});
    facts.minorVersion = input.PickValueInArray<uint32_t>({0, 0, 1, 2, 3, 10, 51, 90, 0xFFFFFFFF});
    facts.platform = input.ConsumeIntegralInRange<uint32_t>(0, 3);
    facts.productType = input.ConsumeIntegralInRange<uint8_t>(0, 4);
    facts.servicePackMajor = input.ConsumeIntegralInRange<uint16_t>(0, 3);
    const auto architecture = input.PickValueInArray<uint16_t>({0, 5, 6, 9, 9, 12, 0xFFFF});
    facts.architecture = architecture == 0xFFFF ? std::nullopt : std::optional(architecture);
    return facts;
}

void CheckCode(OSCode code, const SystemFacts& facts)
{
    Promise(code <= osWINEIGHTSRV32E && RowOf(code).code == code, "a code of the enumeration");
    Promise(IsServed(code) == (code >= osWINXP32), "served from Windows XP on");
    const int families = IsWin2K3Family(code) + IsVistaFamily(code) + IsWin2K8Family(code) + IsWin7Family(code) +
                         IsWin2K8R2Family(code) + IsWin8Family(code);
    Promise(families == (code >= osWIN2K3SRV32 ? 1 : 0), "one family for each code from Server 2003 on");
    Promise(IsWin8Family(code) == (IsWin8Workstation(code) || IsWin8Server(code)), "a 6.2 system is one of the two");
    Promise(IsServerOrVistaLater(code) == ((code >= 10 && code <= 19) || (code >= 22 && code <= 24)),
            "10-19 and 22-24");
    Promise(IsWorkstationOS(code) == (code == 7 || code == 9 || code == 13 || code == 14 || code == 18 || code == 19 ||
                                      code == 22 || code == 23),
            "the workstations, without the IA-64 one of 5.2");
    Promise(CanBeServerCore(code) == ((code >= 15 && code <= 17) || code == 20 || code == 21), "6.0 and 6.1 servers");
    Promise(!IsModernServer(code, facts) || !IsWorkstationOS(code), "a server is no workstation");
    Promise(IsXPOrLater(facts) <= IsNT5OrLater(facts) && IsNT6OrLater(facts) <= IsXPOrLater(facts), "later is later");
    const int generation = OSGeneration(code, facts);
    Promise(generation != 0 || !IsNT6OrLater(facts), "no system of 6.0 or later in generation 0");
    Promise(Win2K3ServicePack(code, facts) == (IsWin2K3Family(code) ? facts.servicePackMajor : 0U), "of 2003 only");
    Promise(!CanBootOverISCSI(code, facts) || (facts.valid && (IsNT6OrLater(facts) || IsWin2K3Family(code))),
            "nothing older than Server 2003 boots over iSCSI");
    Promise(ServicePackHasInitiatorHotFix(code, facts) <= (IsWin2K3Family(code) ? 1 : 0), "a hotfix of Server 2003");
    Promise(IsServer2008DumpHotFixNeeded(code, facts) == (IsWin2K8Family(code) && facts.servicePackMajor < 2),
            "a hotfix of Server 2008");
    Promise(DescribeSystem(facts).size() <= 259, "one line of at most 259 characters");
}

void CheckSystem(FuzzedDataProvider& input)
{
    const SystemFacts facts = SomeSystem(input);
    const Verifier verifier(input.ConsumeBool(), input.ConsumeBool());
    OSCode expected = CodeOfTheTable(facts);
    if (facts.valid && facts.majorVersion == 6 && facts.minorVersion == 0) {
        expected = Corrected(expected, facts, verifier);
    }
    const OSCode code = DecideOSCode(facts, verifier);
    Promise(code == expected, "the system of the table");
    CheckCode(code, facts);
    Promise(RowOf(static_cast<OSCode>(input.ConsumeIntegralInRange<uint32_t>(25, 0xFFFFFFFF))).code == osUNSUPPORTED,
            "a number outside the enumeration is no system");
}

void CheckLanguage(uint16_t system, int size)
{
    const RunLanguage language = LanguageForSystem(system);
    Promise(language.code3.empty() == (language.id == 0), "a code for each language that is supported");
    Promise(language.code3.empty() || language.code3.size() == 3, "of three letters");
    Promise(language.id == 0 || (language.id & 0x3FF) == (system & 0x3FF), "in the system's own language");
    const ExactBuffer code3(static_cast<std::size_t>(std::max(size, 0)));
    const uint16_t answer = LanguageAnswer(system, code3.Data(), size);
    Promise(answer == (size < 4 ? system : language.id), "the system's own identifier where the code does not fit");
    std::string expected(size < 4 ? std::string_view() : language.code3);
    expected.resize(code3.Size(), '\0');
    Promise(code3.Text() == expected, "the code and zeros after it");
    Promise(LanguageAnswer(system, nullptr, size) == language.id, "no code asked for");
    Promise(RunLanguageIdFor(language.id) != 0, "the run always speaks a language");
}

bool NoLeadByte(unsigned char)
{
    return false;
}

void CheckLocation(const std::string& program, std::string invoked)
{
    const std::string before = invoked;
    const std::string path = FullProgramPath(program, invoked, NoLeadByte);
    const bool whole = program.find(':') != std::string::npos || program.find(R"(\\)") != std::string::npos;
    const std::string directory = before.empty() || before.back() != '\\' ? before + '\\' : before;
    Promise(path == (whole ? program : directory + program), "the path of the program");
    Promise(invoked == (whole ? before : directory), "a directory to build on ends with a backslash");
    const std::string parent = DirectoryOf(path, NoLeadByte);
    const std::size_t cut = path.find_last_of('\\');
    Promise(parent == (cut == std::string::npos ? path : path.substr(0, cut)), "up to the last backslash");
}

void CheckSettings(FuzzedDataProvider& input, const std::string& text)
{
    const auto address = input.ConsumeIntegral<uint32_t>();
    const unsigned first = address % 256;
    Promise(FirstOctet(address) == first, "the lowest eight bits");
    Promise(IsFirstOctetBetween(address, 1) == (first >= 1 && first <= 223), "a machine's address");
    Promise(IsFirstOctetBetween(address, 0) == (first <= 223), "a gateway's address");
    // A valid mask: ones in front, at least one of them, and at least one zero.
    const auto ones = input.ConsumeIntegralInRange<unsigned>(0, 32);
    const uint32_t fromOnes = static_cast<uint32_t>(~((uint64_t{1} << (32 - ones)) - 1));
    for (const uint32_t mask : {address, fromOnes, fromOnes ^ address % 3}) {
        const uint32_t stored = (mask >> 24) | ((mask >> 8) & 0xFF00) | ((mask << 8) & 0xFF0000) | (mask << 24);
        const bool begins = (mask & 0x80000000) != 0;
        const bool contiguous = std::countl_one(mask) == std::popcount(mask) && mask != 0xFFFFFFFF;
        const MaskVerdict expected = !begins      ? MaskVerdict::FirstOctetTooSmall
                                     : contiguous ? MaskVerdict::Valid
                                                  : MaskVerdict::OneAfterZero;
        Promise(JudgeSubnetMask(stored) == expected, "ones in front, but not ones only");
    }
    const auto number = input.ConsumeIntegral<int32_t>();
    const auto near = input.ConsumeIntegralInRange<int32_t>(-2, 70000);
    for (const int32_t value : {number, near}) {
        const auto counted = static_cast<uint32_t>(value);
        Promise(IsTargetPortInRange(value) == (value > 1024 && value < 65536), "1025 to 65535");
        Promise(IsBootLunInRange(counted) == (counted < 256), "0 to 255");
        Promise(IsVlanIdInRange(counted) == (counted < 4097), "0 to 4096");
        Promise(IsFcoeLunInRange(std::to_string(value).c_str()) == (counted < 4096), "0 to 4095");
        Promise(IsFcoeLunInRange(("  " + std::to_string(value) + "x").c_str()) == (counted < 4096), "digits count");
    }
    const double read = std::strtod(text.find_first_of("xXpPeEiInN.") < text.size() ? "" : text.c_str(), nullptr);
    if (text.find_first_of("xXpPeEiInN.") >= text.size()) {
        Promise(IsFcoeLunInRange(text.c_str()) == (read >= 0 && read <= 4095), "a number of any length");
    }
    const InitiatorVersion version{near < 0 ? 0U : static_cast<uint32_t>(near) % 4, address % 3, address % 4000};
    const bool recent = version.major > 2 || (version.major == 2 && (version.minor > 0 || version.build >= 1895));
    Promise(IsInitiatorRecentEnough(version) == recent, "2.0.1895 or later");
}

void CheckQuery(const std::string& text)
{
    const std::wstring id(text.begin(), text.end());
    const std::wstring query = HotFixQuery(id);
    const std::wstring head = L"SELECT * FROM Win32_QuickFixEngineering WHERE HotFixID = '";
    Promise(query.starts_with(head) && query.ends_with(L'\''), "a query for one identifier");
    // Read as the management service reads it: up to the first quotation mark that nothing escapes.
    std::wstring value;
    std::size_t at = head.size();
    for (; at < query.size() && query[at] != L'\''; ++at) {
        at += query[at] == L'\\' ? 1 : 0;
        value += query.at(at);
    }
    Promise(value == id && at + 1 == query.size(), "no identifier ends the text of the query");
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    CheckSystem(input);
    CheckLanguage(input.ConsumeIntegral<uint16_t>(), input.ConsumeIntegralInRange(-1, 8));
    const std::string text = input.ConsumeRandomLengthString(40);
    CheckSettings(input, text);
    CheckQuery(text);
    CheckLocation(text, input.ConsumeRemainingBytesAsString());
    return 0;
}
