#include <windows.h>
// oleauto.h needs windows.h first.
#include <oleauto.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cwchar>
#include <memory>
#include <new>

#include "OrvString.h"

namespace {
std::string NarrowWithThreadCodePage(const wchar_t* text)
{
    if (text == nullptr) {
        return {};
    }
    std::vector<char> buffer(2 * std::wcslen(text) + 2);
    if (WideCharToMultiByte(CP_THREAD_ACP, 0, text, -1, buffer.data(), static_cast<int>(buffer.size()), nullptr,
                            nullptr) == 0) {
        return {};
    }
    return buffer.data();
}

// Converts into a temporary buffer and copies as much as fits. `convert(target, length)` is the platform's conversion;
// without a target it measures.
template <class Char, class Convert>
int ConvertBounded(Convert convert, int sourceLength, Char* target, int targetLength)
{
    constexpr int kUnlimited = -1;
    if (target == nullptr || targetLength == 0 || targetLength < kUnlimited || sourceLength < -1) {
        return 0;
    }
    const int needed = convert(static_cast<Char*>(nullptr), 0);
    if (needed < 1) {
        return needed;
    }
    const std::unique_ptr<Char[]> converted(new (std::nothrow) Char[static_cast<size_t>(needed)]{});
    if (!converted) {
        return 0;
    }
    const int count = convert(converted.get(), needed);
    if (count < 1) {
        return count;
    }
    const int copied = targetLength == kUnlimited ? count : std::min(count, targetLength);
    std::copy_n(converted.get(), copied, target);
    // Always overwrite the last copied character with a terminator.
    target[copied - 1] = Char();
    return count;
}

template <class Char, class Convert>
int ConvertAllocated(Convert convert, Char*& target)
{
    if (target != nullptr) {
        return 0;
    }
    const int needed = convert(static_cast<Char*>(nullptr), 0);
    if (needed < 1) {
        return needed;
    }
    target = new (std::nothrow) Char[static_cast<size_t>(needed)]{};
    return target == nullptr ? 0 : convert(target, needed);
}

auto Widen(unsigned codePage, unsigned long flags, const char* source, int sourceLength)
{
    return [=](wchar_t* target, int length) {
        return MultiByteToWideChar(codePage, flags, source, sourceLength, target, length);
    };
}

auto Narrow(unsigned codePage, unsigned long flags, const wchar_t* source, int sourceLength, const char* defaultChar,
            BOOL* usedDefault)
{
    return [=](char* target, int length) {
        return WideCharToMultiByte(codePage, flags, source, sourceLength, target, length, defaultChar, usedDefault);
    };
}
} // namespace

COrvString::COrvString(const wchar_t* text) : m_text(NarrowWithThreadCodePage(text)) {}

COrvString::operator wchar_t*() const
{
    wchar_t* wide = nullptr;
    if (OrvMultiByteToWideChar_alloc(CP_THREAD_ACP, 0, m_text.c_str(), wide) < 1) {
        OrvMultiByteToWideChar_dealloc(wide);
    }
    BSTR result = SysAllocString(wide);
    OrvMultiByteToWideChar_dealloc(wide);
    return result;
}

unsigned COrvString::GetCodePage(LCID locale)
{
    if (locale == 0) {
        return GetACP();
    }
    std::array<char, 16> number{};
    GetLocaleInfoA(locale, LOCALE_IDEFAULTANSICODEPAGE, number.data(), static_cast<int>(number.size()));
    return static_cast<unsigned>(std::atoi(number.data()));
}

int COrvString::OrvMultiByteToWideChar(unsigned codePage, unsigned long flags, const char* source, int sourceLength,
                                       wchar_t* target, int targetLength)
{
    return ConvertBounded(Widen(codePage, flags, source, sourceLength), sourceLength, target, targetLength);
}

int COrvString::OrvWideCharToMultiByte(unsigned codePage, unsigned long flags, const wchar_t* source, int sourceLength,
                                       char* target, int targetLength, const char* defaultChar, BOOL* usedDefault)
{
    return ConvertBounded(Narrow(codePage, flags, source, sourceLength, defaultChar, usedDefault), sourceLength, target,
                          targetLength);
}

int COrvString::OrvMultiByteToWideChar_alloc(unsigned codePage, unsigned long flags, const char* source,
                                             wchar_t*& target)
{
    return ConvertAllocated(Widen(codePage, flags, source, -1), target);
}

int COrvString::OrvWideCharToMultiByte_alloc(unsigned codePage, unsigned long flags, const wchar_t* source,
                                             char*& target, const char* defaultChar, BOOL* usedDefault)
{
    return ConvertAllocated(Narrow(codePage, flags, source, -1, defaultChar, usedDefault), target);
}

void COrvString::OrvMultiByteToWideChar_dealloc(wchar_t*& target)
{
    delete[] target;
    target = nullptr;
}

void COrvString::OrvWideCharToMultiByte_dealloc(char*& target)
{
    delete[] target;
    target = nullptr;
}
