// Texts of every length into buffers of every size: what is read is what fits, and no byte around a buffer is touched.

#include <gmock/gmock.h>
#include <windows.h>

#include <algorithm>

#include "FileVersion.h"
#include "GuardedBuffer.h"
#include "ImportOverride.h"
#include "InfFiles.h"
#include "InfReader.h"
#include "InfSearch.h"
#include "InfStore.h"
#include "LangString.h"
#include "LocationInfo.h"
#include "OSLanguage.h"
#include "OSVersion.h"
#include "PlatformKit.h"
#include "ScratchDirectory.h"
#include "StoredInfs.h"
#include "TestFiles.h"

namespace {
constexpr char kKey[] = "VEN_5D1A&DEV_7A01";

class BufferLimits : public testing::Test
{
protected:
    ~BufferLimits() override
    {
        LocationInfo = {};
        CopiedInfList = {};
    }

    [[nodiscard]] std::string Write(const std::string& name, const std::string& content) const
    {
        WriteFileBytes(m_directory.At(name), content);
        return m_directory.At(name);
    }

    ScratchDirectory m_directory;
};

TEST(GuardedBuffer, SeesAWriteInFrontAndLacksATerminatorAtFirst)
{
    const GuardedBuffer buffer(4);
    EXPECT_TRUE(buffer.IsUntouchedInFront());
    EXPECT_THROW(static_cast<void>(buffer.Text()), std::runtime_error);
    buffer.Data()[-1] = 'x';
    EXPECT_FALSE(buffer.IsUntouchedInFront());
    MEMORY_BASIC_INFORMATION behind = {};
    VirtualQuery(buffer.Data() + buffer.Size(), &behind, sizeof(behind));
    EXPECT_EQ(behind.State, static_cast<DWORD>(MEM_RESERVE));
}

TEST_F(BufferLimits, AValueIsCutToItsBufferAndEndsInIt)
{
    for (const std::size_t length : {0u, 1u, 98u, 99u, 100u, 259u, 260u, 32767u}) {
        const std::string value(length, 'v');
        const std::string file = Write(std::to_string(length) + ".ini", "[Section]\r\nKey=" + value + "\r\n");
        for (const std::size_t size : {1u, 2u, 99u, 100u, 101u, 260u}) {
            const GuardedBuffer buffer(size);
            const uint32_t read = PlatformKit().ReadText("Section", "Key", "", buffer.All(), file);
            EXPECT_EQ(buffer.Text(), value.substr(0, size - 1)) << length << " into " << size;
            EXPECT_EQ(read, std::min(length, size - 1)) << length << " into " << size;
            EXPECT_TRUE(buffer.IsUntouchedInFront());
        }
    }
}

TEST_F(BufferLimits, ADefaultIsCutLikeAValue)
{
    const std::string file = Write("empty.ini", "");
    const std::string longDefault(400, 'd');
    const GuardedBuffer buffer(260);
    EXPECT_EQ(PlatformKit().ReadText("Section", "Key", longDefault.c_str(), buffer.All(), file), 259U);
    EXPECT_EQ(buffer.Text(), longDefault.substr(0, 259));
}

TEST_F(BufferLimits, ASectionThatDoesNotFitIsCutAndEndedTwice)
{
    for (const std::size_t length : {1u, 200u, 252u, 253u, 254u, 255u, 300u, 1018u, 40000u}) {
        const std::string line = "Key=" + std::string(length, 'v');
        const std::string file = Write(std::to_string(length) + ".ini", "[Section]\r\n" + line + "\r\n");
        for (const std::size_t size : {260u, 520u, 1024u, 32767u}) {
            const GuardedBuffer buffer(size);
            const uint32_t read = PlatformKit().ReadSection("Section", buffer.All(), file);
            EXPECT_EQ(read, std::min(line.size() + 1, size - 2)) << length << " into " << size;
            const std::string bytes = buffer.Bytes();
            EXPECT_EQ(bytes.substr(0, std::min(line.size(), size - 2)), line.substr(0, size - 2));
            EXPECT_EQ(bytes.substr(std::min(line.size(), size - 2), 2), std::string(2, '\0'));
            EXPECT_TRUE(buffer.IsUntouchedInFront());
        }
    }
}

TEST_F(BufferLimits, TheNamesOfAllKeysAreCutAndEndedTwice)
{
    std::string content = "[Manufacturer]\r\n";
    for (int key = 0; key < 100; ++key) {
        content += "%Maker" + std::to_string(key) + "%=Norda\r\n";
    }
    const std::string file = Write("keys.inf", content);
    const GuardedBuffer buffer(100);
    EXPECT_EQ(PlatformKit().ReadText("Manufacturer", nullptr, "Manufacturer", buffer.All(), file), 98U);
    EXPECT_EQ(buffer.Bytes().substr(98), std::string(2, '\0'));
    EXPECT_EQ(buffer.Text(), "%Maker0%");
}

/// Reads the INF of one path from a copy of it, for the life of the object: a platform may take longer paths than this
/// one does.
class LongPathReads
{
public:
    LongPathReads(const std::string& path, const std::string& copy)
    {
        longPath = path;
        shortPath = copy;
    }

private:
    static const char* Readable(LPCSTR file) { return file == longPath ? shortPath.c_str() : file; }
    static DWORD WINAPI ReadText(LPCSTR section, LPCSTR key, LPCSTR other, LPSTR buffer, DWORD bytes, LPCSTR file)
    {
        return platformText(section, key, other, buffer, bytes, Readable(file));
    }
    static DWORD WINAPI ReadSection(LPCSTR section, LPSTR buffer, DWORD bytes, LPCSTR file)
    {
        return platformSection(section, buffer, bytes, Readable(file));
    }

    inline static std::string longPath;
    inline static std::string shortPath;
    inline static decltype(&GetPrivateProfileStringA) platformText = nullptr;
    inline static decltype(&GetPrivateProfileSectionA) platformSection = nullptr;
    ImportOverride m_text{"GetPrivateProfileStringA", InPlaceOf(platformText, &GetPrivateProfileStringA, &ReadText)};
    ImportOverride m_section{"GetPrivateProfileSectionA",
                             InPlaceOf(platformSection, &GetPrivateProfileSectionA, &ReadSection)};
};

TEST_F(BufferLimits, AnInfPathOf259CharactersFillsTheCallersBufferAndALongerOneLeavesItEmpty)
{
    const StoredInfs stored;
    LocationInfo.setupDir = m_directory.At("Setup");
    WriteFileBytes(
        m_directory.At(R"(Setup\Morvix.ini)"),
        "[" + std::string(RowOf(COSVersion().GetOSCode()).sectionKey) + "]\r\nInfSectionName=Norda.NTamd64\r\n");
    DriverInstallRecord record;
    std::ranges::copy(kFamilyWindowsVista, record.osFamily.begin());
    const std::string directory = m_directory.At("Drv\\");
    for (const std::size_t length : {255U, 259U, 260U, 261U}) {
        const std::string name = std::string(length - directory.size() - 4, 'n') + ".inf";
        WriteFileBytes(directory + name, QualifiedInf(kKey));
        const LongPathReads reads(directory + name, Write("copy.inf", QualifiedInf(kKey)));
        const GuardedBuffer infPath(260);
        EXPECT_TRUE(GetInfFile(kKey, directory, record, infPath.Data(), {})) << length;
        EXPECT_EQ(infPath.Text(), length <= 259 ? directory + name : "") << length;
        EXPECT_TRUE(infPath.IsUntouchedInFront());
        DeleteFileA((directory + name).c_str());
    }
}

TEST_F(BufferLimits, TheReadersOwnBuffersAreTerminated)
{
    for (const std::size_t length : {254u, 255u, 256u, 259u, 260u, 1900u}) {
        const std::string id(length, 'V');
        const std::string file = Write(
            "long.inf", "[Models]\r\n%D%=Nic, PCI\\" + id + "\r\n[Strings]\r\nD=" + std::string(length, 'd') + "\r\n");
        EXPECT_EQ(ParseINFile(id.c_str(), "Models", file.c_str()), 1) << length;
        EXPECT_EQ(TextIn(matchedHardwareId), id.substr(0, 255));
        EXPECT_EQ(TextIn(deviceDescription), std::string(std::min<std::size_t>(length, 259), 'd'));
    }
}

TEST_F(BufferLimits, AKeyAfterTenThousandSectionsIsFound)
{
    std::string content;
    for (int section = 0; section < 10000; ++section) {
        content += "[S" + std::to_string(section) + "]\r\nKey=Value\r\n";
    }
    const std::string file = Write("many.inf", content + "[Models]\r\n%D%=Nic, PCI\\" + kKey + "\r\n");
    EXPECT_EQ(ParseINFile(kKey, "Models", file.c_str()), 1);
}

TEST_F(BufferLimits, AFileVersionNeedsItsRoomAndWritesNoFurther)
{
    const GuardedBuffer enough(24);
    EXPECT_TRUE(GetModuleVersion(TestFile("versioned_file.dll"), enough.All()));
    EXPECT_EQ(enough.Text(), "7.8.9.10");
    EXPECT_TRUE(enough.IsUntouchedInFront());
    const GuardedBuffer small(23);
    EXPECT_FALSE(GetModuleVersion(TestFile("versioned_file.dll"), small.All()));
    EXPECT_EQ(small.Bytes(), std::string(23, '#'));
    EXPECT_FALSE(GetModuleVersion(TestFile("versioned_file.dll"), {}));
}

TEST_F(BufferLimits, ALanguageCodeFillsItsBufferAndNoMore)
{
    for (const int size : {4, 5, 8}) {
        const GuardedBuffer code(static_cast<std::size_t>(size));
        GetOSLanguageID(code.Data(), size);
        EXPECT_LE(code.Text().size(), 3U);
        EXPECT_TRUE(code.IsUntouchedInFront());
    }
}

TEST_F(BufferLimits, AMessageTextEndsInItsBuffer)
{
    for (const int size : {1, 2, 260}) {
        const GuardedBuffer text(static_cast<std::size_t>(size));
        LoadLangString(GetModuleHandleA("user32.dll"), 1, text.Data(), size);
        EXPECT_LT(text.Text().size(), text.Size());
        EXPECT_TRUE(text.IsUntouchedInFront());
    }
}
} // namespace
