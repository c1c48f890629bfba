#include "OrvTraceRules.h"

#include <cstddef>
#include <cstring>
#include <string_view>

#include "TwoByteText.h"

namespace {
constexpr uint32_t kOff = 0;
constexpr uint32_t kFile = 1;
constexpr uint32_t kErrorsOnly = 2;
constexpr uint32_t kFileAndDebugger = 4;
constexpr size_t kLongestFileName = 245;
} // namespace

bool OrvPrintWrites(uint32_t level) noexcept
{
    return level != kOff && level != kErrorsOnly;
}

bool OrvErrorWrites(uint32_t level) noexcept
{
    return level != kOff;
}

bool OrvMirrorsToDebugger(uint32_t level) noexcept
{
    return level == kFileAndDebugger;
}

bool OrvConsultsRegistry(uint32_t level) noexcept
{
    return level == kFile || level == kErrorsOnly;
}

uint32_t OrvErrorLineLevel(uint32_t level) noexcept
{
    return level == kFileAndDebugger ? level : kFile;
}

bool OrvIsLogFileName(const char* fileName) noexcept
{
    if (fileName == nullptr) {
        return false;
    }
    const size_t length = std::strlen(fileName);
    return length >= 1 && length <= kLongestFileName;
}

OrvLogDirectory OrvChooseLogDirectory(bool plainFileName, bool setUpModule, bool productKeyOpened) noexcept
{
    if (plainFileName) {
        return OrvLogDirectory::None;
    }
    return productKeyOpened && !setUpModule ? OrvLogDirectory::InstalledDir : OrvLogDirectory::Temp;
}

const char* OrvNameWithBackslash(const char* path, LeadByteTest isLeadByte)
{
    const size_t backslash = LastBackslash(path, isLeadByte);
    return backslash == std::string_view::npos ? nullptr : path + backslash;
}
