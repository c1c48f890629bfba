#include "ImportTable.h"

#include <windows.h>

#include <cstddef>
#include <cstring>
#include <stdexcept>

#include "ScratchDirectory.h"

namespace {
/// A program file, read by the addresses that its parts will have in memory.
class Image
{
public:
    explicit Image(std::string bytes) : m_bytes(std::move(bytes))
    {
        const auto dos = At<IMAGE_DOS_HEADER>(0);
        m_headers = At<IMAGE_NT_HEADERS64>(static_cast<std::size_t>(dos.e_lfanew));
        if (dos.e_magic != IMAGE_DOS_SIGNATURE || m_headers.Signature != IMAGE_NT_SIGNATURE ||
            m_headers.OptionalHeader.Magic != IMAGE_NT_OPTIONAL_HDR64_MAGIC) {
            throw std::runtime_error("not a 64-bit program");
        }
        m_sections = static_cast<std::size_t>(dos.e_lfanew) + sizeof(IMAGE_NT_HEADERS64);
    }

    template <class Part>
    [[nodiscard]] Part At(std::size_t place) const
    {
        if (place + sizeof(Part) > m_bytes.size()) {
            throw std::runtime_error("the program file ends too early");
        }
        Part part;
        std::memcpy(&part, m_bytes.data() + place, sizeof(part));
        return part;
    }

    [[nodiscard]] std::size_t PlaceOf(std::size_t address) const
    {
        for (unsigned i = 0; i < m_headers.FileHeader.NumberOfSections; ++i) {
            const auto section = At<IMAGE_SECTION_HEADER>(m_sections + i * sizeof(IMAGE_SECTION_HEADER));
            if (address >= section.VirtualAddress && address < section.VirtualAddress + section.SizeOfRawData) {
                return address - section.VirtualAddress + section.PointerToRawData;
            }
        }
        throw std::runtime_error("an address lies outside the program file");
    }

    [[nodiscard]] std::string TextAt(std::size_t address) const { return m_bytes.c_str() + PlaceOf(address); }

    /// @return the address of a part of the file that the headers name; 0 when the file has none.
    [[nodiscard]] std::size_t Directory(unsigned entry) const
    {
        return m_headers.OptionalHeader.DataDirectory[entry].VirtualAddress;
    }

private:
    std::string m_bytes;
    IMAGE_NT_HEADERS64 m_headers{};
    std::size_t m_sections = 0;
};
} // namespace

std::vector<Import> ImportsOf(const std::string& file)
{
    const Image image(ReadFileBytes(file));
    if (image.Directory(IMAGE_DIRECTORY_ENTRY_DELAY_IMPORT) != 0) {
        throw std::runtime_error("the file has imports that are resolved at their first call");
    }
    std::vector<Import> imports;
    const std::size_t table = image.Directory(IMAGE_DIRECTORY_ENTRY_IMPORT);
    if (table == 0) {
        return imports;
    }
    for (std::size_t place = image.PlaceOf(table);; place += sizeof(IMAGE_IMPORT_DESCRIPTOR)) {
        const auto library = image.At<IMAGE_IMPORT_DESCRIPTOR>(place);
        if (library.Name == 0) {
            return imports;
        }
        for (std::size_t name = image.PlaceOf(library.OriginalFirstThunk);; name += sizeof(std::uint64_t)) {
            const auto entry = image.At<std::uint64_t>(name);
            if (entry == 0) {
                break;
            }
            imports.push_back(
                {image.TextAt(library.Name), IMAGE_SNAP_BY_ORDINAL64(entry)
                                                 ? "#" + std::to_string(IMAGE_ORDINAL64(entry))
                                                 : image.TextAt(entry + offsetof(IMAGE_IMPORT_BY_NAME, Name))});
        }
    }
}
