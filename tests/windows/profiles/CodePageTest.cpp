#include "CodePage.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <array>

#include "ProfileQuestions.h"

namespace {
constexpr auto kSingleBytePages = std::to_array<uint32_t>({1250, 1251, 1252});
constexpr auto kPairPages = std::to_array<uint32_t>({932, 936, 949, 950});

std::string NarrowedByPlatform(uint32_t page, std::wstring_view utf16)
{
    std::array<char, 16> bytes{};
    const int count = WideCharToMultiByte(page, 0, utf16.data(), static_cast<int>(utf16.size()), bytes.data(),
                                          static_cast<int>(bytes.size()), nullptr, nullptr);
    return {bytes.data(), static_cast<std::size_t>(count)};
}

std::string BackFromPlatform(uint32_t page, const std::string& bytes)
{
    std::array<wchar_t, 16> utf16{};
    const int count = MultiByteToWideChar(page, 0, bytes.data(), static_cast<int>(bytes.size()), utf16.data(),
                                          static_cast<int>(utf16.size()));
    return NarrowedByPlatform(page, {utf16.data(), static_cast<std::size_t>(count)});
}

std::string BackFrom(const CodePage& page, const std::string& bytes)
{
    std::string back;
    page.Encode(page.Decode(bytes), back);
    return back;
}

void ExpectSame(const CodePage& page, const std::string& bytes)
{
    const std::string back = BackFrom(page, bytes);
    const std::string expected = BackFromPlatform(page.Number(), bytes);
    ASSERT_EQ(back, expected) << page.Number() << ": " << Quoted(bytes) << " gives " << Quoted(back) << " instead of "
                              << Quoted(expected);
}
} // namespace

TEST(CodePage, EveryByteComesBackAsOnThePlatform)
{
    for (const uint32_t number : kSingleBytePages) {
        const CodePage page(number);
        for (int byte = 0; byte < 256; ++byte) {
            ExpectSame(page, std::string(1, static_cast<char>(byte)));
        }
    }
}

TEST(CodePage, EveryPairOfBytesComesBackAsOnThePlatform)
{
    for (const uint32_t number : kPairPages) {
        const CodePage page(number);
        for (int first = 0; first < 256; ++first) {
            for (int second = 0; second < 256; ++second) {
                ASSERT_NO_FATAL_FAILURE(ExpectSame(page, {static_cast<char>(first), static_cast<char>(second)}));
            }
        }
    }
}

TEST(CodePage, EveryUtf16UnitIsNarrowedAsOnThePlatform)
{
    for (const uint32_t number : kSingleBytePages) {
        const CodePage page(number);
        for (int unit = 0; unit < 0x10000; ++unit) {
            std::string bytes;
            const char16_t own = page.UnitOfUtf16(static_cast<char16_t>(unit));
            page.Encode({&own, 1}, bytes);
            const auto utf16 = static_cast<wchar_t>(unit);
            ASSERT_EQ(bytes, NarrowedByPlatform(number, {&utf16, 1})) << number << ": " << unit;
        }
    }
}

TEST(CodePage, Utf8ComesBackAsOnThePlatform)
{
    const CodePage page(65001);
    constexpr std::string_view kBytes = "a\x80\x90\xA0\xBF\xC0\xC3\xE0\xE2\xED\xF0\xF1\xF4\xF5";
    for (const char first : kBytes) {
        for (const char second : kBytes) {
            for (const char third : kBytes) {
                for (const char fourth : kBytes) {
                    ASSERT_NO_FATAL_FAILURE(ExpectSame(page, {first, second, third, fourth}));
                    ASSERT_NO_FATAL_FAILURE(ExpectSame(page, {first, second, third, fourth, 'a', 'b'}));
                }
            }
        }
    }
}
