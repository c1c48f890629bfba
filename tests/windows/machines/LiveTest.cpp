#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "ReadMachine.h"
#include "RegistryKeys.h"
#include "ScratchDirectory.h"
#include "SystemView.h"

namespace {
const std::string kPci = R"(SYSTEM\CurrentControlSet\Enum\PCI\)";
const std::string kDevice = "VEN_5D1A&DEV_7E57&SUBSYS_00015D1A&REV_01";
const std::string kKit = MORVIX_KIT_DIRECTORY;

/// Devices with values of every kind that matters.
class Devices
{
public:
    Devices()
    {
        SetRegistryList(m_first.Path() + R"(\3&1)", "CompatibleIDs",
                        {R"(PCI\VEN_5D1A&DEV_7E57)", R"(PCI\VEN_5D1A&CC_020000)"});
        SetRegistryText(m_first.Path() + R"(\3&1)", "DeviceDesc", R"(say "a" \ b)");
        SetRegistryNumber(m_first.Path() + R"(\3&1)", "ConfigFlags", 0x40);
        SetRegistryBytes(m_first.Path() + R"(\3&0)", "CompatibleIDs", std::string("a\0b", 3), REG_BINARY);
        SetRegistryText(m_first.Path() + R"(\3&0)", "Class", "Net", REG_EXPAND_SZ);
        SetRegistryText(m_second.Path() + R"(\1\Properties)", "Class", "not of the instance");
        CreateRegistryKey(m_third.Path());
    }

private:
    ScratchRegistryKey m_first{kPci + kDevice};
    ScratchRegistryKey m_second{kPci + "ven_5d1a&dev_7e58"};
    ScratchRegistryKey m_third{kPci + "VEN_5D1A&DEV_7E59"};
};

void RunCommand(const std::string& command)
{
    ASSERT_EQ(0, std::system(("cmd /c " + command).c_str())) << command;
}

Machine ReadFile(const std::string& path)
{
    return ReadMachine({.place = MachineSource::Place::File, .path = path});
}

Machine ReadThisMachine()
{
    return ReadMachine({.place = MachineSource::Place::ThisMachine, .path = "live"});
}

PciDevices WithoutPresence(PciDevices devices)
{
    for (PciDevice& device : *devices) {
        for (PciInstance& instance : device.instances) {
            instance.presence = Presence::Unknown;
        }
    }
    return devices;
}

/// A fact that is not known says why in words of its own.
template <class T>
void ExpectSame(const Fact<T>& live, const Fact<T>& exported)
{
    EXPECT_EQ(live.value.has_value(), exported.value.has_value()) << live.from << "; " << exported.from;
    if (live && exported) {
        EXPECT_EQ(live, exported) << live.from << "; " << exported.from;
    }
}

void ExpectSame(const Machine& live, const Machine& exported)
{
    ASSERT_TRUE(live.devices && exported.devices);
    EXPECT_EQ(WithoutPresence(live.devices), WithoutPresence(exported.devices));
    EXPECT_EQ("CurrentControlSet", live.controlSet);
    EXPECT_EQ("CurrentControlSet", exported.controlSet);
    ExpectSame(live.system.version, exported.system.version);
    ExpectSame(live.system.platform, exported.system.platform);
    ExpectSame(live.system.servicePack, exported.system.servicePack);
    ExpectSame(live.system.productType, exported.system.productType);
    ExpectSame(live.system.architecture, exported.system.architecture);
    ExpectSame(live.system.codePage, exported.system.codePage);
    ExpectSame(live.system.productName, exported.system.productName);
    ExpectSame(live.system.computerName, exported.system.computerName);
    ExpectSame(live.restart.ndisVersion, exported.restart.ndisVersion);
    ExpectSame(live.restart.iscsiInitiatorRecent, exported.restart.iscsiInitiatorRecent);
    EXPECT_TRUE(ViewOfSystem(live.system));
    EXPECT_TRUE(ViewOfSystem(exported.system));
}
} // namespace

TEST(Live, IsTheSameMachineAsItsExport)
{
    const Devices devices;
    const ScratchDirectory folder;
    RunCommand("reg export HKLM\\System " + folder.At("a.reg") + " /y >nul");
    RunCommand(R"(reg export "HKLM\Software\Microsoft\Windows NT\CurrentVersion" )" + folder.At("b.reg") + " /y >nul");
    WriteFileBytes(folder.At("c.reg"), ReadFileBytes(folder.At("a.reg")) + ReadFileBytes(folder.At("b.reg")));
    const Machine live = ReadThisMachine();
    ExpectSame(live, ReadFile(folder.At("c.reg")));
    EXPECT_EQ(SourceKind::Live, live.kind);
    const auto found = std::ranges::find(*live.devices, kDevice, &PciDevice::name);
    ASSERT_NE(live.devices->end(), found);
    ASSERT_EQ(2U, found->instances.size());
    EXPECT_EQ((EightBitValue{REG_BINARY, std::string("a\0b", 3)}), *found->instances.front().compatibleIds);
    EXPECT_EQ(R"(say "a" \ b)", TextIn(*found->instances.back().description));
}

TEST(Collect, WritesWhatDescribesThisMachine)
{
    const Devices devices;
    const ScratchDirectory folder;
    RunCommand(kKit + "\\collect.cmd " + folder.At("PC7.reg") + " >nul");
    const Machine collected = ReadFile(folder.At("PC7.reg"));
    ASSERT_FALSE(collected.refused) << TextOf(collected.diagnostics.front());
    ExpectSame(ReadThisMachine(), collected);
    EXPECT_EQ("PC7", collected.name);
    for (const Diagnostic& diagnostic : collected.diagnostics) {
        EXPECT_EQ(Severity::Note, diagnostic.severity) << TextOf(diagnostic);
    }
}

TEST(Collect, EndsWithAnErrorWhenTheFileCannotBeWritten)
{
    EXPECT_NE(0, std::system(("cmd /c " + kKit + R"(\collect.cmd C:\no\such\folder\PC7.reg >nul 2>nul)").c_str()));
}

TEST(Collect, EndsWithAnErrorWhenWhatIsThereCannotBeReplaced)
{
    const ScratchDirectory folder;
    const auto collect = [](const std::string& path) {
        return std::system(("cmd /c " + kKit + "\\collect.cmd " + path + " >nul 2>nul").c_str());
    };
    std::filesystem::create_directory(folder.At("PC8.reg"));
    EXPECT_NE(0, collect(folder.At("PC8.reg")));
    WriteFileBytes(folder.At("PC9.reg"), "old");
    RunCommand("attrib +r " + folder.At("PC9.reg"));
    EXPECT_NE(0, collect(folder.At("PC9.reg")));
    EXPECT_EQ("old", ReadFileBytes(folder.At("PC9.reg")));
    RunCommand("attrib -r " + folder.At("PC9.reg"));
    EXPECT_EQ(0, collect(folder.At("PC9.reg")));
    EXPECT_NE("old", ReadFileBytes(folder.At("PC9.reg")));
}
