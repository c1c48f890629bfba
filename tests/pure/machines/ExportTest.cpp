#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Exports.h"
#include "HiveWriter.h"

using testing::HasSubstr;

namespace {
const std::string kId = R"(PCI\VEN_5D1A&CC_020000)";
const std::string kIdList = kId + '\0' + '\0';

/// The bytes of the compatible IDs of the first instance of the first device; "<none>" when there is none.
std::string FirstIds(const Machine& machine)
{
    if (!machine.devices || machine.devices->empty() || machine.devices->front().instances.empty()) {
        return "<no instance>";
    }
    const auto& ids = machine.devices->front().instances.front().compatibleIds;
    return ids ? ids->bytes : "<none>";
}

std::string DeviceNames(const Machine& machine)
{
    if (!machine.devices) {
        return "<no key>";
    }
    std::string names;
    for (const PciDevice& device : *machine.devices) {
        names += device.name;
        for (const PciInstance& instance : device.instances) {
            names += "/" + instance.name;
        }
        names += " ";
    }
    return names;
}

std::string InRegedit4(const std::string& values)
{
    return "REGEDIT4\r\n\r\n" + DeviceKey(kCardName, "3&1") + values;
}
} // namespace

TEST(Export, IsReadInUtf16InUtf8AndInEightBitForm)
{
    const std::string text = kExportHeader + Device(kCardName, kId);
    for (const std::string& bytes : {Utf16(text), Wide(text), "\xEF\xBB\xBF" + text, text}) {
        const Machine machine = ReadText(bytes);
        EXPECT_FALSE(machine.refused);
        EXPECT_EQ(kIdList, FirstIds(machine));
        EXPECT_EQ(7U, machine.devices->front().instances.front().compatibleIds->type);
        EXPECT_EQ("", Remarks(machine));
    }
}

TEST(Export, OfTheOldFormatHoldsTextsInTheCodePage)
{
    const Machine machine =
        ReadText(InRegedit4("\"CompatibleIDs\"=" + Hex(7, kIdList) +
                            "\r\n\"DeviceDesc\"=\"Adapt\xE9r\"\r\n\"FriendlyName\"=hex(2):41,00\r\n"));
    EXPECT_EQ(kIdList, FirstIds(machine));
    const PciInstance& instance = machine.devices->front().instances.front();
    EXPECT_EQ(std::string("Adapt\xE9r\0", 8), instance.description->bytes);
    EXPECT_EQ(std::string("A\0", 2), instance.friendlyName->bytes);
}

TEST(Export, InEightBitTextOfTheNewFormatHoldsWideBytes)
{
    // What is left when the command interpreter's "type" has joined two files.
    EXPECT_EQ(kIdList, FirstIds(ReadText(kExportHeader + Device(kCardName, kId))));
}

TEST(Export, IsTheSameInBlocksOfAnySize)
{
    const std::string text = kExportHeader + Device(kCardName, kId) + "[" + kPciKey +
                             "\\X\\1]\n\"Class\"=\"a\r\nb\"\r\n" + "\"Other\"=nonsense\r\n" + Device("VEN_1", "b");
    for (const std::string& bytes : {Utf16(text), text, Utf16(text) + Utf16(text), Utf16(text) + "REGEDIT4\r\n" + text,
                                     text + "[HKLM\\Other]\r\n\xEF\xBB\xBF\xFF\xFE;nonsense\r\n" + text}) {
        const std::string expected = Describe(ReadText(bytes));
        EXPECT_THAT(expected, HasSubstr("VEN_1"));
        for (const std::size_t size : {1U, 2U, 3U, 5U, 7U, 8U, 9U, 64U, 1001U}) {
            EXPECT_EQ(expected, Describe(ReadInBlocks(bytes, size))) << size;
        }
    }
}

TEST(Export, ListsDevicesAndInstancesInTheRegistrysOrder)
{
    const std::string text = kExportHeader + Device("VEN_b", "x") + DeviceKey("VEN_a", "9") + DeviceKey("VEN_A_", "1") +
                             DeviceKey("VEN_a", "10") + DeviceKey("VEN_C", "b") + DeviceKey("ven_c", "A") + "\r\n";
    EXPECT_EQ("VEN_a/10/9 VEN_A_/1 VEN_b/3&1 VEN_C/A/b ", DeviceNames(ReadText(Utf16(text))));
}

TEST(Export, KeepsADeviceWithoutInstances)
{
    EXPECT_EQ("VEN_1 ", DeviceNames(ReadText(kExportHeader + "[" + kPciKey + "\\VEN_1]\r\n\r\n")));
    EXPECT_EQ("", DeviceNames(ReadText(kExportHeader + "[" + kPciKey + "]\r\n\r\n")));
    EXPECT_EQ("<no key>",
              DeviceNames(ReadText(kExportHeader + R"([HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Control\Windows])"
                                                   "\r\n")));
}

TEST(Export, LeavesOutWhatLiesBelowAnInstance)
{
    const std::string text =
        kExportHeader + DeviceKey(kCardName, R"(3&1\Device Parameters)") + "\"Class\"=\"wrong\"\r\n" +
        DeviceKey(kCardName, R"(3&1\Properties\{a}\0001)") + "\"Class\"=\"wrong\"\r\n" + Device(kCardName, kId) +
        DeviceKey(kCardName, R"(3&1\Properties\{b})") + "@=hex(12):01\r\n\"CompatibleIDs\"=\"wrong\"\r\n";
    const Machine machine = ReadText(Utf16(text));
    EXPECT_EQ(kCardName + "/3&1 ", DeviceNames(machine));
    EXPECT_EQ(kIdList, FirstIds(machine));
    EXPECT_FALSE(machine.devices->front().instances.front().setupClass);
}

TEST(Export, MergesAKeyThatComesTwiceAndTheLaterValueWins)
{
    const std::string text = kExportHeader + DeviceKey(kCardName, "1") + "\"Class\"=\"a\"\r\n\"Service\"=\"s\"\r\n" +
                             DeviceKey(kCardName, "1") + "\"CLASS\"=\"b\"\r\n\r\n";
    const Machine machine = ReadText(text);
    ASSERT_EQ(kCardName + "/1 ", DeviceNames(machine));
    EXPECT_EQ(std::string("b\0", 2), machine.devices->front().instances.front().setupClass->bytes);
    EXPECT_EQ(std::string("s\0", 2), machine.devices->front().instances.front().service->bytes);
}

TEST(Export, RemovesKeysAndValuesThatItDeletes)
{
    const std::string text = kExportHeader + Device("VEN_1", "a") + Device("VEN_2", kId) + "[-" + kPciKey +
                             "\\ven_1]\r\n" + "\"Class\"=\"x\"\r\n" + DeviceKey("VEN_2", "3&1") +
                             "\"CompatibleIDs\"=-\r\n\r\n";
    const Machine machine = ReadText(text);
    EXPECT_EQ("VEN_2/3&1 ", DeviceNames(machine));
    EXPECT_EQ("<none>", FirstIds(machine));
    EXPECT_EQ("", Remarks(machine));
}

TEST(Export, MayRemoveTheWholeTree)
{
    const std::string text = kExportHeader + Device("VEN_1", "a") +
                             "[-HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Enum]\r\n[-HKLM\\SYSTEM\\nothing]\r\n";
    EXPECT_EQ("<no key>", DeviceNames(ReadText(text)));
}

TEST(Export, TakesRootsAndKeysInAnyLetterCase)
{
    for (const std::string root : {"hkey_local_machine", "HKLM", "hklm", "Hkey_Local_Machine"}) {
        const std::string text = kExportHeader + "[" + root + R"(\system\currentcontrolset\enum\pci\VEN_1\2])" +
                                 "\r\n\"class\"=\"Net\"\r\n\r\n";
        const Machine machine = ReadText(text);
        EXPECT_EQ("VEN_1/2 ", DeviceNames(machine));
        EXPECT_EQ("CurrentControlSet", ReadText(text).controlSet.empty() ? "" : "CurrentControlSet");
        EXPECT_TRUE(machine.devices->front().instances.front().setupClass);
    }
}

TEST(Export, PassesOverOtherRoots)
{
    const std::string text =
        kExportHeader + R"([HKEY_USERS\SYSTEM\CurrentControlSet\Enum\PCI\VEN_1\2])" + "\r\n" + Device("VEN_3", "a");
    EXPECT_EQ("VEN_3/3&1 ", DeviceNames(ReadText(text)));
    EXPECT_EQ("", Remarks(ReadText(text)));
    const Machine machine = ReadText(kExportHeader + Device("VEN_3", "a") + "\r\n" +
                                     R"([HKEY_LOCAL_MACHINES\SYSTEM\CurrentControlSet\Enum\PCI\VEN_2\2])" + "\r\n");
    EXPECT_TRUE(machine.refused);
    EXPECT_EQ("PC7.reg:7: no root of a registry: \"HKEY_LOCAL_MACHINES\\SYSTEM\\CurrentContro\"; export it again\n",
              Remarks(machine));
}

TEST(Export, JoinedFromSeveralFilesIsOneMachine)
{
    const std::string first = Utf16(kExportHeader + Device("VEN_1", "a"));
    const std::string second = Utf16(kExportHeader + Device("VEN_2", kId));
    EXPECT_EQ("VEN_1/3&1 VEN_2/3&1 ", DeviceNames(ReadText(first + second)));
    EXPECT_EQ("", Remarks(ReadText(first + second)));
    const std::string old = "REGEDIT4\r\n\r\n" + DeviceKey("VEN_3", "1") + "\"CompatibleIDs\"=hex(7):41,00,00\r\n";
    EXPECT_EQ("VEN_1/3&1 VEN_2/3&1 VEN_3/1 ", DeviceNames(ReadText(first + old + second)));
    EXPECT_EQ(std::string("A\0\0", 3),
              ReadText(first + old + second).devices->back().instances.front().compatibleIds->bytes);
    EXPECT_EQ("", Remarks(ReadText(first + old + second)));
}

TEST(Export, JoinedInFormsThatNoMarkSeparatesIsOneMachine)
{
    const std::string first = kExportHeader + Device("VEN_1", "a");
    const std::string second = kExportHeader + Device("VEN_2", kId);
    for (const std::string& bytes :
         {Utf16(first) + second, Wide(first) + second, first + Wide(second), "\xEF\xBB\xBF" + first + Wide(second),
          Utf16(first) + second + Wide(first), Utf16(first) + "REGEDIT4\r\n\r\n" + Wide(second)}) {
        const Machine machine = ReadText(bytes);
        EXPECT_EQ("VEN_1/3&1 VEN_2/3&1 ", DeviceNames(machine));
        EXPECT_EQ("", Remarks(machine));
        EXPECT_EQ(Describe(machine), Describe(ReadInBlocks(bytes, 3)));
    }
}

TEST(Export, JoinedWithoutAnEndOfLineBetweenIsReadOn)
{
    const std::string first = Utf16(kExportHeader + DeviceKey("VEN_1", "1") + "\"ConfigFlags\"=dword:0000000a");
    const Machine machine = ReadText(first + Utf16(kExportHeader + Device("VEN_2", kId)));
    EXPECT_EQ("VEN_1/1 VEN_2/3&1 ", DeviceNames(machine));
    EXPECT_EQ(10U, NumberIn(*machine.devices->front().instances.front().configFlags));
    EXPECT_EQ("", Remarks(machine));
}

TEST(Export, JoinedAfterACarriageReturnWithoutALineFeedIsReadOn)
{
    const std::string first = Utf16(kExportHeader + DeviceKey("VEN_1", "1") + "\"ConfigFlags\"=dword:0000000a\r\n");
    const Machine machine = ReadText(first + std::string("\r\0", 2) + Utf16(kExportHeader + Device("VEN_2", kId)));
    EXPECT_EQ("VEN_1/1 VEN_2/3&1 ", DeviceNames(machine));
    EXPECT_EQ("", Remarks(machine));
}

TEST(Export, ReadsEveryKindOfValueAsAnEightBitCallReturnsIt)
{
    struct Row
    {
        std::string data;
        uint32_t type;
        std::string bytes;
    };
    const std::vector<Row> rows = {
        {R"("PCI\\VEN_1")", 1, std::string("PCI\\VEN_1\0", 10)},
        {R"("say \"a\"\\")", 1, std::string("say \"a\"\\\0", 9)},
        {R"("a\rb\nc\d")", 1, std::string("a\rb\nc\\d\0", 8)},
        {R"("" ; nothing)", 1, std::string("\0", 1)},
        {"\"two\r\nlines\"", 1, std::string("two\r\nlines\0", 11)},
        {Hex(1, Wide("ab")), 1, "ab"},
        {Hex(2, Wide("ab")), 2, "ab"},
        {"hex(7):41,00,42", 7, "A"},
        {"hex(7):", 7, ""},
        {Hex(3, std::string("a\0b\0", 4)), 3, std::string("a\0b\0", 4)},
        {"HEX:0A,fF , 1;x", 3, "\x0A\xFF\x01"},
        {"hex:0a,0B,1,0c, 0d ,0e,0f,", 3, "\x0A\x0B\x01\x0C\x0D\x0E\x0F"},
        {"hex:01,\\ \r\n  02,\\\r\n\t03", 3, "\x01\x02\x03"},
        {"dword:1", 4, std::string("\1\0\0\0", 4)},
        {"dword:DEADbeef", 4, "\xEF\xBE\xAD\xDE"},
        {"hex(4):01,02", 4, "\x01\x02"},
        {"hex(0):", 0, ""},
        {"hex(ffff0012):05", 0xFFFF0012, "\x05"},
    };
    for (const Row& row : rows) {
        const std::string text = kExportHeader + DeviceKey(kCardName, "1") + "\"CompatibleIDs\" = " + row.data +
                                 "\r\n\"Class\"=\"after\"\r\n";
        const Machine machine = ReadText(Utf16(text));
        ASSERT_EQ(kCardName + "/1 ", DeviceNames(machine)) << row.data;
        const PciInstance& instance = machine.devices->front().instances.front();
        EXPECT_EQ((EightBitValue{row.type, row.bytes}), instance.compatibleIds.value_or(EightBitValue{99, "none"}))
            << row.data;
        EXPECT_EQ("after", TextIn(instance.setupClass.value_or(EightBitValue{}))) << row.data;
    }
}

TEST(Export, CharactersWhoseLowByteIsADigitAreNoDigits)
{
    // U+0130 and U+0131.
    for (const std::string digits : {"\xC4\xB0\xC4\xB1", "0\xC4\xB1",
                                     "\xC4\xB0"
                                     "1"}) {
        const std::string text =
            "\xEF\xBB\xBF" + kExportHeader + DeviceKey(kCardName, "1") + "\"CompatibleIDs\"=hex:" + digits + ",00\r\n";
        EXPECT_EQ("PC7.reg:4: the value \"CompatibleIDs\" cannot be read; export it again\n", Remarks(ReadText(text)));
    }
}

TEST(Export, TurnsTextsIntoTheMachinesCodePage)
{
    const std::string values = std::string("\"Class\"=\"") + "\xC3\xA9\xD0\xA4" + "\"\r\n"; // e acute, Cyrillic ef
    const auto read = [&](const std::string& codePage, std::optional<uint32_t> given) {
        const std::string text = "\xEF\xBB\xBF" + kExportHeader + DeviceKey(kCardName, "1") + values +
                                 R"([HKLM\SYSTEM\CurrentControlSet\Control\Nls\CodePage])" + "\r\n\"ACP\"=\"" +
                                 codePage + "\"\r\n";
        return std::string(TextIn(*ReadText(text, given).devices->front().instances.front().setupClass));
    };
    EXPECT_EQ("\xE9?", read("1252", {}));
    EXPECT_EQ("?\xD4", read("1251", {}));
    EXPECT_EQ("\xE9?", read("1251", 1252));
    EXPECT_EQ("?\x84U", read("932", {}));
    EXPECT_EQ("\xC3\xA9\xD0\xA4", read("65001", {}));
    EXPECT_EQ("\xE9?", read("no number", {}));
    EXPECT_EQ("??", read("99999", {}));
}

TEST(Export, FindsTheCurrentControlSet)
{
    const auto set = [](const std::string& name) {
        return "[HKEY_LOCAL_MACHINE\\SYSTEM\\" + name + "\\Enum\\PCI\\VEN_" + name.substr(name.size() - 1) +
               "\\1]\r\n\r\n";
    };
    const auto select = [](int number) {
        return "[HKEY_LOCAL_MACHINE\\SYSTEM\\Select]\r\n\"Current\"=dword:" + std::to_string(number) + "\r\n";
    };
    struct Row
    {
        std::string text;
        std::string devices;
        std::string remark;
    };
    const std::vector<Row> rows = {
        {set("ControlSet001"), "VEN_1/1 ", ""},
        {set("ControlSet001") + set("ControlSet002") + select(2), "VEN_2/1 ", ""},
        {select(1) + set("ControlSet001") + set("ControlSet002"), "VEN_1/1 ", ""},
        {set("ControlSet001") + set("CurrentControlSet") + select(1), "VEN_t/1 ", ""},
        {set("ControlSet002") + set("ControlSet003"), "VEN_2/1 ",
         "PC7.reg: nothing says which control set is the current one (HKLM\\SYSTEM\\Select\\Current): ControlSet002 is "
         "read\n"},
        {set("ControlSet002") + select(1), "VEN_2/1 ",
         "PC7.reg: the current control set, number 001, is missing: ControlSet002 is read\n"},
        {set("ControlSet1") + set("ControlSetabc") + set("MyControlSet001") + set("ControlSet004"), "VEN_4/1 ", ""},
    };
    for (const Row& row : rows) {
        const Machine machine = ReadText(kExportHeader + row.text);
        EXPECT_EQ(row.devices, DeviceNames(machine)) << row.text;
        EXPECT_EQ(row.remark, Remarks(machine)) << row.text;
    }
}

TEST(Export, LooksIntoTheNumberedSetForWhatTheCurrentOneLacks)
{
    const std::string text =
        kExportHeader + Device("VEN_1", "a") +
        "[HKLM\\SYSTEM\\ControlSet003\\Control\\ProductOptions]\r\n\"ProductType\"=\"ServerNT\"\r\n";
    const Machine machine = ReadText(text);
    EXPECT_EQ(3, *machine.system.productType);
    EXPECT_EQ("VEN_1/3&1 ", DeviceNames(machine));
    EXPECT_EQ("CurrentControlSet", machine.controlSet);
}

TEST(Export, HasTheDevicesOfTheOldSystemsBelowTheRoot)
{
    const std::string text =
        "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\Enum\\PCI\\VEN_5D1A&DEV_1\\BUS_00]\r\n\"Class\"=\"Net\"\r\n\r\n";
    const Machine machine = ReadText(text);
    EXPECT_FALSE(machine.devices);
    ASSERT_TRUE(machine.devicesOf9x);
    EXPECT_EQ("VEN_5D1A&DEV_1", machine.devicesOf9x->front().name);
    EXPECT_EQ(&machine.devicesOf9x, &DevicesForFamily(machine, "Windows 98"));
    EXPECT_EQ(&machine.devicesOf9x, &DevicesForFamily(machine, "Windows Millenium"));
    EXPECT_EQ(&machine.devices, &DevicesForFamily(machine, "Windows Vista"));
    EXPECT_EQ(std::nullopt, DevicesForFamily(machine, "Windows NT"));
}

TEST(Export, NamesTheMachineAfterItsFile)
{
    EXPECT_EQ("PC7", ReadText(kExportHeader + Device("VEN_1", "a")).name);
}
