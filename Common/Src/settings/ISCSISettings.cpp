// The platform wants its socket header before windows.h.
#include <winsock2.h>

#include "AddressRules.h"
#include "ISCSIRules.h"
#include "ISCSISupport.h"
#include "OrvBounded.h"
#include "OrvDebug.h"
#include "OrvSecure.h"
#include "SettingTrace.h"

namespace {
static_assert(INADDR_NONE == kNoAddress);

uint32_t ParseAddress(const COrvString& text)
{
    char bounded[260];
    // A text that is too long is not an address. The buffer would be empty, which some systems read as address 0.
    if (OrvBoundedCopy(bounded, sizeof(bounded), text) != 0) {
        OrvReportInvalidParameter();
        return kNoAddress;
    }
    return inet_addr(bounded);
}

bool CheckAddress(const char* name, const COrvString& address, uint32_t lowestFirstOctet)
{
    return TracedISCSICheck(name, [&] {
        if (address.IsEmpty()) {
            OrvTrace().Print("%s() - the IP address passed in is invalid!!", name);
            return false;
        }
        if (!IsFirstOctetBetween(ParseAddress(address), lowestFirstOctet)) {
            OrvTrace().Print("%s() - The first octet of the IP Address is not betweeen %u and %u", name,
                             lowestFirstOctet, kHighestFirstOctet);
            return false;
        }
        return true;
    });
}

// Only acceptance is traced.
bool CheckNumber(const char* name, bool acceptable, const char* description)
{
    return TracedISCSICheck(name, [&] {
        if (acceptable) {
            OrvTrace().Print("%s() - the %s is acceptable.", name, description);
        }
        return acceptable;
    });
}
} // namespace

bool CISCSISupport::IsBootLUN_Valid(uint32_t bootLun) const
{
    return CheckNumber("IsBootLUN_Valid", IsBootLunInRange(bootLun), "Boot LUN value");
}

bool CISCSISupport::IsTargetPortValid(int32_t port) const
{
    return CheckNumber("IsTargetPortValid", IsTargetPortInRange(port), "Target Port value");
}

bool CISCSISupport::IsVLAN_IdTagValid(uint32_t vlanId) const
{
    return CheckNumber("IsVLAN_IdTagValid", IsVlanIdInRange(vlanId), "VLAN ID Tag");
}

bool CISCSISupport::IsInitatorOrTargetIpAddressValid(const COrvString& address) const
{
    return CheckAddress("IsInitatorOrTargetIpAddressValid", address, 1);
}

bool CISCSISupport::IsGatewayIpAddressValid(const COrvString& address) const
{
    return CheckAddress("IsGatewayIpAddressValid", address, 0);
}

bool CISCSISupport::IsSubnetMaskValid(const COrvString& mask) const
{
    return TracedISCSICheck("IsSubnetMaskValid", [&mask] {
        if (mask.IsEmpty()) {
            OrvTrace().Print("IsSubnetMaskValid() - the IP address passed in is invalid!!");
            return false;
        }
        switch (JudgeSubnetMask(ParseAddress(mask))) {
            case MaskVerdict::Valid:
                return true;
            case MaskVerdict::FirstOctetTooSmall:
                OrvTrace().Print("IsSubnetMaskValid() - The first octet of the IP Address is not betweeen 128 and 255");
                return false;
            case MaskVerdict::OneAfterZero:
                break;
        }
        OrvTrace().Print("IsSubnetMaskValid() - The Subnet Mask is invalid - a 1 was found after the first zero!");
        return false;
    });
}
