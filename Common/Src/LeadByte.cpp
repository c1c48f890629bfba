#include "LeadByte.h"

#include <windows.h>

#include "CharacterRule.h"

bool IsSystemLeadByte(unsigned char byte)
{
    return IsDBCSLeadByte(byte) != FALSE;
}

CharacterRule SystemCharacterRule()
{
    return GetACP() == CP_UTF8 ? CharacterRule::Utf8() : CharacterRule(IsSystemLeadByte);
}
