#include "KeptAnswers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "MemoryKit.h"

namespace {
constexpr char kInf[] = R"(C:\Kit\Drv\tav1.inf)";
constexpr char kOtherInf[] = R"(C:\Kit\Drv\tav2.inf)";
constexpr std::size_t kBytes = 64;

std::string Inf(const std::string& signature)
{
    return "[Version]\nSignature=" + signature + "\n[Norda]\n%D%=I, PCI\\VEN_5D1A\n";
}

class KeptAnswersTest : public testing::Test
{
protected:
    KeptAnswersTest() { m_kit.Add(kInf, Inf("first")); }

    std::string Ask(const char* section, const char* key, const char* defaultText = "", const char* file = kInf)
    {
        std::array<char, kBytes> buffer{};
        buffer.fill('?');
        m_answers.ReadText(section, key, defaultText, buffer, file);
        return {buffer.data()};
    }
    std::string Signature() { return Ask("Version", "Signature"); }
    void SetSignature(const std::string& signature) { m_kit.files[kInf].text = Inf(signature); }
    /// Makes a read fail, as it does while another program has the file open.
    void Lock(bool locked) { m_kit.files[kInf].readable = !locked; }

    MemoryKit m_kit;
    KeptAnswers m_answers{m_kit};
};
} // namespace

TEST_F(KeptAnswersTest, SecondQuestionIsAnsweredAsTheFirst)
{
    EXPECT_EQ(Signature(), "first");
    SetSignature("second");
    EXPECT_EQ(Signature(), "first");
    EXPECT_EQ(m_kit.profileReads, 1);
    EXPECT_EQ(m_kit.markReads, 1);
}

TEST_F(KeptAnswersTest, QuestionsThatDifferInAnyPartAreAskedSeparately)
{
    m_kit.Add(kInf, "[a]\nb=1\n\nc=2\nbc=5\n[ab]\nc=3\n[b]\n=4\n");
    std::array<char, kBytes> buffer{};
    std::array<char, kBytes + 1> larger{};
    for (int round = 1; round <= 2; ++round) {
        EXPECT_EQ(Ask("a", "b"), "1");
        EXPECT_EQ(Ask("a", "c"), "2");
        EXPECT_EQ(Ask("ab", "c"), "3");
        EXPECT_EQ(Ask("a", "bc"), "5");
        EXPECT_EQ(Ask("b", ""), "4");
        EXPECT_EQ(Ask("a", nullptr), "b");
        EXPECT_EQ(Ask("a", ""), "") << "no key is not an empty one";
        EXPECT_EQ(Ask("a", "", "x"), "x");
        EXPECT_EQ(m_answers.ReadText("a", "b", "", larger, kInf), 1U);
        EXPECT_EQ(m_answers.ReadSection("a", buffer, kInf), 13U);
        EXPECT_EQ(m_answers.ReadSection("ab", buffer, kInf), 4U);
        EXPECT_EQ(m_answers.ReadSection("a", larger, kInf), 13U);
        EXPECT_EQ(m_answers.ReadModelSection("a", kInf)->LineCount(), 3U);
    }
    // Two of them give what a failed read would give as well: they are asked for twice.
    EXPECT_EQ(m_kit.profileReads, 13 + 2);
}

TEST_F(KeptAnswersTest, AnswersComeWithTheCountAndAClearedBuffer)
{
    for (int round = 1; round <= 2; ++round) {
        std::array<char, kBytes> buffer{};
        buffer.fill('?');
        EXPECT_EQ(m_answers.ReadText("Version", "Signature", "", buffer, kInf), 5U);
        EXPECT_EQ(std::string(buffer.data(), buffer.size()), "first" + std::string(kBytes - 5, '\0'));
        buffer.fill('?');
        EXPECT_EQ(m_answers.ReadSection("Version", buffer, kInf), 16U);
        EXPECT_EQ(std::string(buffer.data(), buffer.size()), "Signature=first" + std::string(kBytes - 15, '\0'));
    }
}

TEST_F(KeptAnswersTest, ANulInsideAnAnswerIsKept)
{
    m_kit.Add(kInf, "[a]\nb=1\nc=2\n");
    for (int round = 1; round <= 2; ++round) {
        std::array<char, kBytes> buffer{};
        EXPECT_EQ(m_answers.ReadSection("a", buffer, kInf), 8U);
        EXPECT_EQ(std::string(buffer.data(), 9), std::string("b=1\0c=2\0\0", 9));
    }
    EXPECT_EQ(m_kit.profileReads, 1);
}

TEST_F(KeptAnswersTest, AnotherSizeOrWriteTimeForgetsWhatWasAnswered)
{
    EXPECT_EQ(Signature(), "first");
    const std::vector<FileStamp> stamps{{.bytes = 2, .writeTime = 1}, {.bytes = 2, .writeTime = 2}, {1, 1}};
    for (const FileStamp& stamp : stamps) {
        const std::string signature = "of " + std::to_string(stamp.bytes) + std::to_string(stamp.writeTime);
        SetSignature(signature);
        m_kit.files[kInf].stamp = stamp;
        EXPECT_EQ(Signature(), signature) << "also when a file is put back as it was";
    }
    EXPECT_EQ(m_kit.markReads, 4);
}

TEST_F(KeptAnswersTest, EachFileHasItsOwnAnswers)
{
    m_kit.Add(kOtherInf, Inf("other"));
    for (int round = 1; round <= 2; ++round) {
        EXPECT_EQ(Signature(), "first");
        EXPECT_EQ(Ask("Version", "Signature", "", kOtherInf), "other");
    }
    EXPECT_EQ(m_kit.profileReads, 2);
}

TEST_F(KeptAnswersTest, AFileThatCannotBeReadIsNotKeptAndTriedAgain)
{
    Lock(true);
    EXPECT_EQ(Signature(), "");
    EXPECT_EQ(Signature(), "");
    EXPECT_EQ(Signature(), "");
    EXPECT_EQ(m_kit.profileReads, 3);
    EXPECT_EQ(m_kit.markReads, 3);
    Lock(false);
    EXPECT_EQ(Signature(), "first");
}

TEST_F(KeptAnswersTest, AFileThatChangedAndCannotBeReadIsForgotten)
{
    EXPECT_EQ(Signature(), "first");
    m_kit.files[kInf].stamp.bytes = 2;
    Lock(true);
    EXPECT_EQ(Signature(), "");
    m_kit.files[kInf].stamp.bytes = 1;
    Lock(false);
    SetSignature("new");
    EXPECT_EQ(Signature(), "new");
}

TEST_F(KeptAnswersTest, AMissingFileAndALinkAreAskedAboutEveryTime)
{
    m_kit.files[kInf].isLink = true;
    for (int times = 1; times <= 3; ++times) {
        EXPECT_EQ(Signature(), "first");
        EXPECT_EQ(Ask("Version", "Signature", "default", kOtherInf), "default");
        std::array<char, kBytes> buffer{};
        EXPECT_EQ(m_answers.ReadSection("Version", buffer, kInf), 16U);
        EXPECT_TRUE(m_answers.ReadModelSection("Norda", kInf)->WasRead());
        EXPECT_EQ(m_kit.profileReads, 4 * times);
    }
    EXPECT_EQ(m_kit.markReads, 0);
    EXPECT_TRUE(m_answers.MarkOf(kInf).read) << "the mark of a link is read for whoever asks";
}

TEST_F(KeptAnswersTest, TheMarkIsThatOfTheFirstReading)
{
    m_kit.files[kInf].mark.utf16 = true;
    EXPECT_EQ(Signature(), "first");
    m_kit.files[kInf].mark.utf16 = false;
    EXPECT_TRUE(m_answers.MarkOf(kInf).utf16);
    EXPECT_TRUE(m_answers.MarkOf(kInf).opened);
    EXPECT_TRUE(m_answers.MarkOf(kInf).read);
    EXPECT_EQ(m_kit.markReads, 1);
}

TEST_F(KeptAnswersTest, AMarkThatCannotBeReadIsAskedForOnce)
{
    m_kit.files[kInf].mark = {.opened = true, .read = false, .utf16 = false};
    const FileMark mark = m_answers.MarkOf(kInf);
    EXPECT_TRUE(mark.opened);
    EXPECT_FALSE(mark.read);
    EXPECT_EQ(m_kit.markReads, 1);
    EXPECT_FALSE(m_answers.MarkOf(kOtherInf).opened);
}

TEST_F(KeptAnswersTest, AModelSectionIsReadOnceByName)
{
    const auto first = m_answers.ReadModelSection("Norda", kInf);
    EXPECT_TRUE(first->LineOf("VEN_5D1A").has_value());
    EXPECT_EQ(m_answers.ReadModelSection("Norda", kInf), first);
    EXPECT_NE(m_answers.ReadModelSection("Version", kInf), first);
    EXPECT_EQ(m_kit.profileReads, 2);
}

TEST_F(KeptAnswersTest, AnEmptyAnswerIsAskedForOnceMoreBeforeItCounts)
{
    EXPECT_EQ(Ask("Version", "Class"), "");
    EXPECT_EQ(Ask("Version", "Class"), "");
    m_kit.files[kInf].text = "[Version]\nClass=Net\n";
    EXPECT_EQ(Ask("Version", "Class"), "") << "it came twice";
}

TEST_F(KeptAnswersTest, OneFailureDoesNotOutliveTheQuestion)
{
    EXPECT_TRUE(m_answers.MarkOf(kInf).read);
    Lock(true);
    EXPECT_EQ(Signature(), "");
    Lock(false);
    EXPECT_EQ(Signature(), "first");
    Lock(true);
    EXPECT_EQ(Signature(), "first");
}

TEST_F(KeptAnswersTest, ADefaultTextIsAskedForOnceMoreBeforeItCounts)
{
    m_kit.files[kInf].text = "[Manufacturer]\n";
    EXPECT_EQ(Ask("Manufacturer", "%Norda%", "none"), "none");
    m_kit.files[kInf].text = "[Manufacturer]\n%Norda%=Norda\n";
    EXPECT_EQ(Ask("Manufacturer", "%Norda%", "none"), "Norda");
    m_kit.files[kInf].text = "[Manufacturer]\n";
    EXPECT_EQ(Ask("Manufacturer", "%Norda%", "none"), "Norda");
}

TEST_F(KeptAnswersTest, AnEmptyAnswerAndADefaultTextNeverOutliveTheirDevice)
{
    for (const char* defaultText : {"", "none"}) {
        m_kit.files[kInf].text = "[Version]\n";
        m_answers.BeginDevice();
        for (int pass = 1; pass <= 4; ++pass) {
            EXPECT_EQ(Ask("Version", "Class", defaultText), defaultText);
        }
        m_answers.BeginDevice();
        m_kit.files[kInf].text = "[Version]\nClass=Net\n";
        EXPECT_EQ(Ask("Version", "Class", defaultText), "Net");
        m_answers.BeginDevice();
        Lock(true);
        EXPECT_EQ(Ask("Version", "Class", defaultText), "Net") << "this answer comes from the file";
        Lock(false);
    }
}

TEST_F(KeptAnswersTest, AnAnswerThatStaysEmptyIsAskedForTwiceForEachDevice)
{
    for (int device = 1; device <= 3; ++device) {
        for (int pass = 1; pass <= 4; ++pass) {
            EXPECT_EQ(Ask("Version", "Class"), "");
            EXPECT_FALSE(m_answers.ReadModelSection("Missing", kInf)->WasRead());
        }
        EXPECT_EQ(m_kit.profileReads, 4 * device);
        m_answers.BeginDevice();
    }
}

TEST_F(KeptAnswersTest, AFailureForEachOfTwoDevicesCostsEachOnePassOnly)
{
    EXPECT_TRUE(m_answers.MarkOf(kInf).read);
    Lock(true);
    EXPECT_EQ(Signature(), "");
    EXPECT_FALSE(m_answers.ReadModelSection("Norda", kInf)->WasRead());
    m_answers.BeginDevice();
    EXPECT_EQ(Signature(), "");
    EXPECT_FALSE(m_answers.ReadModelSection("Norda", kInf)->WasRead());
    Lock(false);
    EXPECT_EQ(Signature(), "first");
    EXPECT_TRUE(m_answers.ReadModelSection("Norda", kInf)->WasRead());
}

TEST_F(KeptAnswersTest, AModelSectionThatWasNotReadNeverOutlivesTheDevice)
{
    EXPECT_TRUE(m_answers.MarkOf(kInf).read);
    Lock(true);
    EXPECT_FALSE(m_answers.ReadModelSection("Norda", kInf)->WasRead());
    EXPECT_FALSE(m_answers.ReadModelSection("Norda", kInf)->WasRead());
    Lock(false);
    EXPECT_FALSE(m_answers.ReadModelSection("Norda", kInf)->WasRead()) << "it came twice for this device";
    m_answers.BeginDevice();
    EXPECT_TRUE(m_answers.ReadModelSection("Norda", kInf)->WasRead());
}

TEST_F(KeptAnswersTest, AListingGivesItsFilesStampUntilTheNextEntry)
{
    m_kit.Add(kOtherInf, Inf("other"));
    const auto listing = m_answers.List("C:\\Kit\\Drv\\");
    ASSERT_NE(listing, nullptr);
    ASSERT_NE(listing->Next(), nullptr);
    EXPECT_EQ(Signature(), "first");
    EXPECT_EQ(m_kit.stampReads, 0);
    EXPECT_EQ(Ask("Version", "Signature", "", kOtherInf), "other");
    EXPECT_EQ(m_kit.stampReads, 1) << "it is not that file's turn";
    m_kit.files[kInf].stamp.bytes = 2;
    SetSignature("second");
    EXPECT_EQ(Signature(), "first") << "the listing's stamp counts";
    ASSERT_NE(listing->Next(), nullptr);
    EXPECT_EQ(Signature(), "second");
    EXPECT_EQ(listing->Next(), nullptr);
    EXPECT_EQ(Ask("Version", "Signature", "", kOtherInf), "other");
    EXPECT_EQ(m_kit.stampReads, 3);
}

TEST_F(KeptAnswersTest, AListingThatEndsEarlyGivesNoStampAfterwards)
{
    {
        const auto listing = m_answers.List("C:\\Kit\\Drv\\");
        ASSERT_NE(listing->Next(), nullptr);
    }
    EXPECT_EQ(Signature(), "first");
    EXPECT_EQ(m_kit.stampReads, 1);
    EXPECT_EQ(m_answers.List("C:\\Elsewhere\\"), nullptr);
}

TEST_F(KeptAnswersTest, ALinkInAListingIsAskedAboutEveryTimeAndNotRead)
{
    m_kit.files[kInf].isLink = true;
    const auto listing = m_answers.List("C:\\Kit\\Drv\\");
    ASSERT_NE(listing->Next(), nullptr);
    EXPECT_EQ(Signature(), "first");
    EXPECT_EQ(Signature(), "first");
    EXPECT_EQ(m_kit.profileReads, 2);
    EXPECT_EQ(m_kit.stampReads, 0);
}

TEST_F(KeptAnswersTest, AFileThatAListingFindsUnreadableIsTriedOnceBeforeTheListingGoesOn)
{
    Lock(true);
    const auto listing = m_answers.List("C:\\Kit\\Drv\\");
    ASSERT_NE(listing->Next(), nullptr);
    EXPECT_FALSE(m_answers.MarkOf(kInf).opened);
    EXPECT_EQ(Signature(), "");
    EXPECT_EQ(Signature(), "");
    EXPECT_EQ(m_kit.markReads, 1);
    EXPECT_EQ(m_kit.profileReads, 2);
}

TEST_F(KeptAnswersTest, StampsAreThoseOfTheSource)
{
    EXPECT_EQ(m_answers.StampOf(kInf), (FileStamp{.bytes = 1, .writeTime = 1}));
    EXPECT_EQ(m_answers.StampOf(kOtherInf), std::nullopt);
}
