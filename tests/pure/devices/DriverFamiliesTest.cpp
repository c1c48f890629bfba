#include "DriverFamilies.h"

#include <gtest/gtest.h>

#include <string>

namespace {
struct RowShape
{
    std::size_t first; // rows count from 1
    std::size_t last;
    const char* resultPrefix;
    bool has62Form;
};
constexpr RowShape kShapes[] = {
    {1, 1, "TAVG_", false},  {2, 3, "TAVF_", false},   {4, 4, "TAVF_", true},   {5, 12, "TAVG_PCIE_", true},
    {13, 15, "TAVG_", true}, {16, 16, "TAVG_", false}, {17, 21, "TAVX_", true},
};
} // namespace

TEST(DriverFamilies, EveryRowHasItsResultNameAndPatterns)
{
    ASSERT_EQ(kDriverFamilies.size(), 21U);
    for (const RowShape& shape : kShapes) {
        for (std::size_t row = shape.first; row <= shape.last; ++row) {
            const DriverFamily& family = kDriverFamilies[row - 1];
            const std::string prefix(family.infPrefix);
            EXPECT_EQ(family.resultPrefix, shape.resultPrefix) << row;
            EXPECT_EQ(DriverFilePattern(family, false), prefix + "*.sys") << row;
            EXPECT_EQ(DriverFilePattern(family, true), prefix + (shape.has62Form ? "62*.sys" : "*.sys")) << row;
        }
    }
}

TEST(DriverFamilies, RowsOneAndThreeDifferInTheLastCharacterAndStayApart)
{
    EXPECT_EQ(FamilyOfInf("\\NG1K.INF"), &kDriverFamilies[0]);
    EXPECT_EQ(FamilyOfInf("\\NG1F.INF"), &kDriverFamilies[2]);
}

TEST(DriverFamilies, EveryPrefixIsFoundAtTheStartOfAFileName)
{
    for (const DriverFamily& family : kDriverFamilies) {
        EXPECT_EQ(FamilyOfInf(std::string(family.infPrefix) + "64.INF"), &family) << family.infPrefix;
    }
}

TEST(DriverFamilies, APrefixElsewhereInTheNameDoesNotCount)
{
    EXPECT_EQ(FamilyOfInf("\\XNGEA.INF"), nullptr);
    EXPECT_EQ(FamilyOfInf("NGEA.INF"), nullptr);
    // The second byte of a letter that ends before the prefix.
    EXPECT_EQ(FamilyOfInf("\\\x83\\NGEA.INF"), nullptr);
    EXPECT_EQ(FamilyOfInf("\\X\\NGEA.INF"), nullptr);
}

TEST(DriverFamilies, NamesOfNoFamilyAndShorterNamesAreNotClassified)
{
    for (const char* name : {"", "\\", "\\NGE", "\\NG1.INF", "\\QDATDMA.INF", "\\OEM12.INF"}) {
        EXPECT_EQ(FamilyOfInf(name), nullptr) << name;
    }
}

TEST(DriverFamilies, TheComparisonExpectsUpperCase)
{
    EXPECT_EQ(FamilyOfInf("\\ngea.inf"), nullptr);
}
