#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ExportReader.h"
#include "Exports.h"
#include "HiveWriter.h"

using testing::HasSubstr;
using testing::StartsWith;

namespace {
const std::string kGood = Device("VEN_9", "good");

/// Reads an export whose damaged part is followed by a good device, which does not save it.
Machine ReadDamaged(const std::string& damaged)
{
    const Machine machine = ReadText(Utf16(kExportHeader + damaged + "\r\n" + kGood));
    EXPECT_TRUE(machine.refused) << damaged;
    EXPECT_FALSE(machine.devices) << damaged;
    return machine;
}

/// Reads an export with damage that concerns no device and no fact of the system.
Machine ReadDamagedElsewhere(const std::string& damaged)
{
    const Machine machine = ReadText(Utf16(kExportHeader + damaged + "\r\n" + kGood));
    EXPECT_FALSE(machine.refused) << damaged;
    EXPECT_TRUE(machine.devices && machine.devices->back().name == "VEN_9") << damaged;
    return machine;
}

/// The part of a machine that a plan is made of.
std::string PlannedPart(const Machine& machine)
{
    std::string text = machine.system.version.value ? std::to_string(machine.system.version->build) : "?";
    text += machine.system.productType ? std::to_string(*machine.system.productType) : "?";
    for (const PciDevice& device : machine.devices.value_or(std::vector<PciDevice>())) {
        text += " " + device.name;
        for (const PciInstance& instance : device.instances) {
            text += "/" + instance.name + "=" + (instance.compatibleIds ? instance.compatibleIds->bytes : "none");
        }
    }
    return text;
}

std::string Refusal(const std::string& bytes)
{
    const Machine machine = ReadText(bytes);
    EXPECT_TRUE(machine.refused);
    EXPECT_FALSE(machine.devices);
    EXPECT_EQ(1U, machine.diagnostics.size());
    EXPECT_EQ(Severity::Error, machine.diagnostics.front().severity);
    return Remarks(machine);
}

std::string NotAnExport(const std::string& line, const std::string& what)
{
    return "PC7.reg" + line + ": not a registry export: " + what +
           "; write one with collect.cmd, or with \"reg export\"\n";
}
} // namespace

TEST(DamagedExport, ThatIsNoExportIsRefused)
{
    EXPECT_EQ(NotAnExport("", "the file is empty"), Refusal(""));
    EXPECT_EQ(NotAnExport("", "the file is empty"), Refusal("\r\n\r\n"));
    EXPECT_EQ(NotAnExport(":1", "it begins with \"[HKEY_LOCAL_MACHINE\\SYSTEM]\""),
              Refusal("[HKEY_LOCAL_MACHINE\\SYSTEM]\r\n"));
    EXPECT_EQ(NotAnExport(":2", "it begins with \"MZ\\x90\""), Refusal("\r\nMZ\x90\r\n"));
    EXPECT_EQ(NotAnExport(":1", "it begins with \"\\x1B[2J\""), Refusal("\x1B[2J"));
    EXPECT_EQ(NotAnExport(":1", "it begins with \"REGEDIT5\""), Refusal("REGEDIT5\r\n" + kGood));
    EXPECT_EQ(NotAnExport(":1", "its text is UTF-16 with the high byte first"),
              Refusal(std::string("\xFE\xFF\0W\0i\0\r\0\n", 10)));
}

TEST(DamagedExport, ThatHasNoneOfTheKeysIsRefused)
{
    const std::string refusal =
        R"(PC7.reg: has none of the keys that describe a machine; export HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Enum\PCI, or use collect.cmd)"
        "\n";
    EXPECT_EQ(refusal, Refusal(kExportHeader));
    EXPECT_EQ(refusal, Refusal(kExportHeader + "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Other]\r\n\"a\"=\"b\"\r\n"));
}

TEST(DamagedExport, WithoutTheKeyOfTheDevicesIsRefused)
{
    EXPECT_EQ(
        R"(PC7.reg: has no key Enum\PCI: no devices are known; export HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Enum\PCI too)"
        "\n",
        Refusal(kExportHeader + "[HKLM\\SYSTEM\\Select]\r\n\"Current\"=dword:1\r\n"));
}

TEST(DamagedExport, WhereADeviceMayBeLostIsRefusedWithTheLine)
{
    struct Row
    {
        std::string damaged; // begins in line 3
        std::string remark;
    };
    const std::string key = DeviceKey("VEN_1", "1");
    const std::vector<Row> rows = {
        {"[" + kPciKey + "\\VEN_1\\1",
         ":3: a key's name without its end: \"SYSTEM\\CurrentControlSet\\Enum\\PCI\\VEN_1\\1\""},
        {"[HKEY_LOCAL_MACHINE", ":3: a key's name without its end: \"\""},
        {"[HKXY_LOCAL_MACHINE\\SYSTEM]", ":3: no root of a registry: \"HKXY_LOCAL_MACHINE\\SYSTEM]\""},
        {key + "[nonsense", ":4: no root of a registry: \"nonsense\""},
        {key + "\x01\x02!", ":4: neither a key nor a value: \"\\x01\\x02!\""},
        {key + "\"Class", ":4: a value that cannot be read: \"\""},
        {key + "\"Class\" \"Net\"", ":4: a value that cannot be read: \"\"Net\"\""},
        {key + "\"Class\"=", ":4: the value \"Class\" cannot be read"},
        {key + "\"Class\"=Net", ":4: the value \"Class\" cannot be read"},
        {key + "\"Class\"=\"Net\" x", ":4: the value \"Class\" cannot be read"},
        {key + "\"Class\"=-1", ":4: the value \"Class\" cannot be read"},
        {key + "\"Class\"=dword:", ":4: the value \"Class\" cannot be read"},
        {key + "\"Class\"=dword:123456789", ":4: the value \"Class\" cannot be read"},
        {key + "\"Class\"=dword:12g", ":4: the value \"Class\" cannot be read"},
        {key + "\"Class\"=hex", ":4: the value \"Class\" cannot be read"},
        {key + "\"Class\"=hex(7:00", ":4: the value \"Class\" cannot be read"},
        {key + "\"Class\"=hex(x):00", ":4: the value \"Class\" cannot be read"},
        {key + "\"Class\"=hex():00", ":4: the value \"Class\" cannot be read"},
        {key + "\"Class\"=hex:0,,1", ":4: the value \"Class\" cannot be read"},
        {key + "\"Class\"=hex:001", ":4: the value \"Class\" cannot be read"},
        {key + "\"Class\"=hex:00,zz", ":4: the value \"Class\" cannot be read"},
        {key + "\"Class\"=hex:00,\\\r\n  zz", ":4: the value \"Class\" cannot be read"},
        // The line that was taken for more bytes may have been a value that is needed.
        {key + "\"Other\"=hex:00,\\\r\n\"CompatibleIDs\"=\"x\"", ":4: the value \"Other\" cannot be read"},
        {key + "\"Other\"=\"Net", ":4: the value \"Other\" does not end before the next key"},
        {key + "\"Class\"=hex:00,\\", ":4: the value \"Class\" does not end before the next key"},
        {key + "\"Class\"=\"Net", ":4: the value \"Class\" does not end before the next key"},
    };
    for (const Row& row : rows) {
        const std::string remark = "PC7.reg" + row.remark + "; export it again\n";
        // A value that is open takes the blank line too.
        EXPECT_EQ(remark, Remarks(ReadDamaged(row.damaged))) << row.damaged;
    }
}

TEST(DamagedExport, ElsewhereIsReadWithAWarning)
{
    const std::string key = DeviceKey("VEN_1", "1");
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"[HKEY_LOCAL_MACHINE\\SOFTWARE\\Oth", ":3: a key's name without its end: \"SOFTWARE\\Oth\""},
        {"[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Enum\\PCI\\VEN_1\\1\\x",
         ":3: a key's name without its end: \"SYSTEM\\CurrentControlSet\\Enum\\PCI\\VEN_1\\1\\x\""},
        {key + "\"Other\"=Net", ":4: the value \"Other\" cannot be read"},
        {"[HKEY_LOCAL_MACHINE\\SOFTWARE\\Other]\r\nnonsense\r\n\"a\"=b", ""},
        {"[HKEY_USERS\\Other", ""},
    };
    for (const auto& [damaged, remark] : rows) {
        EXPECT_EQ(remark.empty() ? "" : "PC7.reg" + remark + "; export it again\n",
                  Remarks(ReadDamagedElsewhere(damaged)))
            << damaged;
    }
}

TEST(DamagedExport, CutOffAnywhereIsRefusedOrDescribesTheSameMachine)
{
    // As reg.exe writes it: a blank line after each key.
    const std::string text =
        kExportHeader +
        "[HKLM\\SYSTEM\\CurrentControlSet\\Control\\ProductOptions]\r\n\"ProductType\"=\"WinNT\"\r\n\r\n" + "[" +
        kPciKey + "]\r\n\r\n" + Device("VEN_1", "a") + "[" + kPciKey + "\\VEN_2]\r\n\r\n" + DeviceKey("VEN_2", "1") +
        "\"Capabilities\"=dword:00000006\r\n\"HardwareID\"=" + Hex(7, Wide(std::string("abc\0\0", 5))) +
        "\r\n\"CompatibleIDs\"=" + Hex(7, Wide(std::string("PCI\\VEN_5D1A\0\0", 14))) +
        "\r\n\"Class\"=\"Net\"\r\n\r\n" + DeviceKey("VEN_2", "1\\Device Parameters") +
        "\"a\"=hex:00,01,\\\r\n  02\r\n\"b\"=dword:00000001\r\n\r\n";
    for (const std::string& whole : {Utf16(text), text}) {
        const std::string expected = PlannedPart(ReadText(whole));
        EXPECT_THAT(expected, HasSubstr("PCI\\VEN_5D1A"));
        std::size_t betweenKeys = 0;
        std::size_t same = 0;
        for (std::size_t length = 0; length < whole.size(); ++length) {
            const std::string cut = whole.substr(0, length);
            const Machine machine = ReadText(cut);
            if (machine.refused) {
                EXPECT_EQ(Severity::Error, machine.diagnostics.front().severity) << length;
            } else if (PlannedPart(machine) == expected) {
                ++same;
            } else {
                // Between two keys, where the first part is an export of its own.
                const std::string rest = whole.substr(length);
                const std::size_t next = rest.find_first_not_of(std::string_view("\r\n\0", 3));
                EXPECT_EQ('[', rest.at(next)) << length << ": " << Remarks(machine);
                ++betweenKeys;
            }
        }
        EXPECT_GT(20U, betweenKeys);
        EXPECT_LT(5U, same);
    }
}

TEST(DamagedExport, SaysHowItIsCutOff)
{
    const std::string device = kGood + DeviceKey("VEN_1", "1");
    const std::string ids = "\"CompatibleIDs\"=" + Hex(7, Wide(std::string("a\0\0", 3))) + "\r\n";
    const std::string again = "; export it again";
    const std::string lineCure = again + ", or end the last line if the file is whole\n";
    const std::string inside =
        "PC7.reg: the file ends inside a device: neither its IDs nor the blank line after a key "
        "follow; export it again, or add a blank line if the file is whole\n";
    const std::vector<std::pair<std::string, std::string>> rows = {
        {device, inside},
        {device + "\"Class\"=\"Net\"\r\n", inside},
        {kGood + "[" + kPciKey + "\\VEN_1]\r\n", inside},
        {device.substr(0, device.size() - 2), "PC7.reg:6: the file ends inside this line" + lineCure},
        {device + ids + "\"Class\"=hex:01,02", "PC7.reg:8: the file ends inside this line" + lineCure},
        {device + ids + "\"ConfigFlags\"=dword:0000", "PC7.reg:8: the file ends inside this line" + lineCure},
        {device + ids + "\"Class\"=\"Net", "PC7.reg:8: the file ends inside the value \"Class\"" + again + "\n"},
        {device + ids + "\"Class\"=hex:01,\\\r\n",
         "PC7.reg:8: the file ends inside the value \"Class\"" + again + "\n"},
        {device + ids + DeviceKey("VEN_1", "1\\x") + "\"Class\"=hex:01,\\\r\n",
         "PC7.reg: the file ends inside a value" + again + "\n"},
        {device + ids + DeviceKey("VEN_1", "1\\x") + "\"Cla", "PC7.reg:9: the file ends inside this line" + lineCure},
        {device + ids + "[HKEY_LOC", "PC7.reg:8: no root of a registry: \"HKEY_LOC\"" + again + "\n"},
        {device + ids + "[", "PC7.reg:8: no root of a registry: \"\"" + again + "\n"},
        {device + ids + "[HKEY_LOCAL_MACHINE\\SOFTWARE\\x",
         "PC7.reg:8: a key's name without its end: \"SOFTWARE\\x\"" + again + "\n"},
    };
    for (const auto& [text, remark] : rows) {
        EXPECT_EQ(remark, Refusal(kExportHeader + text)) << text;
    }
    const std::string odd = Utf16(kExportHeader + kGood);
    EXPECT_EQ("PC7.reg: the file ends in the middle of a character" + again + "\n", Refusal(odd + "\r"));
}

TEST(DamagedExport, WithoutOnlyTheLastEndOfLineIsRead)
{
    const std::string device =
        kExportHeader + kGood + DeviceKey("VEN_1", "1") + "\"CompatibleIDs\"=hex(7):41,00,00,00,00,00";
    for (const std::string& last :
         {std::string(), std::string("\r\n\"Class\"=\"Net\""), std::string("\r\n\"ConfigFlags\"=dword:00000001"),
          std::string("\r\n\"Class\"=-"), "\r\n" + DeviceKey("VEN_1", "1\\x") + "\"Class\"=\"Net\"",
          std::string("\r\n; comment")}) {
        const Machine machine = ReadText(device + last);
        EXPECT_FALSE(machine.refused) << last << Remarks(machine);
        EXPECT_THAT(Remarks(machine),
                    HasSubstr(": the last line has no end: the file may be cut off; export it again\n"));
        EXPECT_EQ(Severity::Warning, machine.diagnostics.front().severity);
    }
}

TEST(DamagedExport, ThatHasLostAByteIsRefused)
{
    const std::string text = Utf16(kExportHeader + Device("VEN_1", "a") + DeviceKey("VEN_2", "1") +
                                   "\"Class\"=\"Net\"\r\n" + "\"Service\"=\"s\"\r\n" + kGood);
    const std::size_t inside = text.find(Wide("Net"));
    // The lines after it are followed again: nothing else is said.
    for (const std::string& bytes :
         {text.substr(0, inside) + text.substr(inside + 1), text.substr(0, inside) + "x" + text.substr(inside)}) {
        EXPECT_THAT(Refusal(bytes),
                    StartsWith("PC7.reg:7: a byte is missing or too many in this line; export it again\n"));
    }
}

TEST(DamagedExport, WithControlCharactersInNamesNamesThemInEscapes)
{
    const Machine machine = ReadText(Utf16(kExportHeader + Device("VEN_\x1B[31m", "a") + kGood));
    EXPECT_EQ("VEN_\x1B[31m", machine.devices->front().name);
    EXPECT_EQ("PC7.reg: unusual characters in the name of the device VEN_\\x1B[31m\\3&1\n", Remarks(machine));
    EXPECT_EQ(Severity::Note, machine.diagnostics.front().severity);
}

TEST(DamagedExport, WithCompatibleIdsOfAnotherTypeSaysSoAndKeepsThem)
{
    const Machine machine =
        ReadText(Utf16(kExportHeader + DeviceKey("VEN_1", "1") + "\"CompatibleIDs\"=\"PCI\\\\VEN_5D1A&CC_020000\"\r\n" +
                       DeviceKey("VEN_2", "1") + "\"CompatibleIDs\"=" + Hex(7, Wide("a\x7F")) + "\r\n"));
    EXPECT_EQ(
        "PC7.reg: CompatibleIDs of VEN_1\\1 is of type 1, not a list of texts (7); it is read as the installer reads "
        "it\n"
        "PC7.reg: CompatibleIDs of VEN_2\\1 has unusual characters\n",
        Remarks(machine));
}

TEST(DamagedExport, WithDamageInEveryLineIsSummedUp)
{
    std::string text = kExportHeader + DeviceKey("VEN_1", "1");
    for (int line = 0; line < 1000; ++line) {
        text += "nonsense\r\n";
    }
    const Machine machine = ReadText(text + kGood);
    EXPECT_TRUE(machine.refused);
    EXPECT_EQ(21U, machine.diagnostics.size());
    EXPECT_THAT(Remarks(machine), HasSubstr("PC7.reg:1003: 980 more lines are damaged, up to this one"));
}

TEST(DamagedExport, WithALineWithoutEndIsReadInLittleMemory)
{
    // More than the reader keeps of a line.
    const std::string line(std::size_t{5} << 20, 'x');
    for (const std::string& head : {std::string(), DeviceKey("VEN_1", "1"), DeviceKey("VEN_1", "1") + "\"Class\"=\""}) {
        const Machine machine = ReadInBlocks(kExportHeader + head + line + "\r\n" + kGood, 65536);
        EXPECT_EQ(head.ends_with('"'), machine.refused);
        EXPECT_EQ(head.ends_with('"') ? "PC7.reg:4: a line that is too long to be a value; export it again\n" : "",
                  Remarks(machine));
    }
}

TEST(DamagedExport, WithMoreDevicesThanAnyMachineHasIsRefused)
{
    ExportReader reader("PC7.reg", 5000);
    reader.Feed(kExportHeader);
    for (int device = 10; device < 30; ++device) {
        reader.Feed("[HKLM\\SYSTEM\\CurrentControlSet\\Enum\\PCI\\VEN_" + std::to_string(device) + "]\r\n");
    }
    reader.Finish();
    EXPECT_TRUE(reader.IsRefused());
    EXPECT_TRUE(reader.Tree().IsEmpty());
    ASSERT_EQ(1U, reader.Diagnostics().size());
    EXPECT_EQ("PC7.reg:10: more devices and values than any machine has; export it again",
              TextOf(reader.Diagnostics().front()));
}

TEST(DamagedExport, WithMoreValuesThanAnyMachineHasIsRefused)
{
    ExportReader reader("PC7.reg", 5000);
    reader.Feed(kExportHeader + DeviceKey("VEN_1", "1") + "\"Class\"=\"" + std::string(3000, 'x') +
                "\"\r\n\"Service\"=\"s\"\r\n");
    reader.Finish();
    ASSERT_EQ(1U, reader.Diagnostics().size());
    EXPECT_EQ(4U, reader.Diagnostics().front().line);
}

TEST(DamagedExport, WithAValueLongerThanAnyIsRefused)
{
    std::string hundredBytes;
    for (int byte = 0; byte < 100; ++byte) {
        hundredBytes += "7f,";
    }
    std::string bytes = "hex:";
    for (int line = 0; line < 11'000; ++line) {
        bytes += hundredBytes + "\\\r\n";
    }
    const std::string text = kExportHeader + DeviceKey("VEN_1", "1") + "\"Class\"=\"" + std::string(1'100'000, 'x') +
                             "\"\r\n\"Service\"=" + bytes + "\r\n" + kGood;
    const Machine machine = ReadText(text);
    EXPECT_THAT(Remarks(machine), HasSubstr("PC7.reg:4: the value \"Class\" cannot be read"));
    EXPECT_THAT(Remarks(machine), HasSubstr("PC7.reg:5: the value \"Service\" cannot be read"));
    EXPECT_TRUE(machine.refused);
}
