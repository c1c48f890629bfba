#include "CharacterRule.h"

#include <gtest/gtest.h>

#include "ImportOverride.h"
#include "JapaneseCodePage.h"

namespace {
UINT WINAPI AnswerUtf8()
{
    return CP_UTF8;
}
} // namespace

TEST(CharacterRule, OfASystemWithUtf8IsTheRuleOfUtf8)
{
    const ImportOverride utf8("GetACP", reinterpret_cast<void*>(AnswerUtf8));
    EXPECT_EQ(SystemCharacterRule().FirstCharacterBytes("\u8A2D"), 3U);
}

TEST(CharacterRule, OfAnotherSystemIsThatOfItsCodePage)
{
    EXPECT_EQ(SystemCharacterRule().FirstCharacterBytes("\u8A2D"), 1U);
    const JapaneseCodePage japanese;
    EXPECT_EQ(SystemCharacterRule().FirstCharacterBytes(kJapaneseLetter), 2U);
}
