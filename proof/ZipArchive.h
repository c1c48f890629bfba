#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

/// A local time as .zip files hold it.
struct DosTime
{
    uint16_t date = 0x0021; ///< 1 January 1980, the earliest
    uint16_t time = 0;
};

/// Writes a .zip file whose files are stored as they are. Every Windows opens one, and nothing but this program is
/// needed to make it: no program that all systems have can.
class ZipArchive
{
public:
    /// @param out  A binary stream that outlives this.
    explicit ZipArchive(std::ostream& out) : m_out(out) {}

    /// @param name  The path in the archive, with "/".
    /// Throws std::length_error when the format cannot hold it: 65,535 files, 4 GB.
    void Add(std::string_view name, std::string_view content, DosTime time);
    /// Writes the directory; nothing may be added afterwards.
    void Finish();

private:
    void Write(std::string_view bytes);

    std::ostream& m_out;
    uint64_t m_written = 0;
    uint32_t m_files = 0;
    std::string m_directory;
};

/// The check sum that .zip files have: CRC-32.
[[nodiscard]] uint32_t Crc32(std::string_view content);
