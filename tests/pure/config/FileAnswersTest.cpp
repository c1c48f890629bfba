#include "FileAnswers.h"

#include <gmock/gmock.h>

#include <array>
#include <string>
#include <vector>

using testing::ElementsAre;

namespace {
constexpr char kInf[] = R"(C:\Kit\Drv\tav1.inf)";
constexpr FileStamp kStamp{.bytes = 60000, .writeTime = 7};

/// The answers about files that can be read; counts how often a file was opened.
class Answers
{
public:
    AnswersAboutFile* About(std::string_view path, const FileStamp& stamp, std::optional<bool> isUtf16 = false)
    {
        return m_answers.About(path, stamp, [&] {
            ++opened;
            return isUtf16;
        });
    }
    void NextDevice() { m_answers.BeginDevice(); }
    int opened = 0;

private:
    FileAnswers m_answers;
};

ProfileQuestion Signature()
{
    return {.section = "Version", .key = "Signature", .defaultText = "", .bufferBytes = 16};
}

/// The buffer that a question gets; `told` is what the platform would answer now.
std::string Ask(AnswersAboutFile& answers, const ProfileQuestion& question, const std::string& told, uint32_t count = 1)
{
    std::string buffer(question.bufferBytes, '?');
    const auto ask = [&] {
        std::string left = told;
        left.resize(buffer.size());
        return ProfileAnswer(count, left);
    };
    answers.AnswerTo(question, ask).CopyTo(buffer);
    return buffer.substr(0, buffer.find_last_not_of('\0') + 1);
}
} // namespace

TEST(FileAnswers, SecondQuestionIsAnsweredAsTheFirst)
{
    Answers answers;
    AnswersAboutFile& inf = *answers.About(kInf, kStamp);
    EXPECT_EQ(Ask(inf, Signature(), "first"), "first");
    EXPECT_EQ(Ask(inf, Signature(), "second"), "first");
    EXPECT_EQ(Ask(*answers.About(kInf, kStamp), Signature(), "third"), "first");
    EXPECT_EQ(answers.opened, 1);
}

TEST(FileAnswers, QuestionsThatDifferInAnyPartAreAskedApart)
{
    Answers answers;
    AnswersAboutFile& inf = *answers.About(kInf, kStamp);
    std::vector<ProfileQuestion> questions(7, Signature());
    questions[1].section = "version";
    questions[2].key = "signature";
    questions[3].key.reset();
    questions[4].defaultText = "other";
    questions[5].bufferBytes = 17;
    questions[6].wholeSection = true;
    for (std::size_t i = 0; i < questions.size(); ++i) {
        EXPECT_EQ(Ask(inf, questions[i], "answer " + std::to_string(i)), "answer " + std::to_string(i));
    }
    for (std::size_t i = 0; i < questions.size(); ++i) {
        EXPECT_EQ(Ask(inf, questions[i], "changed"), "answer " + std::to_string(i));
    }
}

TEST(FileAnswers, MissingKeyAndEmptyKeyAreTwoQuestions)
{
    Answers answers;
    AnswersAboutFile& inf = *answers.About(kInf, kStamp);
    ProfileQuestion question = Signature();
    question.key.reset();
    EXPECT_EQ(Ask(inf, question, "names"), "names");
    question.key = "";
    EXPECT_EQ(Ask(inf, question, "value"), "value");
}

TEST(FileAnswers, BufferIsFilledAsThePlatformLeftItIncludingTextBehindATerminator)
{
    const std::string left("abc\0def\0\0\0\0\0", 12);
    const ProfileAnswer answer(7, left);
    std::array<char, 12> buffer{};
    buffer.fill('?');
    EXPECT_EQ(answer.CopyTo(buffer), 7U);
    EXPECT_EQ(std::string(buffer.data(), buffer.size()), left);
}

TEST(FileAnswers, AnswerOfNothingClearsTheBuffer)
{
    const ProfileAnswer answer(0, std::string(8, '\0'));
    std::array<char, 8> buffer{};
    buffer.fill('?');
    EXPECT_EQ(answer.CopyTo(buffer), 0U);
    EXPECT_EQ(std::string(buffer.data(), buffer.size()), std::string(8, '\0'));
}

TEST(FileAnswers, AnswerNeverRunsOverASmallerBuffer)
{
    const ProfileAnswer answer(9, std::string("123456789"));
    std::array<char, 4> buffer{};
    EXPECT_EQ(answer.CopyTo(buffer), 9U);
    EXPECT_EQ(std::string(buffer.data(), buffer.size()), "1234");
}

TEST(FileAnswers, ChangedSizeOrWriteTimeForgetsWhatWasAnswered)
{
    Answers answers;
    EXPECT_EQ(Ask(*answers.About(kInf, kStamp), Signature(), "old"), "old");
    EXPECT_EQ(Ask(*answers.About(kInf, {.bytes = 60001, .writeTime = 7}), Signature(), "longer"), "longer");
    EXPECT_EQ(Ask(*answers.About(kInf, {.bytes = 60001, .writeTime = 8}), Signature(), "newer"), "newer");
    // Also when a file is put back as it was.
    EXPECT_EQ(Ask(*answers.About(kInf, kStamp), Signature(), "back"), "back");
    EXPECT_EQ(answers.opened, 4);
}

TEST(FileAnswers, EachFileHasItsOwnAnswers)
{
    Answers answers;
    EXPECT_EQ(Ask(*answers.About(kInf, kStamp), Signature(), "one"), "one");
    EXPECT_EQ(Ask(*answers.About(R"(C:\Kit\Drv\tav2.inf)", kStamp), Signature(), "two"), "two");
    EXPECT_EQ(Ask(*answers.About(kInf, kStamp), Signature(), "three"), "one");
}

TEST(FileAnswers, FileThatCannotBeReadIsNotKeptAndTriedAgain)
{
    Answers answers;
    EXPECT_EQ(answers.About(kInf, kStamp, std::nullopt), nullptr);
    EXPECT_EQ(answers.About(kInf, kStamp, std::nullopt), nullptr);
    EXPECT_EQ(answers.opened, 2);
    EXPECT_NE(answers.About(kInf, kStamp, true), nullptr);
    EXPECT_TRUE(answers.About(kInf, kStamp, false)->IsUtf16()) << "it was true when the file was read";
}

TEST(FileAnswers, FileThatChangedAndCannotBeReadAnyMoreIsForgotten)
{
    Answers answers;
    EXPECT_EQ(Ask(*answers.About(kInf, kStamp), Signature(), "old"), "old");
    EXPECT_EQ(answers.About(kInf, {.bytes = 1, .writeTime = 9}, std::nullopt), nullptr);
    EXPECT_EQ(Ask(*answers.About(kInf, kStamp), Signature(), "new"), "new");
}

TEST(FileAnswers, ModelSectionIsReadOnceByName)
{
    Answers answers;
    AnswersAboutFile& inf = *answers.About(kInf, kStamp);
    std::vector<std::string> read;
    const auto section = [&](const std::string& name) {
        return inf.ModelSectionOf(name, [&] {
            read.push_back(name);
            return std::make_shared<const ModelSection>(1U, std::span<const char>());
        });
    };
    const auto first = section("Norda");
    EXPECT_EQ(section("Norda"), first);
    EXPECT_NE(section("Norda.NTamd64"), first);
    EXPECT_THAT(read, ElementsAre("Norda", "Norda.NTamd64"));
}

TEST(FileAnswers, NothingIsAskedForOnceMoreBeforeItIsKept)
{
    Answers answers;
    AnswersAboutFile& inf = *answers.About(kInf, kStamp);
    EXPECT_EQ(Ask(inf, Signature(), "", 0), "");
    EXPECT_EQ(Ask(inf, Signature(), "", 0), "");
    EXPECT_EQ(Ask(inf, Signature(), "too late"), "");
}

TEST(FileAnswers, OneFailureDoesNotOutliveTheQuestion)
{
    Answers answers;
    AnswersAboutFile& inf = *answers.About(kInf, kStamp);
    EXPECT_EQ(Ask(inf, Signature(), "", 0), "");
    EXPECT_EQ(Ask(inf, Signature(), "$CHICAGO$"), "$CHICAGO$");
    EXPECT_EQ(Ask(inf, Signature(), "changed"), "$CHICAGO$");
}

TEST(FileAnswers, DefaultTextIsAskedForOnceMoreBeforeItIsKept)
{
    Answers answers;
    AnswersAboutFile& inf = *answers.About(kInf, kStamp);
    const ProfileQuestion question{
        .section = "Manufacturer", .key = "%Norda%", .defaultText = "none", .bufferBytes = 16};
    EXPECT_EQ(Ask(inf, question, "none", 4), "none");
    EXPECT_EQ(Ask(inf, question, "Norda", 5), "Norda");
    EXPECT_EQ(Ask(inf, question, "none", 4), "Norda");
}

TEST(FileAnswers, ModelSectionThatWasNotReadIsReadOnceMore)
{
    Answers answers;
    AnswersAboutFile& inf = *answers.About(kInf, kStamp);
    int reads = 0;
    const auto section = [&](std::uint32_t count) {
        return inf.ModelSectionOf("Norda", [&] {
            ++reads;
            return std::make_shared<const ModelSection>(count, std::span<const char>());
        });
    };
    EXPECT_FALSE(section(0)->WasRead());
    EXPECT_FALSE(section(0)->WasRead());
    EXPECT_FALSE(section(1)->WasRead());
    EXPECT_EQ(reads, 2);
}

TEST(FileAnswers, NothingNeverOutlivesTheDeviceForWhichItWasGiven)
{
    Answers answers;
    for (int pass = 1; pass <= 4; ++pass) {
        EXPECT_EQ(Ask(*answers.About(kInf, kStamp), Signature(), "", 0), "");
    }
    answers.NextDevice();
    EXPECT_EQ(Ask(*answers.About(kInf, kStamp), Signature(), "$CHICAGO$"), "$CHICAGO$");
    answers.NextDevice();
    EXPECT_EQ(Ask(*answers.About(kInf, kStamp), Signature(), "", 0), "$CHICAGO$") << "that tells of the file";
}

TEST(FileAnswers, DefaultTextNeverOutlivesTheDeviceForWhichItWasGiven)
{
    Answers answers;
    const ProfileQuestion question{
        .section = "Manufacturer", .key = "%Norda%", .defaultText = "none", .bufferBytes = 16};
    for (int pass = 1; pass <= 4; ++pass) {
        EXPECT_EQ(Ask(*answers.About(kInf, kStamp), question, "none", 4), "none");
    }
    answers.NextDevice();
    EXPECT_EQ(Ask(*answers.About(kInf, kStamp), question, "Norda", 5), "Norda");
}

TEST(FileAnswers, NothingThatStaysIsAskedForTwiceForEachDevice)
{
    Answers answers;
    int asked = 0;
    const auto ask = [&] {
        ++asked;
        return ProfileAnswer(0, std::string(16, '\0'));
    };
    for (int device = 1; device <= 3; ++device) {
        for (int pass = 1; pass <= 4; ++pass) {
            static_cast<void>(answers.About(kInf, kStamp)->AnswerTo(Signature(), ask));
        }
        EXPECT_EQ(asked, 2 * device);
        answers.NextDevice();
    }
}

TEST(FileAnswers, AFailureForEachOfTwoDevicesCostsEachOnePassOnly)
{
    Answers answers;
    EXPECT_EQ(Ask(*answers.About(kInf, kStamp), Signature(), "", 0), "");
    answers.NextDevice();
    EXPECT_EQ(Ask(*answers.About(kInf, kStamp), Signature(), "", 0), "");
    EXPECT_EQ(Ask(*answers.About(kInf, kStamp), Signature(), "$CHICAGO$"), "$CHICAGO$");
}

TEST(FileAnswers, OneFailureOfALaterDeviceCostsOnePassOnly)
{
    Answers answers;
    ProfileQuestion other = Signature();
    other.key = "Class";
    EXPECT_EQ(Ask(*answers.About(kInf, kStamp), other, "Net"), "Net");
    answers.NextDevice();
    EXPECT_EQ(Ask(*answers.About(kInf, kStamp), Signature(), "", 0), "");
    EXPECT_EQ(Ask(*answers.About(kInf, kStamp), Signature(), "$CHICAGO$"), "$CHICAGO$");
}

TEST(FileAnswers, ModelSectionThatWasNotReadNeverOutlivesTheDevice)
{
    Answers answers;
    int reads = 0;
    const auto section = [&](std::uint32_t count) {
        return answers.About(kInf, kStamp)->ModelSectionOf("Norda", [&] {
            ++reads;
            return std::make_shared<const ModelSection>(count, std::span<const char>());
        });
    };
    EXPECT_FALSE(section(0)->WasRead());
    EXPECT_FALSE(section(0)->WasRead());
    EXPECT_FALSE(section(1)->WasRead()) << "kept for this device";
    answers.NextDevice();
    EXPECT_FALSE(section(0)->WasRead());
    EXPECT_TRUE(section(1)->WasRead()) << "a failure for each of two devices costs each one pass";
    EXPECT_EQ(reads, 4);
    answers.NextDevice();
    EXPECT_TRUE(section(0)->WasRead()) << "what was read is kept";
    EXPECT_EQ(reads, 4);
}
