#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "Exports.h"
#include "HiveWriter.h"
#include "ReadMachine.h"
#include "SystemView.h"

using testing::HasSubstr;

namespace {
/// A folder like a system's own, gone at the end.
class HiveFolder
{
public:
    HiveFolder()
        : m_folder(std::filesystem::temp_directory_path() / ("machines-" + std::to_string(getpid())) / "PC9" / "config")
    {
        std::filesystem::remove_all(m_folder.parent_path().parent_path());
        std::filesystem::create_directories(m_folder);
    }
    ~HiveFolder() { std::filesystem::remove_all(m_folder.parent_path().parent_path()); }
    HiveFolder(const HiveFolder&) = delete;
    HiveFolder& operator=(const HiveFolder&) = delete;

    std::string Write(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(m_folder / name, std::ios::binary) << bytes;
        return (m_folder / name).string();
    }
    [[nodiscard]] Machine Read(const std::string& bytes) const
    {
        return ReadMachine({.place = MachineSource::Place::File, .path = Write("SYSTEM", bytes)});
    }
    /// What is said of the hive, without the folder.
    [[nodiscard]] std::string RemarksOn(const std::string& bytes) const
    {
        std::string remarks = Remarks(Read(bytes));
        for (std::size_t at = 0; (at = remarks.find(m_folder.string() + "/", at)) != std::string::npos;) {
            remarks.erase(at, m_folder.string().size() + 1);
        }
        return remarks;
    }

private:
    std::filesystem::path m_folder;
};

HiveKey SystemKeys()
{
    HiveKey root;
    root.At("Select").Number("Current", 2);
    root.At(R"(ControlSet001\Enum\PCI\VEN_OLD\1)").Text("Class", "old");
    HiveKey& set = root.At("ControlSet002");
    set.At(R"(Control\ProductOptions)").Text("ProductType", "ServerNT");
    set.At(R"(Control\Session Manager\Environment)").Text("PROCESSOR_ARCHITECTURE", "AMD64");
    set.At(R"(Control\ComputerName\ComputerName)").Text("ComputerName", "HOST9");
    set.At(R"(Control\Windows)").Number("CSDVersion", 0x100);
    set.At("Enum\\PCI\\" + kCardName + "\\3&1").List("CompatibleIDs", std::string("PCI\\VEN_5D1A&CC_020000\0\0", 24));
    set.At("Enum\\PCI\\" + kCardName + "\\3&0").Number("ConfigFlags", 1);
    set.At(R"(Enum\PCI\ven_6)");
    return root;
}

HiveKey SoftwareKeys()
{
    HiveKey root;
    root.At(R"(Microsoft\Windows NT\CurrentVersion)").Text("CurrentVersion", "6.1").Text("CurrentBuildNumber", "7601");
    return root;
}
} // namespace

TEST(Hive, IsReadInItsCurrentControlSet)
{
    const Machine machine = HiveFolder().Read(WriteHive(SystemKeys()));
    EXPECT_FALSE(machine.refused);
    EXPECT_FALSE(machine.dirty);
    EXPECT_EQ("", Remarks(machine));
    EXPECT_EQ("HOST9", machine.name);
    EXPECT_EQ(SourceKind::Hive, machine.kind);
    EXPECT_EQ("ControlSet002", machine.controlSet);
    ASSERT_TRUE(machine.devices && machine.devices->size() == 2);
    EXPECT_EQ(kCardName, machine.devices->front().name);
    EXPECT_EQ("ven_6", machine.devices->back().name);
    ASSERT_EQ(2U, machine.devices->front().instances.size());
    EXPECT_EQ("3&0", machine.devices->front().instances.front().name);
    EXPECT_EQ((EightBitValue{7, std::string("PCI\\VEN_5D1A&CC_020000\0\0", 24)}),
              *machine.devices->front().instances.back().compatibleIds);
    EXPECT_EQ(1, *machine.system.servicePack);
    EXPECT_EQ(R"(HKLM\SYSTEM\ControlSet002\Control\ProductOptions\ProductType)", machine.system.productType.from);
}

TEST(Hive, AloneDoesNotTellTheVersion)
{
    const Machine machine = HiveFolder().Read(WriteHive(SystemKeys()));
    EXPECT_FALSE(ViewOfSystem(machine.system));
    EXPECT_THAT(MissingForView(machine.system), HasSubstr("the system's version"));
    EXPECT_THAT(MissingForView(machine.system), testing::Not(HasSubstr("processor")));
}

TEST(Hive, IsReadWithTheSoftwareHiveBesideIt)
{
    const HiveFolder folder;
    folder.Write("software", WriteHive(SoftwareKeys()));
    const Machine machine = folder.Read(WriteHive(SystemKeys()));
    EXPECT_EQ((VersionNumbers{6, 1, 7601}), *machine.system.version);
    EXPECT_EQ("WinSrv2K8R232E", ViewOfSystem(machine.system)->section);
}

TEST(Hive, IsReadAlsoWhenTheOneBesideItIsDamaged)
{
    const HiveFolder folder;
    folder.Write("SOFTWARE", "regf, but no more");
    EXPECT_EQ("SOFTWARE: the hive ends inside its header; copy the hive again\n",
              folder.RemarksOn(WriteHive(SystemKeys())));
    EXPECT_TRUE(folder.Read(WriteHive(SystemKeys())).devices);
}

TEST(Hive, ThatWasNotClosedSaysSo)
{
    std::string bytes = WriteHive(SystemKeys());
    bytes[4] = 8;
    FixHiveChecksum(bytes);
    const HiveFolder folder;
    EXPECT_TRUE(folder.Read(bytes).dirty);
    EXPECT_EQ(
        "SYSTEM: the hive was not closed: the latest changes are in its .LOG files, which are not read; shut the "
        "machine "
        "down and copy the hive again to be sure\n",
        folder.RemarksOn(bytes));
    EXPECT_TRUE(folder.Read(bytes).devices);
}

TEST(Hive, ThatIsDamagedIsRefusedWithOneLine)
{
    const std::string whole = WriteHive(SystemKeys());
    const auto patched = [&](std::size_t at, char byte, bool fix = true) {
        std::string bytes = whole;
        bytes[at] = byte;
        if (fix) {
            FixHiveChecksum(bytes);
        }
        return bytes;
    };
    const std::string again = "; copy the hive again\n";
    const std::string length = std::to_string(whole.size());
    const HiveFolder folder;
    EXPECT_EQ("SYSTEM: the hive ends inside its header" + again, folder.RemarksOn(whole.substr(0, 4095)));
    EXPECT_EQ(
        "SYSTEM: the hive is cut off after " + std::to_string(whole.size() - 1) + " of " + length + " bytes" + again,
        folder.RemarksOn(whole.substr(0, whole.size() - 1)));
    EXPECT_EQ("SYSTEM: the checksum of the hive's header is wrong" + again, folder.RemarksOn(patched(100, 1, false)));
    EXPECT_EQ("SYSTEM: a hive of an unknown version" + again, folder.RemarksOn(patched(20, 2)));
    EXPECT_EQ("SYSTEM: a hive of an unknown version" + again, folder.RemarksOn(patched(24, 7)));
    EXPECT_EQ("SYSTEM: the hive's header is damaged" + again, folder.RemarksOn(patched(39, 1)));
    EXPECT_EQ("SYSTEM: the hive's header is damaged" + again, folder.RemarksOn(patched(41, 8)));
    EXPECT_EQ("SYSTEM: the hive is damaged at byte 4096" + again, folder.RemarksOn(patched(4096, 'x')));
    EXPECT_EQ("SYSTEM: the hive is damaged at byte 4096" + again, folder.RemarksOn(patched(4100, 1)));
    EXPECT_EQ("SYSTEM: the hive is damaged at byte 4096" + again, folder.RemarksOn(patched(4104, 1)));
    EXPECT_TRUE(folder.Read(patched(4096, 'x')).refused);
}

TEST(Hive, ThatIsNoSystemHiveIsRefused)
{
    const HiveFolder folder;
    const std::string cure = R"(; name the file SYSTEM of Windows\System32\config)"
                             "\n";
    EXPECT_EQ("SYSTEM: not a SYSTEM hive: nothing says which control set is current" + cure,
              folder.RemarksOn(WriteHive(SoftwareKeys())));
    HiveKey missing;
    missing.At("Select").Number("Current", 3);
    EXPECT_EQ("SYSTEM: the current control set, ControlSet003, is missing" + cure,
              folder.RemarksOn(WriteHive(missing)));
    missing.At("Select").Number("Current", 1000);
    EXPECT_THAT(folder.RemarksOn(WriteHive(missing)), HasSubstr("nothing says which"));
}

TEST(Hive, ThatListsAKeyOftenHasItOnce)
{
    HiveKey root;
    root.At("Select").Number("Current", 2);
    root.At(R"(ControlSet002\Enum\PCI\VEN_1)").timesListed = 20'000;
    root.At(R"(ControlSet002\Enum\PCI\VEN_1\1)").timesListed = 20'000;
    const Machine machine = HiveFolder().Read(WriteHive(root));
    EXPECT_FALSE(machine.refused);
    ASSERT_TRUE(machine.devices && machine.devices->size() == 1);
    EXPECT_EQ(1U, machine.devices->front().instances.size());
}

TEST(Hive, WithoutTheKeyOfTheDevicesIsRefused)
{
    HiveKey root;
    root.At("Select").Number("Current", 2);
    root.At(R"(ControlSet002\Control\ProductOptions)").Text("ProductType", "WinNT");
    const HiveFolder folder;
    EXPECT_EQ("SYSTEM: has no key Enum\\PCI: no devices are known; copy the hive again\n",
              folder.RemarksOn(WriteHive(root)));
    EXPECT_TRUE(folder.Read(WriteHive(root)).refused);
}

TEST(Hive, WithAnyByteOfItsKeysChangedIsReadOrRefused)
{
    const std::string whole = WriteHive(SystemKeys());
    const HiveFolder folder;
    for (std::size_t at = 4096 + 32; at < 4096 + 1600; at += 3) {
        std::string bytes = whole;
        bytes[at] = static_cast<char>(bytes[at] ^ 0xFF);
        const Machine machine = folder.Read(bytes);
        EXPECT_EQ(machine.refused,
                  !machine.diagnostics.empty() && machine.diagnostics.back().severity == Severity::Error)
            << at;
    }
}
