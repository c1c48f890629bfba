#include "ZipArchive.h"

#include <array>
#include <limits>
#include <stdexcept>

namespace {
constexpr uint32_t kLocalHeader = 0x04034B50;
constexpr uint32_t kDirectoryEntry = 0x02014B50;
constexpr uint32_t kDirectoryEnd = 0x06054B50;
constexpr uint16_t kVersion = 10;

constexpr std::array<uint32_t, 256> MakeCrcTable()
{
    std::array<uint32_t, 256> table{};
    for (uint32_t byte = 0; byte < table.size(); ++byte) {
        uint32_t value = byte;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value & 1U) != 0 ? 0xEDB88320U ^ value >> 1U : value >> 1U;
        }
        table[byte] = value;
    }
    return table;
}
constexpr std::array kCrcTable = MakeCrcTable();

void Put16(std::string& bytes, uint32_t number)
{
    bytes += static_cast<char>(number & 0xFFU);
    bytes += static_cast<char>(number >> 8U & 0xFFU);
}

void Put32(std::string& bytes, uint32_t number)
{
    Put16(bytes, number & 0xFFFFU);
    Put16(bytes, number >> 16U);
}

/// What a file's header and its entry in the directory have in common: version, no flags, stored, time, sum, sizes, the
/// length of the name and no further fields.
std::string Description(std::string_view name, std::string_view content, DosTime time)
{
    std::string bytes;
    Put16(bytes, kVersion);
    Put32(bytes, 0);
    Put16(bytes, time.time);
    Put16(bytes, time.date);
    Put32(bytes, Crc32(content));
    Put32(bytes, static_cast<uint32_t>(content.size()));
    Put32(bytes, static_cast<uint32_t>(content.size()));
    Put16(bytes, static_cast<uint32_t>(name.size()));
    Put16(bytes, 0);
    return bytes;
}
} // namespace

uint32_t Crc32(std::string_view content)
{
    uint32_t sum = 0xFFFFFFFFU;
    for (const char byte : content) {
        sum = kCrcTable[(sum ^ static_cast<uint8_t>(byte)) & 0xFFU] ^ sum >> 8U;
    }
    return ~sum;
}

void ZipArchive::Write(std::string_view bytes)
{
    m_out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    m_written += bytes.size();
}

void ZipArchive::Add(std::string_view name, std::string_view content, DosTime time)
{
    constexpr uint64_t kMost = std::numeric_limits<uint32_t>::max();
    if (m_files == std::numeric_limits<uint16_t>::max() || name.size() > std::numeric_limits<uint16_t>::max() ||
        m_written + content.size() + m_directory.size() > kMost / 2) {
        throw std::length_error("the archive cannot hold " + std::string(name));
    }
    const std::string description = Description(name, content, time);
    Put32(m_directory, kDirectoryEntry);
    Put16(m_directory, kVersion);
    m_directory += description;
    // No comment, the first volume, no attributes.
    Put32(m_directory, 0);
    Put16(m_directory, 0);
    Put32(m_directory, 0);
    Put32(m_directory, static_cast<uint32_t>(m_written));
    m_directory += name;
    std::string header;
    Put32(header, kLocalHeader);
    Write(header + description);
    Write(name);
    Write(content);
    ++m_files;
}

void ZipArchive::Finish()
{
    const auto start = static_cast<uint32_t>(m_written);
    Write(m_directory);
    std::string end;
    Put32(end, kDirectoryEnd);
    Put32(end, 0);
    Put16(end, m_files);
    Put16(end, m_files);
    Put32(end, static_cast<uint32_t>(m_directory.size()));
    Put32(end, start);
    Put16(end, 0);
    Write(end);
}
