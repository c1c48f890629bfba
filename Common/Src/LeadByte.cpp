#include "LeadByte.h"

#include <windows.h>

bool IsSystemLeadByte(unsigned char byte)
{
    return IsDBCSLeadByte(byte) != FALSE;
}
