#include "ProfileReading.h"

#include <windows.h>

#include <algorithm>

uint32_t ReadProfileText(const char* section, const char* key, const char* defaultText, std::span<char> buffer,
                         const std::string& file)
{
    std::ranges::fill(buffer, '\0');
    return GetPrivateProfileStringA(section, key, defaultText, buffer.data(), static_cast<DWORD>(buffer.size()),
                                    file.c_str());
}

uint32_t ReadProfileSection(const char* section, std::span<char> buffer, const std::string& file)
{
    std::ranges::fill(buffer, '\0');
    const auto size = static_cast<DWORD>(buffer.size());
    // The names of all sections are read first and not used. What lies in the buffer after a section that the file does
    // not have is what these two calls together leave there.
    GetPrivateProfileStringA(nullptr, nullptr, nullptr, buffer.data(), size, file.c_str());
    return GetPrivateProfileSectionA(section, buffer.data(), size, file.c_str());
}
