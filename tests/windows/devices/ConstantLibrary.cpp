#include "ConstantLibrary.h"

#include <windows.h>

#include <cstring>

#include "ScratchDirectory.h"

namespace {
constexpr DWORD kFileAlignment = 0x200;
constexpr DWORD kSectionAddress = 0x1000;
constexpr DWORD kSectionBytes = 0x1000;

template <class T>
void Put(std::string& bytes, DWORD offset, const T& value)
{
    std::memcpy(&bytes.at(offset), &value, sizeof(value));
}

/// The only section: the export directory with its tables, the names, and the code. Addresses are those of the loaded
/// library.
class Section
{
public:
    explicit Section(const Exports& exports) : m_bytes(kSectionBytes, '\0')
    {
        const auto count = static_cast<DWORD>(exports.size());
        const DWORD functions = Take(count * sizeof(DWORD));
        const DWORD names = Take(count * sizeof(DWORD));
        const DWORD ordinals = Take(count * sizeof(WORD));
        IMAGE_EXPORT_DIRECTORY directory{};
        directory.Base = 1;
        directory.NumberOfFunctions = directory.NumberOfNames = count;
        directory.AddressOfFunctions = kSectionAddress + functions;
        directory.AddressOfNames = kSectionAddress + names;
        directory.AddressOfNameOrdinals = kSectionAddress + ordinals;
        directory.Name = PutText("constant.dll");
        DWORD index = 0;
        // The loader looks names up by bisection: the map has them in order.
        for (const auto& [name, result] : exports) {
            Put(m_bytes, names + index * DWORD{sizeof(DWORD)}, PutText(name));
            Put(m_bytes, functions + index * DWORD{sizeof(DWORD)}, PutFunction(result));
            Put(m_bytes, ordinals + index * DWORD{sizeof(WORD)}, static_cast<WORD>(index));
            ++index;
        }
        Put(m_bytes, 0, directory);
    }
    [[nodiscard]] const std::string& Bytes() const { return m_bytes; }

private:
    DWORD Take(std::size_t bytes)
    {
        const DWORD offset = m_used;
        m_used += static_cast<DWORD>((bytes + 7) / 8 * 8);
        return offset;
    }
    DWORD PutText(const std::string& text)
    {
        const DWORD offset = Take(text.size() + 1);
        std::memcpy(&m_bytes.at(offset), text.c_str(), text.size() + 1);
        return kSectionAddress + offset;
    }
    DWORD PutFunction(uint32_t result)
    {
        const DWORD offset = Take(6);
        m_bytes.at(offset) = '\xB8'; // mov eax, result
        Put(m_bytes, offset + 1, result);
        m_bytes.at(offset + 5) = '\xC3'; // ret
        return kSectionAddress + offset;
    }

    std::string m_bytes;
    DWORD m_used = (sizeof(IMAGE_EXPORT_DIRECTORY) + 7) / 8 * 8;
};

IMAGE_NT_HEADERS64 Headers()
{
    IMAGE_NT_HEADERS64 headers{};
    headers.Signature = IMAGE_NT_SIGNATURE;
    headers.FileHeader.Machine = IMAGE_FILE_MACHINE_AMD64;
    headers.FileHeader.NumberOfSections = 1;
    headers.FileHeader.SizeOfOptionalHeader = sizeof(headers.OptionalHeader);
    headers.FileHeader.Characteristics = IMAGE_FILE_EXECUTABLE_IMAGE | IMAGE_FILE_LARGE_ADDRESS_AWARE | IMAGE_FILE_DLL;
    IMAGE_OPTIONAL_HEADER64& optional = headers.OptionalHeader;
    optional.Magic = IMAGE_NT_OPTIONAL_HDR64_MAGIC;
    optional.SizeOfCode = kSectionBytes;
    optional.BaseOfCode = kSectionAddress;
    optional.ImageBase = 0x180000000;
    optional.SectionAlignment = kSectionAddress;
    optional.FileAlignment = kFileAlignment;
    optional.MajorOperatingSystemVersion = optional.MajorSubsystemVersion = 5;
    optional.MinorOperatingSystemVersion = optional.MinorSubsystemVersion = 2;
    optional.SizeOfImage = kSectionAddress + kSectionBytes;
    optional.SizeOfHeaders = kFileAlignment;
    optional.Subsystem = IMAGE_SUBSYSTEM_WINDOWS_GUI;
    optional.DllCharacteristics = IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE | IMAGE_DLLCHARACTERISTICS_NX_COMPAT;
    optional.NumberOfRvaAndSizes = IMAGE_NUMBEROF_DIRECTORY_ENTRIES;
    // The directory's own size only: a function inside its bounds would count as a forwarder's text.
    optional.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT] = {kSectionAddress, sizeof(IMAGE_EXPORT_DIRECTORY)};
    return headers;
}
} // namespace

void WriteConstantLibrary(const std::string& path, const Exports& exports)
{
    std::string file(kFileAlignment, '\0');
    IMAGE_DOS_HEADER dos{};
    dos.e_magic = IMAGE_DOS_SIGNATURE;
    dos.e_lfanew = sizeof(dos);
    Put(file, 0, dos);
    Put(file, sizeof(dos), Headers());
    IMAGE_SECTION_HEADER section{};
    std::memcpy(section.Name, ".text", 5);
    section.Misc.VirtualSize = kSectionBytes;
    section.VirtualAddress = kSectionAddress;
    section.SizeOfRawData = kSectionBytes;
    section.PointerToRawData = kFileAlignment;
    section.Characteristics = IMAGE_SCN_CNT_CODE | IMAGE_SCN_MEM_EXECUTE | IMAGE_SCN_MEM_READ;
    Put(file, sizeof(dos) + sizeof(IMAGE_NT_HEADERS64), section);
    WriteFileBytes(path, file + Section(exports).Bytes());
}
