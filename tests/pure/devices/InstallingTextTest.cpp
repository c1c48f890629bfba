#include "InstallingText.h"

#include <gtest/gtest.h>

#include <string>

#include "../CodePages.h"

TEST(InstallingText, TheDescriptionTakesThePlaceholder)
{
    EXPECT_EQ(InstallingText("Installing %s ...", "Norda 10G", 259, NoLeadBytes), "Installing Norda 10G ...");
}

TEST(InstallingText, ADescriptionWithPerCentSignsStaysAsItIs)
{
    EXPECT_EQ(InstallingText("[%s]", "100%s %n %%", 259, NoLeadBytes), "[100%s %n %%]");
}

TEST(InstallingText, ATextWithoutPlaceholderStaysAsItIs)
{
    EXPECT_EQ(InstallingText("Installing", "Norda", 259, NoLeadBytes), "Installing");
    EXPECT_EQ(InstallingText("", "Norda", 259, NoLeadBytes), "");
}

TEST(InstallingText, WrongPlaceholdersOfAResourceAreOnlyText)
{
    EXPECT_EQ(InstallingText("%n %d %s %s %99999d %", "Norda", 259, NoLeadBytes), "%n %d Norda %s %99999d %");
}

TEST(InstallingText, ADoubledPerCentSignIsOne)
{
    EXPECT_EQ(InstallingText("100%% %s", "Norda", 259, NoLeadBytes), "100% Norda");
    EXPECT_EQ(InstallingText("%%s %s", "Norda", 259, NoLeadBytes), "%s Norda");
}

TEST(InstallingText, TheResultIsCutToItsLimit)
{
    EXPECT_EQ(InstallingText("%s!", std::string(300, 'x'), 259, NoLeadBytes), std::string(259, 'x'));
    EXPECT_EQ(InstallingText("ab%s", "cd", 4, NoLeadBytes), "abcd");
    EXPECT_EQ(InstallingText("ab%s", "cd", 3, NoLeadBytes), "abc");
    EXPECT_EQ(InstallingText("ab%s", "cd", 0, NoLeadBytes), "");
}

TEST(InstallingText, TheCutNeverSplitsACharacterOfUtf8)
{
    const std::string letter = "\u8A2D";
    for (std::size_t maxBytes = 5; maxBytes < 8; ++maxBytes) {
        EXPECT_EQ(InstallingText("ab%s", letter + letter, maxBytes, CharacterRule::Utf8()), "ab" + letter) << maxBytes;
    }
    EXPECT_EQ(InstallingText("ab%s", letter + letter, 8, CharacterRule::Utf8()), "ab" + letter + letter);
}

TEST(InstallingText, TheCutSplitsNoCharacter)
{
    for (const CodePage& page : kCodePages) {
        const std::string letter(page.letter);
        EXPECT_EQ(InstallingText("ab%s", letter + letter, 5, page.isLeadByte), "ab" + letter) << page.number;
        EXPECT_EQ(InstallingText("ab%s", letter + letter, 6, page.isLeadByte), "ab" + letter + letter) << page.number;
    }
}
