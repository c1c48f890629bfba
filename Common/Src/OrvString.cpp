#include "OrvString.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "OrvCharacters.h"
#include "OrvSecure.h"
#include "OrvText.h"

namespace {
constexpr char kSourceFile[] = R"(..\..\Common\Src\OrvString)";
// Fixed line numbers: existing log readers expect them.
constexpr int kMakeUpperLine = 110;
constexpr int kMakeLowerLine = 130;
constexpr size_t kFormatBytes = 1024;
constexpr size_t kFirstResourceChars = 1024;

std::string DecimalText(int number)
{
    std::array<char, kOrvDecimalBytes> text{};
    if (!OrvDecimalText(number, text)) {
        OrvReportInvalidParameter();
    }
    return text.data();
}

std::string Folded(const std::string& text, int line, char* (*fold)(char*))
{
    std::vector<char> buffer(text.length() + 1);
    OrvSafeCopy(kSourceFile, line, buffer.data(), buffer.size(), text.c_str());
    return fold(buffer.data());
}
} // namespace

COrvString::COrvString(const char* text) : m_text(text == nullptr ? "" : text) {}

COrvString::COrvString(int number) : m_text(DecimalText(number)) {}

COrvString& COrvString::operator=(const char* text)
{
    // The text may be part of this string; std::string's own assignment allows that.
    m_text.assign(text == nullptr ? "" : text);
    return *this;
}

COrvString& COrvString::operator=(const std::string& text)
{
    m_text = text;
    return *this;
}

COrvString& COrvString::operator=(int number)
{
    m_text = DecimalText(number);
    return *this;
}

void COrvString::TrimLeft()
{
    m_text = std::string(OrvTrimLeft(m_text));
}

void COrvString::TrimRight()
{
    m_text.resize(OrvTrimRight(m_text).size());
}

void COrvString::Trim()
{
    TrimLeft();
    TrimRight();
}

void COrvString::MakeUpper()
{
    m_text = Folded(m_text, kMakeUpperLine, _strupr);
}

void COrvString::MakeLower()
{
    m_text = Folded(m_text, kMakeLowerLine, _strlwr);
}

bool COrvString::CompareI(COrvString other) const
{
    COrvString own = *this;
    own.MakeLower();
    other.MakeLower();
    return own == other;
}

bool COrvString::IsAlphaChar(char c)
{
    return OrvIsAlphabetic(c);
}

bool COrvString::IsNumericChar(char c)
{
    return OrvIsNumeric(c);
}

bool COrvString::IsSymbolicChar(char c)
{
    return OrvIsSymbolic(c);
}

bool COrvString::IsHexadecimal(char c)
{
    return OrvIsHexadecimal(c);
}

bool COrvString::IsStringType(unsigned long allowed) const
{
    return OrvIsTextOfType(m_text, allowed);
}

bool COrvString::IsStringHexadecimal() const
{
    return OrvIsTextHexadecimal(m_text);
}

bool COrvString::Split(char separator, std::vector<COrvString>& parts) const
{
    const std::vector<std::string> found = OrvSplitText(m_text, separator);
    parts.assign(found.begin(), found.end());
    return !parts.empty();
}

int COrvString::FormatString(const char* format, ...)
{
    if (format == nullptr) {
        return 0;
    }
    try {
        std::array<char, kFormatBytes> buffer{};
        va_list arguments;
        va_start(arguments, format);
        const int result = _vsnprintf(buffer.data(), buffer.size() - 1, format, arguments);
        va_end(arguments);
        m_text = buffer.data();
        return result;
    } catch (...) {
        return 0;
    }
}

int COrvString::LoadStringA(HINSTANCE module, unsigned long id)
{
    return LoadStringA(module, id, LangRes::Default);
}

int COrvString::LoadStringA(HINSTANCE module, unsigned long id, LangRes /*language*/)
{
    if (module == nullptr) {
        return 0;
    }
    int count = 0;
    try {
        size_t chars = kFirstResourceChars;
        std::vector<char> buffer(chars);
        // A text that fills the buffer may have been cut.
        while ((count = ::LoadStringA(module, id, buffer.data(), static_cast<int>(chars))) ==
               static_cast<int>(chars) - 1) {
            chars *= 2;
            buffer.assign(chars, '\0');
        }
        m_text = buffer.data();
    } catch (...) {
        return count;
    }
    return count;
}
