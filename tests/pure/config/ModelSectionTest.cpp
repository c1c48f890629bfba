#include "ModelSection.h"

#include <gtest/gtest.h>

#include <string>

namespace {
/// The section as the platform would leave it in a buffer.
std::string Lines(std::initializer_list<std::string> lines)
{
    std::string buffer;
    for (const std::string& line : lines) {
        buffer += line;
        buffer += '\0';
    }
    buffer += '\0';
    return buffer;
}

ModelSection Section(const std::string& buffer)
{
    return {static_cast<uint32_t>(buffer.size()), buffer};
}
} // namespace

TEST(ModelSection, FindsALineByItsFirstHardwareIdWhateverTheLetterCase)
{
    const ModelSection section = Section(Lines({R"(%A% = A.ndi, PCI\VEN_5D1A&DEV_0001, PCI\VEN_5D1A&DEV_0009)",
                                                R"(%B% = B.ndi, PCI\VEN_5D1A&DEV_00Ab&CC_0200)"}));
    EXPECT_EQ(section.LineOf("VEN_5D1A&DEV_0001"), 0U);
    EXPECT_EQ(section.LineOf("ven_5d1a&dev_00aB"), 1U);
    EXPECT_EQ(section.LineOf("VEN_5D1A&DEV_0009"), std::nullopt) << "a compatible ID";
    EXPECT_EQ(section.LineOf("VEN_5D1A"), std::nullopt);
    EXPECT_EQ(section.HardwareId(1), "VEN_5D1A&DEV_00Ab");
    EXPECT_EQ(section.DescriptionKey(1), "%B% ");
}

TEST(ModelSection, FirstOfTwoLinesWithTheSameIdWins)
{
    const ModelSection section = Section(Lines({R"(%A%=A, PCI\VEN_1)", R"(%B%=B, PCI\ven_1)"}));
    EXPECT_EQ(section.LineOf("VEN_1"), 0U);
}

TEST(ModelSection, LineWithoutAnIdMatchesNothingNotEvenAnEmptyKey)
{
    const ModelSection section = Section(Lines({"%A%=A", R"(%B%=B, PCI\)", R"(%C%=C, PCI\"x)"}));
    ASSERT_EQ(section.LineCount(), 3U);
    EXPECT_EQ(section.HardwareId(0), "");
    EXPECT_EQ(section.LineOf("VEN_1"), std::nullopt);
    EXPECT_EQ(section.LineOf(""), 2U) << "an ID that is cut at its beginning is an empty one";
}

TEST(ModelSection, CharactersThatDifferInMoreThanLetterCaseDoNotMatch)
{
    const ModelSection section = Section(Lines({R"(%A%=A, PCI\VEN[1)"}));
    EXPECT_EQ(section.LineOf("VEN{1"), std::nullopt);
    EXPECT_EQ(section.LineOf("ven[1"), 0U);
}

TEST(ModelSection, LinesAreThereAlsoWhenThePlatformReadNothing)
{
    const std::string left = Lines({"Version", R"(Odd=name, PCI\VEN_1)"});
    const ModelSection section(0, left);
    EXPECT_FALSE(section.WasRead());
    EXPECT_EQ(section.LineCount(), 2U);
    EXPECT_EQ(section.LineOf("VEN_1"), 1U);
    EXPECT_TRUE(ModelSection(1, left).WasRead());
}

TEST(ModelSection, EmptySectionHasNoLines)
{
    const ModelSection section(0, Lines({}));
    EXPECT_EQ(section.LineCount(), 0U);
    EXPECT_EQ(section.LineOf("VEN_1"), std::nullopt);
}

TEST(ModelSection, LongestSectionIsReachedToItsEnd)
{
    std::string buffer;
    std::string last;
    for (int i = 0; buffer.size() < kModelSectionBytes - 40; ++i) {
        last = "VEN_5D1A&DEV_" + std::to_string(10000 + i);
        buffer += "%D%=I, PCI\\" + last + '\0';
    }
    buffer.resize(kModelSectionBytes, '\0');
    const ModelSection section = Section(buffer);
    EXPECT_EQ(section.LineOf(last), section.LineCount() - 1);
    EXPECT_EQ(section.HardwareId(section.LineCount() - 1), last);
}

TEST(ModelSection, LineAsLongAsTheSectionIsCutLikeEveryLine)
{
    const ModelSection section = Section(std::string(kModelSectionBytes, 'x'));
    ASSERT_EQ(section.LineCount(), 1U);
    EXPECT_EQ(section.DescriptionKey(0), std::string(1999, 'x'));
    EXPECT_EQ(section.LineOf("x"), std::nullopt);
}
