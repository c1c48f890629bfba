#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "FcoeSupport.h"
#include "ISCSISupport.h"
#include "LibraryTrace.h"

using testing::ElementsAre;

namespace {
struct Checked
{
    bool valid;
    std::vector<std::string> lines;
};

/// Runs one check with a library trace of its own.
Checked Check(const std::function<bool(const CISCSISupport&)>& check)
{
    const CISCSISupport support;
    const LibraryTrace trace;
    const bool valid = check(support);
    return {valid, trace.Messages()};
}

std::string Entry(const std::string& name)
{
    return "Entering CISCSISupport::" + name + "()";
}
std::string Exit(const std::string& name, bool result)
{
    return "Exiting CISCSISupport::" + name + "() -> bRet is " + (result ? "1" : "0");
}

void ExpectAccepted(const Checked& checked, const std::string& name, const std::string& verdict)
{
    EXPECT_TRUE(checked.valid) << name;
    EXPECT_THAT(checked.lines, ElementsAre(Entry(name), verdict, Exit(name, true)));
}
void ExpectAccepted(const Checked& checked, const std::string& name)
{
    EXPECT_TRUE(checked.valid) << name;
    EXPECT_THAT(checked.lines, ElementsAre(Entry(name), Exit(name, true)));
}
void ExpectRejected(const Checked& checked, const std::string& name)
{
    EXPECT_FALSE(checked.valid) << name;
    EXPECT_THAT(checked.lines, ElementsAre(Entry(name), Exit(name, false)));
}
void ExpectRejected(const Checked& checked, const std::string& name, const std::string& verdict)
{
    EXPECT_FALSE(checked.valid) << name;
    EXPECT_THAT(checked.lines, ElementsAre(Entry(name), verdict, Exit(name, false)));
}
// The bounded copy of the text reports first that it does not fit.
void ExpectOverlong(const Checked& checked, const std::string& name, const std::string& verdict)
{
    EXPECT_FALSE(checked.valid) << name;
    EXPECT_THAT(checked.lines,
                ElementsAre(Entry(name), "OrvSecureInvalidParameterHandler : ERROR", verdict, Exit(name, false)));
}

constexpr char kInitiatorOrTarget[] = "IsInitatorOrTargetIpAddressValid";
constexpr char kGateway[] = "IsGatewayIpAddressValid";
constexpr char kMask[] = "IsSubnetMaskValid";

Checked CheckInitiatorOrTarget(const COrvString& address)
{
    return Check([&](const CISCSISupport& support) { return support.IsInitatorOrTargetIpAddressValid(address); });
}
Checked CheckGateway(const COrvString& address)
{
    return Check([&](const CISCSISupport& support) { return support.IsGatewayIpAddressValid(address); });
}
Checked CheckMask(const COrvString& mask)
{
    return Check([&](const CISCSISupport& support) { return support.IsSubnetMaskValid(mask); });
}

constexpr char kNotMachine[] =
    "IsInitatorOrTargetIpAddressValid() - The first octet of the IP Address is not "
    "betweeen 1 and 223";
constexpr char kNotGateway[] =
    "IsGatewayIpAddressValid() - The first octet of the IP Address is not betweeen 0 and "
    "223";
constexpr char kMaskOctet[] = "IsSubnetMaskValid() - The first octet of the IP Address is not betweeen 128 and 255";
constexpr char kMaskGap[] = "IsSubnetMaskValid() - The Subnet Mask is invalid - a 1 was found after the first zero!";
} // namespace

TEST(ISCSISettings, BootLun255IsAcceptedAnd256Rejected)
{
    constexpr char kVerdict[] = "IsBootLUN_Valid() - the Boot LUN value is acceptable.";
    for (const uint32_t lun : {0U, 255U}) {
        ExpectAccepted(Check([&](const CISCSISupport& support) { return support.IsBootLUN_Valid(lun); }),
                       "IsBootLUN_Valid", kVerdict);
    }
    ExpectRejected(Check([](const CISCSISupport& support) { return support.IsBootLUN_Valid(256); }), "IsBootLUN_Valid");
}

TEST(ISCSISettings, Port1024And65536AreRejected1025And65535Accepted)
{
    constexpr char kVerdict[] = "IsTargetPortValid() - the Target Port value is acceptable.";
    for (const int32_t port : {1025, 3260, 65535}) {
        ExpectAccepted(Check([&](const CISCSISupport& support) { return support.IsTargetPortValid(port); }),
                       "IsTargetPortValid", kVerdict);
    }
    for (const int32_t port : {1024, 65536, -1}) {
        ExpectRejected(Check([&](const CISCSISupport& support) { return support.IsTargetPortValid(port); }),
                       "IsTargetPortValid");
    }
}

TEST(ISCSISettings, Vlan4096IsAcceptedAnd4097Rejected)
{
    ExpectAccepted(Check([](const CISCSISupport& support) { return support.IsVLAN_IdTagValid(4096); }),
                   "IsVLAN_IdTagValid", "IsVLAN_IdTagValid() - the VLAN ID Tag is acceptable.");
    ExpectRejected(Check([](const CISCSISupport& support) { return support.IsVLAN_IdTagValid(4097); }),
                   "IsVLAN_IdTagValid");
}

TEST(ISCSISettings, MachineAddressesAreAcceptedWithoutAVerdictLine)
{
    for (const char* address : {"1.0.0.0", "10.20.30.40", "223.255.255.255"}) {
        ExpectAccepted(CheckInitiatorOrTarget(address), kInitiatorOrTarget);
        ExpectAccepted(CheckGateway(address), kGateway);
    }
}

TEST(ISCSISettings, FirstOctet0IsAGatewayButNotAMachine)
{
    ExpectRejected(CheckInitiatorOrTarget("0.1.2.3"), kInitiatorOrTarget, kNotMachine);
    ExpectAccepted(CheckGateway("0.1.2.3"), kGateway);
    ExpectAccepted(CheckGateway("0.0.0.0"), kGateway);
}

TEST(ISCSISettings, FirstOctet224IsNeither)
{
    ExpectRejected(CheckInitiatorOrTarget("224.0.0.1"), kInitiatorOrTarget, kNotMachine);
    ExpectRejected(CheckGateway("224.0.0.1"), kGateway, kNotGateway);
}

TEST(ISCSISettings, EmptyAddressHasItsOwnVerdict)
{
    ExpectRejected(CheckInitiatorOrTarget(""), kInitiatorOrTarget,
                   "IsInitatorOrTargetIpAddressValid() - the IP address passed in is invalid!!");
    ExpectRejected(CheckGateway(""), kGateway, "IsGatewayIpAddressValid() - the IP address passed in is invalid!!");
    ExpectRejected(CheckMask(""), kMask, "IsSubnetMaskValid() - the IP address passed in is invalid!!");
}

TEST(ISCSISettings, TextThatIsNotAnAddressIsRejectedForItsFirstOctet)
{
    // Octets above 255 after the first are found by the same line.
    for (const char* text : {"no address", "10.256.0.1", "10.0.256.1", "10.0.0.256", "256.0.0.1", "1.2.3.4.5"}) {
        ExpectRejected(CheckInitiatorOrTarget(text), kInitiatorOrTarget, kNotMachine);
        ExpectRejected(CheckGateway(text), kGateway, kNotGateway);
        ExpectRejected(CheckMask(text), kMask, kMaskGap);
    }
}

TEST(ISCSISettings, TextOfMoreThan259CharactersIsAnInvalidParameterAndNotAnAddress)
{
    for (const std::size_t length : {260U, 4096U}) {
        const std::string text(length, '1');
        ExpectOverlong(CheckInitiatorOrTarget(text), kInitiatorOrTarget, kNotMachine);
        ExpectOverlong(CheckGateway(text), kGateway, kNotGateway);
        ExpectOverlong(CheckMask(text), kMask, kMaskGap);
    }
    const std::string longest = "10.20.30.40" + std::string(248, ' ');
    ASSERT_EQ(longest.size(), 259U);
    ExpectAccepted(CheckGateway(longest), kGateway);
}

TEST(ISCSISettings, ContiguousMasksAreAcceptedWithoutAVerdictLine)
{
    for (const char* mask : {"255.255.255.0", "128.0.0.0", "255.0.0.0", "255.255.255.254", "255.255.240.0"}) {
        ExpectAccepted(CheckMask(mask), kMask);
    }
}

TEST(ISCSISettings, MaskWithAGapIsRejected)
{
    ExpectRejected(CheckMask("255.0.255.0"), kMask, kMaskGap);
    ExpectRejected(CheckMask("255.255.255.1"), kMask, kMaskGap);
}

TEST(ISCSISettings, MaskOfAllOnesIsRejectedLikeOneWithAGap)
{
    ExpectRejected(CheckMask("255.255.255.255"), kMask, kMaskGap);
}

TEST(ISCSISettings, MaskMustBeginWith128)
{
    ExpectRejected(CheckMask("127.255.255.0"), kMask, kMaskOctet);
    ExpectRejected(CheckMask("0.0.0.0"), kMask, kMaskOctet);
}

TEST(ISCSISettings, ChecksWorkWithoutAConfiguredTrace)
{
    const CISCSISupport support;
    EXPECT_TRUE(support.IsSubnetMaskValid("255.255.255.0"));
    EXPECT_FALSE(support.IsTargetPortValid(1024));
}

TEST(FcoeSettings, LunsFrom0To4095AndAnEmptyListAreValid)
{
    const CFcoeSupport support;
    const LibraryTrace trace;
    EXPECT_TRUE(support.IsLunValid({"0", "4095"}));
    EXPECT_TRUE(support.IsLunValid({}));
    const std::string entry = "Entering CFcoeSupport::IsLunValid()";
    const std::string exit = "Leaving CFcoeSupport::IsLunValid(), return value - 1";
    EXPECT_THAT(trace.Messages(), ElementsAre(entry, exit, entry, exit));
}

TEST(FcoeSettings, OneLunOutOfRangeMakesTheListInvalidAndIsTracedOnce)
{
    const CFcoeSupport support;
    for (const std::vector<COrvString>& luns :
         {std::vector<COrvString>{"4096"}, {"-1"}, {"0", "4096", "-1", "9999"}, {"0", "1", "99999999999"}}) {
        const LibraryTrace trace;
        EXPECT_FALSE(support.IsLunValid(luns));
        EXPECT_THAT(trace.Messages(), ElementsAre("Entering CFcoeSupport::IsLunValid()",
                                                  "IsLunValid() - a LUN value is outside the valid range",
                                                  "Leaving CFcoeSupport::IsLunValid(), return value - 0"));
    }
}

namespace {
/// An address as it may be written, and how the checks see its first octet.
struct AddressForm
{
    const char* text;
    bool isMachine;
    bool isGateway;
};
} // namespace

TEST(ISCSISettings, AddressesMayHaveFewerPartsAndOtherBases)
{
    // One number is the whole address; a last part takes the octets that are left; 0x is hexadecimal, 0 is octal.
    for (const AddressForm& form : {
             AddressForm{"10", false, true},           // 0.0.0.10
             AddressForm{"167837955", true, true},     // 10.1.1.3
             AddressForm{"4026531841", false, false},  // 240.0.0.1
             AddressForm{"10.1", true, true},          // 10.0.0.1
             AddressForm{"10.1.2", true, true},        // 10.1.0.2
             AddressForm{"10.65536", true, true},      // 10.1.0.0
             AddressForm{"10.1.65535", true, true},    // 10.1.255.255
             AddressForm{"0xA.0.0.1", true, true},     // 10.0.0.1
             AddressForm{"0XDF.0.0.1", true, true},    // 223.0.0.1
             AddressForm{"0xE0.0.0.1", false, false},  // 224.0.0.1
             AddressForm{"012.0.0.1", true, true},     // 10.0.0.1
             AddressForm{"0337.0.0.1", true, true},    // 223.0.0.1
             AddressForm{"0340.0.0.1", false, false},  // 224.0.0.1
             AddressForm{"10.1.65536", false, false},  // no address
             AddressForm{"10.16777216", false, false}, // no address
         }) {
        EXPECT_EQ(CheckInitiatorOrTarget(form.text).valid, form.isMachine) << form.text;
        EXPECT_EQ(CheckGateway(form.text).valid, form.isGateway) << form.text;
    }
    ExpectAccepted(CheckMask("0xFFFFFF00"), kMask);
    ExpectAccepted(CheckMask("255.255.65280"), kMask);
    ExpectAccepted(CheckMask("4294967040"), kMask);
    ExpectRejected(CheckMask("255"), kMask, kMaskOctet);
}
