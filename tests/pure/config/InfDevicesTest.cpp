#include "InfDevices.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "MemoryKit.h"

using std::string_view_literals::operator""sv;
using testing::ElementsAre;

namespace {
constexpr char kInf[] = R"(C:\Kit\Drv\tav1.inf)";
constexpr char kKey[] = "VEN_5D1A&DEV_7A01";

class InfDevices : public testing::Test
{
protected:
    bool Lists(const std::string& section, const std::string& key = kKey)
    {
        m_memory.kit.Add(kInf, "[Norda]\n" + section + "[Strings]\nOne=First adapter\nTwo=Second adapter\n");
        return ListsDevice(m_memory.Search(), key, "Norda", kInf);
    }
    [[nodiscard]] std::string MatchedId() const { return std::string(TextIn(m_memory.matchedHardwareId)); }
    [[nodiscard]] std::string Description() const { return std::string(TextIn(m_memory.deviceDescription)); }

    MemorySearch m_memory;
};
} // namespace

TEST_F(InfDevices, AMatchIsRecordedDescribedAndTraced)
{
    EXPECT_TRUE(Lists("%One%=I, PCI\\ven_5d1a&dev_7a01\n%Two%=I, PCI\\VEN_5D1A&DEV_7A01\n"));
    EXPECT_EQ(MatchedId(), "ven_5d1a&dev_7a01") << "as the line has it";
    EXPECT_EQ(Description(), "First adapter");
    EXPECT_THAT(m_memory.log.lines, ElementsAre("Entering - ParseINFile",
                                                "ParseINFFile(): key=" + std::string(kKey) +
                                                    ", section name=Norda, file name=" + kInf + "\n",
                                                "matched:" + std::string(kKey) + "\n"));
    EXPECT_THAT(m_memory.log.steps, ElementsAre(SearchStep::DescriptionCopied, SearchStep::DescriptionSought));
}

TEST_F(InfDevices, EverySectionThatWasSearchedIsReportedWithTheLineOfItsMatch)
{
    EXPECT_TRUE(Lists("%One%=I, PCI\\VEN_1\n%Two%=I, PCI\\VEN_5D1A&DEV_7A01\n"));
    EXPECT_FALSE(Lists("%One%=I, PCI\\VEN_1\n"));
    EXPECT_THAT(m_memory.log.sections,
                ElementsAre(std::string(kInf) + " [Norda]: 1", std::string(kInf) + " [Norda]: no match"));
}

TEST_F(InfDevices, AMissLeavesTheDescriptionOfTheLastLine)
{
    EXPECT_FALSE(Lists("%One%=I, PCI\\VEN_1\n%Two%=I, PCI\\VEN_2\n"));
    EXPECT_EQ(MatchedId(), "");
    EXPECT_EQ(Description(), "Second adapter");
}

TEST_F(InfDevices, AnUnknownStringLeavesTheKeyUpToItsClosingSign)
{
    EXPECT_TRUE(Lists("%Three%=I, PCI\\VEN_5D1A&DEV_7A01\n"));
    EXPECT_EQ(Description(), "%Three");
}

TEST_F(InfDevices, WithoutASectionNameNothingIsReadAndNothingChanges)
{
    m_memory.deviceDescription[0] = 'x';
    EXPECT_FALSE(ListsDevice(m_memory.Search(), kKey, nullptr, kInf));
    EXPECT_EQ(Description(), "x");
    EXPECT_EQ(m_memory.kit.profileReads, 0);
    EXPECT_EQ(m_memory.log.lines.back(),
              "ParseINFFile(): key=" + std::string(kKey) + ", section name=, file name=" + kInf + "\n");
}

TEST_F(InfDevices, AMissingSectionIsTracedAndItsDescriptionIsEmpty)
{
    m_memory.deviceDescription[0] = 'x';
    EXPECT_FALSE(ListsDevice(m_memory.Search(), kKey, "Norda", kInf));
    EXPECT_EQ(m_memory.log.lines.back(), "GetPrivateProfileSection() failed");
    EXPECT_EQ(Description(), "");
    EXPECT_THAT(m_memory.log.steps, ElementsAre(SearchStep::DescriptionSought)) << "nothing is copied";
}

TEST_F(InfDevices, ADescriptionKeyOf260CharactersCountsAsEmptyAndIsReportedForEachLineWalked)
{
    const std::string fits(259, 'k');
    EXPECT_FALSE(Lists(fits + "=I\n"));
    EXPECT_EQ(Description(), fits);
    EXPECT_THAT(m_memory.log.steps, ElementsAre(SearchStep::DescriptionCopied, SearchStep::DescriptionSought));

    m_memory.log.steps.clear();
    const std::string tooLong = std::string(260, 'k') + "=I\n";
    EXPECT_TRUE(Lists(tooLong + tooLong + "%One%=I, PCI\\VEN_5D1A&DEV_7A01\n" + tooLong));
    EXPECT_EQ(Description(), "First adapter");
    EXPECT_THAT(m_memory.log.steps, ElementsAre(SearchStep::DescriptionCopied, SearchStep::DescriptionTooLong,
                                                SearchStep::DescriptionTooLong, SearchStep::DescriptionSought));
    EXPECT_FALSE(Lists("%One%=I, PCI\\VEN_1\n" + tooLong));
    EXPECT_EQ(Description(), "");
}

TEST_F(InfDevices, ALongMatchedIdIsCutToItsField)
{
    const std::string id(300, 'V');
    EXPECT_TRUE(Lists("%One%=I, PCI\\" + id + "\n", id));
    EXPECT_EQ(MatchedId(), std::string(255, 'V'));
}

TEST_F(InfDevices, EveryLineHasItsVerdict)
{
    constexpr std::string_view lines = "%a%=I, PCI\\VEN_1\0no backslash\0%c%=I, PCI\\\0%d%=I, PCI\\ven_2\0"sv;
    const ModelSection section(1, lines);
    ASSERT_EQ(section.LineCount(), 4U);
    std::vector<LineVerdict> verdicts;
    for (std::size_t line = 0; line < section.LineCount(); ++line) {
        verdicts.push_back(section.VerdictOn(line, "VEN_2"));
    }
    EXPECT_THAT(verdicts, ElementsAre(LineVerdict::OtherDevice, LineVerdict::NoHardwareId, LineVerdict::NoHardwareId,
                                      LineVerdict::ListsDevice));
    EXPECT_EQ(section.VerdictOn(1, ""), LineVerdict::NoHardwareId) << "a missing ID differs from an empty one";
}

TEST_F(InfDevices, MarksAreTracedAsTheyAre)
{
    struct Row
    {
        FileMark mark;
        bool isUtf16;
        std::vector<std::string> lines;
    };
    const std::vector<Row> rows{
        {{}, false, {"unable to open file: " + std::string(kInf) + "\n"}},
        {{.opened = true, .read = false}, false, {"unable to read from file\n", "file is not Unicode\n"}},
        {{.opened = true, .read = true}, false, {"file is not Unicode\n"}},
        {{.opened = true, .read = true, .utf16 = true}, true, {"file is Unicode\n"}},
    };
    for (const Row& row : rows) {
        m_memory.kit.files[kInf].mark = row.mark;
        m_memory.log.lines.clear();
        EXPECT_EQ(BeginsWithUtf16Mark(m_memory.Search(), kInf), row.isUtf16);
        std::vector<std::string> expected{"Entering - IsFileUnicode"};
        expected.insert(expected.end(), row.lines.begin(), row.lines.end());
        EXPECT_EQ(m_memory.log.lines, expected);
    }
}
