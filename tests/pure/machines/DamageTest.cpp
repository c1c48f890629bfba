#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ExportReader.h"
#include "Exports.h"
#include "HiveWriter.h"

using testing::HasSubstr;
using testing::StartsWith;

namespace {
const std::string kGood = Device("VEN_9", "good");

/// Reads an export whose damaged part is followed by a good device, which has to be there.
Machine ReadDamaged(const std::string& damaged)
{
    const Machine machine = ReadText(Utf16(kExportHeader + damaged + "\r\n" + kGood));
    EXPECT_FALSE(machine.refused) << damaged;
    EXPECT_TRUE(machine.devices && machine.devices->back().name == "VEN_9") << damaged;
    return machine;
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

TEST(DamagedExport, WithoutDevicesSaysSo)
{
    const Machine machine = ReadText(kExportHeader + "[HKLM\\SYSTEM\\Select]\r\n\"Current\"=dword:1\r\n");
    EXPECT_FALSE(machine.refused);
    EXPECT_EQ(
        R"(PC7.reg: has no key Enum\PCI: no devices are known; export HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Enum\PCI too)"
        "\n",
        Remarks(machine));
}

TEST(DamagedExport, SaysWhichLineCannotBeReadAndReadsTheRest)
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
        {key + "\"Class\"=hex:00,\\", ":4: the value \"Class\" does not end before the next key"},
        {key + "\"Class\"=\"Net", ":4: the value \"Class\" does not end before the next key"},
    };
    for (const Row& row : rows) {
        const std::string remark = "PC7.reg" + row.remark + "; export it again\n";
        // A value that is open takes the blank line too.
        EXPECT_EQ(remark, Remarks(ReadDamaged(row.damaged))) << row.damaged;
        EXPECT_THAT(Describe(ReadDamaged(row.damaged)), testing::Not(HasSubstr("    Class"))) << row.damaged;
    }
}

TEST(DamagedExport, CutOffAnywhereIsReadUpToThere)
{
    const std::string whole =
        Utf16(kExportHeader + Device("VEN_1", "a") + DeviceKey("VEN_2", "1") + "\"Class\"=\"Net\"\r\n" +
              "\"ConfigFlags\"=dword:00000001\r\n\"Driver\"=hex:01,02,\\\r\n  03\r\n");
    std::size_t quiet = 0;
    for (std::size_t length = 2; length < whole.size(); ++length) {
        const Machine machine = ReadText(whole.substr(0, length));
        const bool endsWithLine = length % 2 == 0 && length > 6 && whole.substr(length - 4, 4) == Wide("\r\n");
        if (machine.refused) {
            EXPECT_EQ(Severity::Error, machine.diagnostics.back().severity) << length;
            continue;
        }
        // A file that ends with a line may be whole, unless a value goes on.
        EXPECT_TRUE(endsWithLine || !machine.diagnostics.empty()) << length;
        quiet += machine.diagnostics.empty() ? 1 : 0;
    }
    EXPECT_EQ(6U, quiet);
    EXPECT_EQ("PC7.reg:10: the last line has no end: the file may be cut off; export it again\n",
              Remarks(ReadText(whole.substr(0, whole.size() - 4))));
    EXPECT_THAT(Remarks(ReadText(whole.substr(0, whole.size() - 5))),
                HasSubstr("PC7.reg: the file ends in the middle of a character; export it again\n"));
    EXPECT_EQ("PC7.reg:9: the file ends inside the value \"Driver\"; export it again\n",
              Remarks(ReadText(whole.substr(0, whole.find(Wide("  03"))))));
}

TEST(DamagedExport, ThatHasLostAByteIsReadFromTheNextLineOn)
{
    const std::string text = Utf16(kExportHeader + Device("VEN_1", "a") + DeviceKey("VEN_2", "1") +
                                   "\"Class\"=\"Net\"\r\n" + "\"Service\"=\"s\"\r\n" + kGood);
    const std::size_t inside = text.find(Wide("Net"));
    for (const std::string& bytes :
         {text.substr(0, inside) + text.substr(inside + 1), text.substr(0, inside) + "x" + text.substr(inside)}) {
        const Machine machine = ReadText(bytes);
        EXPECT_EQ("VEN_9", machine.devices->back().name);
        EXPECT_EQ("s", TextIn(*machine.devices->at(1).instances.front().service));
        EXPECT_THAT(Remarks(machine),
                    StartsWith("PC7.reg:7: a byte is missing or too many in this line; what follows is "
                               "read from the next line on; export it again\n"));
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
    EXPECT_EQ(21U, machine.diagnostics.size());
    EXPECT_THAT(Remarks(machine), HasSubstr("PC7.reg:1003: 980 more lines are damaged, up to this one"));
    EXPECT_EQ("VEN_9", machine.devices->back().name);
}

TEST(DamagedExport, WithALineWithoutEndIsReadInLittleMemory)
{
    // More than the reader keeps of a line.
    const std::string line(std::size_t{5} << 20, 'x');
    for (const std::string& head : {std::string(), DeviceKey("VEN_1", "1"), DeviceKey("VEN_1", "1") + "\"Class\"=\""}) {
        const Machine machine = ReadInBlocks(kExportHeader + head + line + "\r\n" + kGood, 65536);
        EXPECT_EQ("VEN_9", machine.devices->back().name);
        EXPECT_EQ(head.ends_with('"') ? "PC7.reg:4: a line that is too long to be a value; export it again\n" : "",
                  Remarks(machine));
    }
}

TEST(DamagedExport, WithMoreDevicesThanAnyMachineHasIsReadInPart)
{
    ExportReader reader("PC7.reg", 5000);
    reader.Feed(kExportHeader);
    for (int device = 10; device < 30; ++device) {
        reader.Feed("[HKLM\\SYSTEM\\CurrentControlSet\\Enum\\PCI\\VEN_" + std::to_string(device) + "]\r\n");
    }
    reader.Finish();
    const RegistryKey* const pci = reader.Tree().Find(R"(SYSTEM\CurrentControlSet\Enum\PCI)");
    ASSERT_NE(nullptr, pci);
    EXPECT_EQ(7U, pci->keys.size());
    ASSERT_EQ(1U, reader.Diagnostics().size());
    EXPECT_EQ("PC7.reg:10: more devices and values than any machine has; the rest is left out; export it again",
              TextOf(reader.Diagnostics().front()));
}

TEST(DamagedExport, WithMoreValuesThanAnyMachineHasIsReadInPart)
{
    ExportReader reader("PC7.reg", 5000);
    reader.Feed(kExportHeader + DeviceKey("VEN_1", "1") + "\"Class\"=\"" + std::string(3000, 'x') +
                "\"\r\n\"Service\"=\"s\"\r\n");
    reader.Finish();
    ASSERT_EQ(1U, reader.Diagnostics().size());
    EXPECT_EQ(4U, reader.Diagnostics().front().line);
}

TEST(DamagedExport, WithAValueLongerThanAnyIsReadWithoutIt)
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
    EXPECT_FALSE(machine.devices->front().instances.front().setupClass);
    EXPECT_FALSE(machine.devices->front().instances.front().service);
    EXPECT_EQ("VEN_9", machine.devices->back().name);
}
