#include "LangString.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "LanguageTable.h"
#include "Trace.h"

uint16_t runLanguageId = kFallbackLanguage;
HMODULE resourceModule = nullptr;

namespace {
// A string-table block holds 16 strings, each a 16-bit length and that many UTF-16 characters.
constexpr uint32_t kStringsPerBlock = 16;
// RT_STRING of winuser.h in its 8-bit form.
const char* const kStringTableType = MAKEINTRESOURCEA(6);

std::pair<const wchar_t*, DWORD> FindBlock(HMODULE module, uint32_t id, uint16_t languageId)
{
    const HRSRC found =
        FindResourceExA(module, kStringTableType, MAKEINTRESOURCEA((id / kStringsPerBlock) + 1), languageId);
    if (found == nullptr) {
        return {nullptr, 0};
    }
    const auto* block = static_cast<const wchar_t*>(LockResource(LoadResource(module, found)));
    return {block, block == nullptr ? 0 : SizeofResource(module, found) / static_cast<DWORD>(sizeof(wchar_t))};
}
} // namespace

wchar_t* GetLanguageSpecificString(HMODULE module, uint32_t id, uint16_t languageId, wchar_t* wideBuffer, int wideChars)
{
    Trace("Entering - GetLanguageSpecificString");
    if (wideBuffer == nullptr || wideChars < 1) {
        return nullptr;
    }
    const auto [block, blockChars] = FindBlock(module, id, languageId);
    DWORD position = 0;
    for (uint32_t entry = 0; position < blockChars; ++entry) {
        const DWORD length = std::min<DWORD>(block[position], blockChars - position - 1);
        ++position;
        if (entry == id % kStringsPerBlock) {
            if (length == 0) {
                // An empty text counts as missing.
                return nullptr;
            }
            const DWORD copied = std::min(length, static_cast<DWORD>(wideChars) - 1);
            std::copy_n(block + position, copied, wideBuffer);
            wideBuffer[copied] = L'\0';
            return wideBuffer;
        }
        position += length;
    }
    return nullptr;
}

int LoadLangString(HMODULE module, uint32_t id, char* buffer, int bufferSize)
{
    if (buffer == nullptr || bufferSize < 1) {
        return 0;
    }
    std::memset(buffer, 0, static_cast<size_t>(bufferSize));
    std::vector<wchar_t> wide(static_cast<size_t>(bufferSize));
    if (GetLanguageSpecificString(module, id, runLanguageId, wide.data(), bufferSize) == nullptr) {
        return 0;
    }
    if (WideCharToMultiByte(CP_ACP, 0, wide.data(), -1, buffer, bufferSize, nullptr, nullptr) == 0) {
        // The text does not fit, and what was written may lack its terminator.
        buffer[bufferSize - 1] = '\0';
    }
    return static_cast<int>(std::strlen(buffer));
}

std::string LangString(uint32_t id)
{
    std::array<char, kMessageBytes> buffer{};
    LoadLangString(resourceModule, id, buffer.data(), kMessageBytes);
    return buffer.data();
}
