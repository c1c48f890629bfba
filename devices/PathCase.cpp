#include "PathCase.h"

#include <windows.h>

#include "UpperCase.h"

void MakePathUpperCase(std::span<char> path)
{
    MakeUpperCase(path, [](unsigned char byte) { return IsDBCSLeadByte(byte) != FALSE; });
}
