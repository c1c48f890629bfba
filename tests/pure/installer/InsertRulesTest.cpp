#include "InsertRules.h"

#include <gtest/gtest.h>

TEST(InsertRules, AnInsertWithANumberFormatIsANumber)
{
    for (const char* message : {"%1!u! seconds", "%1!d!", "%1!2u!", "%1!02lu!%2!x!", "%12!u!", "100%% in %1!u! s"}) {
        EXPECT_TRUE(InsertsAreNumbers(message)) << message;
    }
}

TEST(InsertRules, APlainInsertOrATextFormatIsNotANumber)
{
    for (const char* message : {"%1", "in %1 seconds", "%1!s!", "%1!S!", "%1!ls!", "%1!u! and %2", "%12", "%1!u", "%1!",
                                "%1!!", "%1!!u!", "%9", "%%%1"}) {
        EXPECT_FALSE(InsertsAreNumbers(message)) << message;
    }
}

TEST(InsertRules, ATextWithoutInsertsMayBeGivenNumbers)
{
    for (const char* message : {"", "no insert!", "%%1", "%0", "%n%r%t%b", "100%", "% 1"}) {
        EXPECT_TRUE(InsertsAreNumbers(message)) << message;
    }
}
