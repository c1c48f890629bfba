#include "InstallingText.h"

#include <gtest/gtest.h>

TEST(InstallingText, TheDescriptionTakesThePlaceholder)
{
    EXPECT_EQ(InstallingText("Installing %s ...", "Norda 10G", 259), "Installing Norda 10G ...");
}

TEST(InstallingText, ADescriptionWithPerCentSignsStaysAsItIs)
{
    EXPECT_EQ(InstallingText("[%s]", "100%s %n %%", 259), "[100%s %n %%]");
}

TEST(InstallingText, ATextWithoutPlaceholderStaysAsItIs)
{
    EXPECT_EQ(InstallingText("Installing", "Norda", 259), "Installing");
    EXPECT_EQ(InstallingText("", "Norda", 259), "");
}

TEST(InstallingText, WrongPlaceholdersOfAResourceAreOnlyText)
{
    EXPECT_EQ(InstallingText("%n %d %s %s %99999d %", "Norda", 259), "%n %d Norda %s %99999d %");
}

TEST(InstallingText, ADoubledPerCentSignIsOne)
{
    EXPECT_EQ(InstallingText("100%% %s", "Norda", 259), "100% Norda");
    EXPECT_EQ(InstallingText("%%s %s", "Norda", 259), "%s Norda");
}

TEST(InstallingText, TheResultIsCutToItsLimit)
{
    EXPECT_EQ(InstallingText("%s!", std::string(300, 'x'), 259), std::string(259, 'x'));
    EXPECT_EQ(InstallingText("ab%s", "cd", 4), "abcd");
    EXPECT_EQ(InstallingText("ab%s", "cd", 3), "abc");
    EXPECT_EQ(InstallingText("ab%s", "cd", 0), "");
}
