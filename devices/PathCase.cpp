#include "PathCase.h"

#include "LeadByte.h"
#include "UpperCase.h"

void MakePathUpperCase(std::span<char> path)
{
    MakeUpperCase(path, IsSystemLeadByte);
}
