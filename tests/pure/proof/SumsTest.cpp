#include "Sums.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>

namespace {
const std::string kSum(64, 'a');
}

TEST(Sums, ALineIsASumAndAPath)
{
    EXPECT_THAT(ParseSums(kSum + "  dist/Morvix.exe\r\n" + kSum + "  READ ME.txt\n"),
                testing::ElementsAre(ListedSum{kSum, "dist/Morvix.exe"}, ListedSum{kSum, "READ ME.txt"}));
}

TEST(Sums, ADamagedListIsRefused)
{
    for (const std::string& damaged : {std::string(), std::string("\n"), kSum, kSum + "  ", kSum + " one blank",
                                       kSum.substr(1) + "  short", 'A' + kSum.substr(1) + "  upper case"}) {
        EXPECT_THROW(static_cast<void>(ParseSums(damaged)), std::invalid_argument) << damaged;
    }
}
