#include "InfModelLine.h"

#include <gtest/gtest.h>

#include <string>

namespace {
std::string IdOf(std::string_view line)
{
    return std::string(ParseModelLine(line).hardwareId.value_or("<none>"));
}
std::string KeyOf(std::string_view line)
{
    return std::string(ParseModelLine(line).descriptionKey.value_or("<none>"));
}
} // namespace

TEST(ModelLine, GivesTheKeyAndTheFirstIdWithoutItsBus)
{
    const std::string line = R"(%Nic.DeviceDesc% = Nic.ndi, PCI\VEN_5D1A&DEV_7A01&SUBSYS_A01F5D1A)";
    EXPECT_EQ(KeyOf(line), "%Nic.DeviceDesc% ");
    EXPECT_EQ(IdOf(line), "VEN_5D1A&DEV_7A01&SUBSYS_A01F5D1A");
}

TEST(ModelLine, ClassCodeIsCutOff)
{
    EXPECT_EQ(IdOf(R"(%D.DeviceDesc%=Inst.ndi, PCI\VEN_5D1A&DEV_7A01&CC_0200)"), "VEN_5D1A&DEV_7A01");
    EXPECT_EQ(IdOf(R"(%D%=I, PCI\VEN_5D1A&CC_02&CC_0200)"), "VEN_5D1A");
    EXPECT_EQ(IdOf(R"(%D%=I, PCI\VEN_5D1A&cc_0200)"), "VEN_5D1A&cc_0200");
    EXPECT_EQ(IdOf(R"(%D%=I, PCI\CC_0200)"), "CC_0200");
}

TEST(ModelLine, SubsystemStays)
{
    EXPECT_EQ(IdOf(R"(%D.DeviceDesc%=Inst.ndi, PCI\VEN_5D1A&DEV_7A01&SUBSYS_00015D1A)"),
              "VEN_5D1A&DEV_7A01&SUBSYS_00015D1A");
}

TEST(ModelLine, CompatibleIdsAfterTheFirstAreIgnored)
{
    EXPECT_EQ(IdOf(R"(%D%=I, PCI\VEN_1, PCI\VEN_2)"), "VEN_1");
    EXPECT_EQ(IdOf(R"(%D%=I, PCI\VEN_1,PCI\VEN_2)"), "VEN_1");
    EXPECT_EQ(IdOf(R"(%D%=I, PCI\VEN_1 PCI\VEN_2)"), "VEN_1");
    EXPECT_EQ(IdOf(R"(%D%=I, PCI\VEN_1\VEN_2)"), "VEN_1");
}

TEST(ModelLine, WithoutABackslashThereIsNoId)
{
    EXPECT_EQ(IdOf("%D%=Inst.ndi, VEN_5D1A&DEV_7A01"), "<none>");
    EXPECT_EQ(IdOf("%D%="), "<none>");
    EXPECT_EQ(IdOf("%D%"), "<none>");
    EXPECT_EQ(IdOf(""), "<none>");
    EXPECT_EQ(KeyOf("%D%=Inst.ndi"), "%D%");
    EXPECT_EQ(KeyOf("%D%"), "%D%");
}

TEST(ModelLine, WithNothingAfterTheBackslashThereIsNoId)
{
    EXPECT_EQ(IdOf(R"(%D%=Inst.ndi, PCI\)"), "<none>");
    EXPECT_EQ(IdOf(R"(%D%=Inst.ndi, PCI\ , \)"), "<none>");
}

TEST(ModelLine, LeadingDelimitersAreSkipped)
{
    EXPECT_EQ(IdOf(R"(%D%=I, PCI\\VEN_1)"), "VEN_1");
    EXPECT_EQ(IdOf(R"(%D%=I, PCI\ , VEN_1)"), "VEN_1");
    EXPECT_EQ(IdOf(R"(%D%=\VEN_1)"), "<none>") << "the skipped backslash ends nothing";
    EXPECT_EQ(KeyOf(R"(==%D%=I, PCI\VEN_1)"), "%D%");
    EXPECT_EQ(IdOf(R"(==%D%=I, PCI\VEN_1)"), "VEN_1");
    EXPECT_EQ(KeyOf(R"(=I, PCI\VEN_1)"), R"(I, PCI\VEN_1)") << "without a key the whole rest counts as one";
    EXPECT_EQ(IdOf(R"(=I, PCI\VEN_1)"), "<none>");
    EXPECT_EQ(KeyOf("==="), "<none>");
    EXPECT_EQ(IdOf("==="), "<none>");
}

TEST(ModelLine, IdIsCutAtItsFirstQuote)
{
    EXPECT_EQ(IdOf(R"(%D%=I, "PCI\VEN_1")"), "VEN_1");
    EXPECT_EQ(IdOf(R"(%D%=I, PCI\VEN_1"&DEV_2")"), "VEN_1");
    EXPECT_EQ(IdOf(R"(%D%=I, PCI\VEN_1&CC_02"x)"), "VEN_1");
    EXPECT_EQ(IdOf(R"(%D%=I, PCI\")"), "") << "an ID of only a quote is empty, not missing";
}

TEST(ModelLine, OnlyTheFirst1999CharactersCount)
{
    const std::string head = R"(%D%=I, PCI\)";
    const std::string fits(kModelLineChars - head.size(), 'V');
    EXPECT_EQ(IdOf(head + fits), fits);
    EXPECT_EQ(IdOf(head + fits + "CUT"), fits);
    const std::string far = "%D%=" + std::string(kModelLineChars, 'I') + R"(, PCI\VEN_1)";
    EXPECT_EQ(IdOf(far), "<none>");
    EXPECT_EQ(KeyOf(std::string(5000, 'K')), std::string(kModelLineChars, 'K'));
}

TEST(DescriptionFor, NameStandsBetweenThePerCentSignsAndTheFallbackLosesTheClosingOne)
{
    const DescriptionLookup lookup = DescriptionFor("%Nic.DeviceDesc% ");
    EXPECT_EQ(lookup.name, "Nic.DeviceDesc");
    EXPECT_EQ(lookup.fallback, "%Nic.DeviceDesc");
}

TEST(DescriptionFor, KeysOfOtherShapes)
{
    const auto expect = [](std::string_view key, std::string_view name, std::string_view fallback) {
        const DescriptionLookup lookup = DescriptionFor(key);
        EXPECT_EQ(lookup.name, name) << key;
        EXPECT_EQ(lookup.fallback, fallback) << key;
    };
    expect("\"Norda Adapter\"", "\"Norda Adapter\"", "\"Norda Adapter\"");
    expect("%%Nic%%", "Nic", "%%Nic");
    expect("%Nic", "Nic", "%Nic");
    expect("a %Nic% b", "a ", "a ");
    expect("%%", "", "%%");
    expect("%", "", "%");
    expect("", "", "");
}
