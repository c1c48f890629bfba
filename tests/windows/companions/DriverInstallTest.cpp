#include <gtest/gtest.h>
#include <windows.h>
// setupapi.h needs windows.h first.
#include <setupapi.h>

#include <algorithm>

#include "CompanionFiles.h"
#include "InstallOutcome.h"
#include "NetInstClient.h"
#include "RecordFields.h"
#include "RegistryKeys.h"
#include "ScratchDirectory.h"
#include "SimulatedAdapter.h"

namespace {
constexpr char kDevice[] = "VEN_5D1A&DEV_1A2B&SUBSYS_0C0F5D1A&REV_07";

int32_t Status(uint32_t bits)
{
    return static_cast<int32_t>(bits);
}

std::string GigabitInf()
{
    return KitFile("Drv\\Win7x64\\ngea62x64.inf");
}

void ExpectRefusal(const InstallAnswer& answer, DWORD lastError)
{
    EXPECT_EQ(answer.status, Status(kStatusRefused)) << std::hex << answer.status;
    EXPECT_EQ(answer.lastError, lastError);
}
} // namespace

TEST(RecordFields, ATextThatFillsItsFieldIsReadToTheEndOfTheField)
{
    RawRecord record;
    record.bytes.fill('x');
    const FieldText inf = ReadField(&record, kInfPathField);
    EXPECT_EQ(std::string(inf.data()), std::string(256, 'x'));
    const FieldText id = ReadField(&record, kHardwareIdField);
    EXPECT_EQ(std::string(id.data()), std::string(300, 'x'));
}

TEST(RecordFields, ATextThatIsTooLongIsTruncatedAndTerminated)
{
    RawRecord record;
    record.bytes.fill('x');
    WriteField(&record, kFamilyField, std::string(300, 'y'));
    EXPECT_EQ(record.Family(), std::string(203, 'y'));
    EXPECT_EQ(record.bytes[204], 'x');
}

TEST(DriverInstall, BindsTheDeviceToItsDriver)
{
    const SimulatedAdapter adapter(kDevice);
    const InstallAnswer answer = InstallThroughNetInst(GigabitInf(), adapter.HardwareId());
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(adapter.Value("Service"), "NGEA");
    EXPECT_EQ(adapter.Value("DeviceDesc"), "Norda NG1000E Gigabit Network Connection");
    ASSERT_FALSE(adapter.ClassKey().empty());
    EXPECT_EQ(ReadRegistryText(adapter.ClassKey() + "\\Ndi", "Service"), "NGEA");
    EXPECT_EQ(FileVersionOf(SystemDriverFile("ngea62x64.sys")), "11.4.62.0");
}

TEST(DriverInstall, LeavesNoLastErrorAfterASuccess)
{
    const SimulatedAdapter adapter(kDevice);
    EXPECT_EQ(InstallThroughNetInst(GigabitInf(), adapter.HardwareId(), ERROR_ACCESS_DENIED).lastError,
              static_cast<DWORD>(ERROR_SUCCESS));
}

TEST(DriverInstall, ReplacesADriverThatIsAlreadyBound)
{
    const SimulatedAdapter adapter(kDevice);
    ASSERT_EQ(InstallThroughNetInst(KitFile("Drv\\Win8x64\\ngea63x64.inf"), adapter.HardwareId()).status, 0);
    ASSERT_EQ(FileVersionOf(SystemDriverFile("ngea.sys")), "11.4.63.0");
    EXPECT_EQ(InstallThroughNetInst(GigabitInf(), adapter.HardwareId()).status, 0);
    EXPECT_EQ(ReadRegistryText(adapter.ClassKey(), "InfPath"), "ngea62x64.inf");
    EXPECT_EQ(FileVersionOf(SystemDriverFile("ngea62x64.sys")), "11.4.62.0");
    // The device no longer refers to its first driver, so its destructor does not remove it.
    RemoveInstalledFiles("ngea63x64");
    DeleteFileA(SystemDriverFile("ngea.sys").c_str());
}

TEST(DriverInstall, TakesAnUpperCaseInfPath)
{
    const SimulatedAdapter adapter(kDevice);
    std::string path = GigabitInf();
    std::transform(path.begin(), path.end(), path.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    EXPECT_EQ(InstallThroughNetInst(path, adapter.HardwareId()).status, 0);
    EXPECT_EQ(adapter.Value("Service"), "NGEA");
}

TEST(DriverInstall, AMissingInfIsARefusalWithFileNotFound)
{
    const SimulatedAdapter adapter(kDevice);
    ExpectRefusal(InstallThroughNetInst(KitFile("Drv\\Win7x64\\none.inf"), adapter.HardwareId()), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(adapter.ClassKey(), "");
}

TEST(DriverInstall, AFileThatIsNoInfIsARefusalWithTheSetUpError)
{
    const SimulatedAdapter adapter(kDevice);
    ExpectRefusal(InstallThroughNetInst(KitFile("Morvix.ini"), adapter.HardwareId()), ERROR_WRONG_INF_STYLE);
}

TEST(DriverInstall, ADeviceThatIsNotPresentIsNotARefusal)
{
    const InstallAnswer answer = InstallThroughNetInst(GigabitInf(), "PCI\\VEN_5D1A&DEV_FFFF");
    EXPECT_EQ(answer.status, Status(0xE000020B));
    EXPECT_EQ(answer.lastError, static_cast<DWORD>(ERROR_NO_SUCH_DEVINST));
}

TEST(DriverInstall, AnInfThatDoesNotListTheDeviceBindsNothing)
{
    const SimulatedAdapter adapter(kDevice);
    ExpectRefusal(InstallThroughNetInst(KitFile("Drv\\Win7x64\\nxga62x64.inf"), adapter.HardwareId()),
                  ERROR_NO_COMPAT_DRIVERS);
    EXPECT_EQ(adapter.ClassKey(), "");
}

TEST(DriverInstall, AKitWithoutTheDriverFileIsRefusedWithoutAskingForADisk)
{
    const SimulatedAdapter adapter(kDevice);
    const ScratchDirectory kit;
    CopyFileTo(GigabitInf(), kit.At("ngea62x64.inf"));
    ExpectRefusal(InstallThroughNetInst(kit.At("ngea62x64.inf"), adapter.HardwareId()), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(adapter.ClassKey(), "");
}

TEST(DriverInstall, ADriverFileInTheDirectoryThatTheInfNamesIsFound)
{
    const SimulatedAdapter adapter(kDevice);
    const ScratchDirectory kit;
    std::string inf = ReadFileBytes(GigabitInf());
    const std::string files = "ngea62x64.sys = 1\r\n";
    const std::string disk = "1 = %Disk%\r\n";
    ASSERT_NE(inf.find(files), std::string::npos);
    inf.replace(inf.find(files), files.size(), "ngea62x64.sys = 1,amd64\r\n");
    ASSERT_NE(inf.find(disk), std::string::npos);
    inf.replace(inf.find(disk), disk.size(), "1 = %Disk%,,,\\disk1\r\n");
    WriteFileBytes(kit.At("ngea62x64.inf"), inf);
    ExpectRefusal(InstallThroughNetInst(kit.At("ngea62x64.inf"), adapter.HardwareId()), ERROR_FILE_NOT_FOUND);
    CopyFileTo(KitFile("Drv\\Win7x64\\ngea62x64.sys"), kit.At("disk1\\amd64\\ngea62x64.sys"));
    EXPECT_EQ(InstallThroughNetInst(kit.At("ngea62x64.inf"), adapter.HardwareId()).status, 0);
    EXPECT_EQ(FileVersionOf(SystemDriverFile("ngea62x64.sys")), "11.4.62.0");
}

TEST(DriverInstall, ARecordWithoutTextsIsRefused)
{
    const InstallAnswer answer = InstallThroughNetInst("", "");
    EXPECT_LT(answer.status, 0);
    EXPECT_NE(answer.lastError, static_cast<DWORD>(ERROR_SUCCESS));
}

TEST(DriverInstall, ARecordWithUnterminatedTextsIsRefused)
{
    const NetInstLibrary library;
    RawRecord record;
    record.bytes.fill('x');
    const Held<IDriverInstallInterface> installer = library.MakeInstaller(record);
    ASSERT_NE(installer, nullptr);
    EXPECT_LT(installer->InstallForRecord(&record, 0), 0);
    EXPECT_TRUE(std::all_of(record.bytes.begin(), record.bytes.end(), [](char c) { return c == 'x'; }));
}

TEST(DriverInstall, RefusesANullRecordAndUnknownFlags)
{
    const NetInstLibrary library;
    RawRecord record;
    const Held<IDriverInstallInterface> installer = library.MakeInstaller(record);
    ASSERT_NE(installer, nullptr);
    EXPECT_EQ(installer->InstallForRecord(nullptr, 0), Status(0x80004003));
    EXPECT_EQ(installer->InstallForRecord(&record, 1), Status(0x80070057));
}
