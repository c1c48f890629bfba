#include "InstallOutcome.h"

#include <gtest/gtest.h>

namespace {
struct ErrorRow
{
    uint32_t error;
    InstallOutcome outcome;
    const char* meaning;
};
constexpr ErrorRow kErrors[] = {
    {0, InstallOutcome::Bound, "no error"},
    {0xE000020B, InstallOutcome::NotThere, "no such device"},
    // Signature and catalog.
    {0xE000022F, InstallOutcome::Refused, "no catalog"},
    {0xE000023F, InstallOutcome::Refused, "no Authenticode catalog"},
    {0xE0000240, InstallOutcome::Refused, "Authenticode disallowed"},
    {0xE0000241, InstallOutcome::Refused, "publisher trusted, policy forbids it"},
    {0xE0000242, InstallOutcome::Refused, "publisher not trusted"},
    {0xE0000243, InstallOutcome::Refused, "signature differs from the system's"},
    {0xE0000244, InstallOutcome::Refused, "signed for another package"},
    {0x800B0109, InstallOutcome::Refused, "untrusted root"},
    {0x800B0100, InstallOutcome::Refused, "no signature"},
    // The package itself.
    {0xE0000100, InstallOutcome::Refused, "wrong INF style"},
    {0xE0000101, InstallOutcome::Refused, "section not found"},
    {0xE0000228, InstallOutcome::Refused, "no compatible driver"},
    {2, InstallOutcome::Refused, "file not found"},
    {3, InstallOutcome::Refused, "path not found"},
    // The machine.
    {5, InstallOutcome::Refused, "access denied"},
    {8, InstallOutcome::Refused, "not enough memory"},
    {31, InstallOutcome::Refused, "general failure"},
    {126, InstallOutcome::Refused, "library not found"},
    {259, InstallOutcome::Refused, "no more items: the present driver is as good"},
    {1223, InstallOutcome::Refused, "cancelled by the user"},
    {0xE0000207, InstallOutcome::Refused, "device exists already"},
    {0xE0000235, InstallOutcome::Refused, "32-bit process on a 64-bit system"},
    {0xE000020C, InstallOutcome::Refused, "next to the one that is not a refusal"},
    {0xE000020A, InstallOutcome::Refused, "next to the one that is not a refusal"},
    {0x20B, InstallOutcome::Refused, "the same digits without the top bits"},
};
} // namespace

TEST(InstallOutcome, EveryErrorIsARefusalExceptThatThereIsNoSuchDevice)
{
    for (const ErrorRow& row : kErrors) {
        EXPECT_EQ(OutcomeOf(row.error), row.outcome) << row.meaning;
    }
}

TEST(InstallOutcome, EveryRefusalHasTheSameStatus)
{
    EXPECT_EQ(StatusOf(InstallOutcome::Bound), 0);
    EXPECT_EQ(StatusOf(InstallOutcome::Refused), static_cast<int32_t>(0xE0000207));
    EXPECT_EQ(StatusOf(InstallOutcome::NotThere), static_cast<int32_t>(0xE000020B));
}
