#include "OSCode.h"

#include "OSPredicates.h"

namespace {
constexpr bool RowsAreInOrder()
{
    for (std::size_t row = 0; row < kSystems.size(); ++row) {
        if (kSystems[row].code != static_cast<OSCode>(row)) {
            return false;
        }
    }
    return true;
}
static_assert(kSystems.size() == osWINEIGHTSRV32E + 1);
static_assert(RowsAreInOrder());

bool IsServerProduct(const SystemFacts& facts)
{
    return facts.productType == kProductDomainController || facts.productType == kProductServer;
}

bool IsWorkstationProduct(const SystemFacts& facts)
{
    return facts.productType == kProductWorkstation;
}

/// The code that the native processor selects.
OSCode ByProcessor(const SystemFacts& facts, OSCode x64, OSCode ia64, OSCode other)
{
    if (IsX64(facts)) {
        return x64;
    }
    return IsIA64(facts) ? ia64 : other;
}

OSCode Decide9x(uint32_t minorVersion)
{
    switch (minorVersion) {
        case 0:
            return osWIN95;
        case 10:
            return osWIN98;
        case 90:
            return osWINME;
        default:
            return osUNSUPPORTED;
    }
}

OSCode DecideFive(const SystemFacts& facts)
{
    if (facts.platform != kPlatformNT) {
        return osUNSUPPORTED;
    }
    switch (facts.minorVersion) {
        case 0:
            return osWIN2K;
        case 1:
            return osWINXP32;
        case 2:
            if (IsWorkstationProduct(facts)) {
                return ByProcessor(facts, osWINXP32E, osWINXP64, osUNSUPPORTED);
            }
            return IsServerProduct(facts) ? ByProcessor(facts, osWIN2K3SRV32E, osWIN2K3SRV64, osWIN2K3SRV32)
                                          : osUNSUPPORTED;
        default:
            return osUNSUPPORTED;
    }
}

/// The platform is not looked at: only the NT family ever had a version 6.
OSCode DecideSix(const SystemFacts& facts)
{
    switch (facts.minorVersion) {
        case 0:
            if (IsWorkstationProduct(facts)) {
                // An IA-64 workstation counts as the 32-bit system of its family.
                return ByProcessor(facts, osWINVISTA32E, osWINVISTA32, osWINVISTA32);
            }
            return IsServerProduct(facts) ? ByProcessor(facts, osLONGHORN32E, osLONGHORN64, osLONGHORN32)
                                          : osUNSUPPORTED;
        case 1:
            return IsWorkstationProduct(facts) ? ByProcessor(facts, osWINSEVEN32E, osWINSEVEN32, osWINSEVEN32)
                                               : ByProcessor(facts, osWIN2K8R232E, osWIN2K8R264, osUNSUPPORTED);
        case 2:
            return ByProcessor(facts, IsWorkstationProduct(facts) ? osWINEIGHT32E : osWINEIGHTSRV32E, osWINEIGHT32,
                               osWINEIGHT32);
        default:
            return osUNSUPPORTED;
    }
}

/// The system may report 6.0 to a process although it is a later one.
OSCode CorrectSixZero(OSCode reported, const SystemFacts& facts, const LaterSystemVerifier& verifier)
{
    if (verifier.IsSixOne()) {
        // A workstation to which 6.0 is reported stays a 6.0 workstation, by design; only servers are corrected.
        return IsWorkstationProduct(facts) ? reported : ByProcessor(facts, osWIN2K8R232E, osWIN2K8R264, reported);
    }
    if (verifier.IsSixTwoOrLater()) {
        return ByProcessor(facts, IsWorkstationProduct(facts) ? osWINEIGHT32E : osWINEIGHTSRV32E, osWINEIGHT32,
                           osWINEIGHT32);
    }
    return reported;
}
} // namespace

OSCode DecideOSCode(const SystemFacts& facts, const LaterSystemVerifier& verifier)
{
    if (!facts.valid) {
        return osUNSUPPORTED;
    }
    if (facts.majorVersion == 4 && facts.platform == kPlatform9x) {
        return Decide9x(facts.minorVersion);
    }
    if (facts.platform == kPlatformNT && facts.majorVersion == 3 && facts.minorVersion == 51) {
        return osWINNT351;
    }
    if (facts.platform == kPlatformNT && facts.majorVersion == 4 && facts.minorVersion == 0) {
        return osWINNT4;
    }
    if (facts.majorVersion == 5) {
        return DecideFive(facts);
    }
    if (facts.majorVersion != 6) {
        return osUNSUPPORTED;
    }
    const OSCode reported = DecideSix(facts);
    return facts.minorVersion == 0 ? CorrectSixZero(reported, facts, verifier) : reported;
}
