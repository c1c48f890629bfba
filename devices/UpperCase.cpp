#include "UpperCase.h"

#include "AsciiCase.h"

void MakeUpperCase(std::span<char> text, LeadByteTest isLeadByte)
{
    bool isSecondByte = false;
    for (char& c : text) {
        if (c == '\0') {
            return;
        }
        if (isSecondByte) {
            isSecondByte = false;
            continue;
        }
        isSecondByte = isLeadByte(static_cast<unsigned char>(c));
        c = UpperAscii(c);
    }
}
