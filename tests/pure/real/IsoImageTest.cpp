#include "IsoImage.h"

#include <gmock/gmock.h>

#include <map>

namespace {
using testing::ElementsAre;
using testing::Pair;
using testing::UnorderedElementsAre;

constexpr std::size_t kSector = 2048;

using Content = std::map<std::string, std::string>;

/// Reads a disc as a system does: from the descriptor of one form down through its directories.
class DiscReader
{
public:
    explicit DiscReader(std::string image) : m_image(std::move(image)) {}

    [[nodiscard]] std::uint32_t Number(std::size_t at, unsigned bytes) const
    {
        std::uint32_t number = 0;
        for (unsigned i = bytes; i-- > 0;) {
            number = number << 8 | static_cast<unsigned char>(m_image.at(at + i));
        }
        return number;
    }

    [[nodiscard]] Content FilesOf(std::size_t descriptor) const
    {
        Content files;
        ReadDirectory(descriptor * kSector + 156, "", files);
        return files;
    }

    /// The names of the directories in the path table that begins with the lowest bytes.
    [[nodiscard]] std::vector<std::pair<std::string, std::uint32_t>> PathTable(std::size_t descriptor) const
    {
        std::vector<std::pair<std::string, std::uint32_t>> found;
        std::size_t at = Number(descriptor * kSector + 140, 4) * kSector;
        for (const std::size_t end = at + Number(descriptor * kSector + 132, 4); at < end;) {
            const std::size_t length = Number(at, 1);
            // Its own first record says where the directory lies, too.
            EXPECT_EQ(Number(Number(at + 2, 4) * kSector + 2, 4), Number(at + 2, 4));
            found.emplace_back(m_image.substr(at + 8, length), Number(at + 6, 2));
            at += 8 + (length + 1) / 2 * 2;
        }
        return found;
    }

private:
    void ReadDirectory(std::size_t record, const std::string& path, Content& files) const
    {
        const std::size_t start = Number(record + 2, 4) * kSector;
        const std::size_t end = start + Number(record + 10, 4);
        for (std::size_t at = start; at < end;) {
            const std::size_t length = Number(at, 1);
            if (length == 0) {
                at = (at / kSector + 1) * kSector;
                continue;
            }
            EXPECT_EQ(at / kSector, (at + length - 1) / kSector) << "a record lies in two sectors";
            const std::string name = m_image.substr(at + 33, Number(at + 32, 1));
            if (name != std::string(1, '\0') && name != "\x01") {
                if (Number(at + 25, 1) == 2) {
                    ReadDirectory(at, path + name + "/", files);
                } else {
                    files[path + name] = m_image.substr(Number(at + 2, 4) * kSector, Number(at + 10, 4));
                }
            }
            at += length;
        }
    }

    std::string m_image;
};

constexpr std::size_t kPlain = 16;
constexpr std::size_t kJoliet = 17;

std::string Utf16(const std::string& ascii)
{
    std::string wide;
    for (const char c : ascii) {
        wide += '\0';
        wide += c;
    }
    return wide;
}

// As it is in the paths of the reader, whose "/" is its own.
std::string JolietPath(const std::string& folder, const std::string& name)
{
    return Utf16(folder) + "/" + Utf16(name + ";1");
}
} // namespace

TEST(IsoImage, HoldsItsFilesUnderTheirNamesInTheJolietForm)
{
    const DiscReader disc(IsoImage({{"kit/Morvix.ini", "[Config]"}, {"kit/Drv/a.inf", ""}, {"x", "y"}}, "MORVIX"));
    EXPECT_THAT(disc.FilesOf(kJoliet), UnorderedElementsAre(Pair(JolietPath("kit", "Morvix.ini"), "[Config]"),
                                                            Pair(Utf16("kit") + "/" + JolietPath("Drv", "a.inf"), ""),
                                                            Pair(Utf16("x;1"), "y")));
}

TEST(IsoImage, HoldsTheSameFilesUnderNumbersInThePlainForm)
{
    const DiscReader disc(IsoImage({{"kit/Morvix.ini", "[Config]"}, {"kit/Drv/a.inf", ""}, {"x", "y"}}, "MORVIX"));
    EXPECT_THAT(disc.FilesOf(kPlain),
                UnorderedElementsAre(Pair("D0000001/F0000002.;1", "[Config]"),
                                     Pair("D0000001/D0000003/F0000004.;1", ""), Pair("F0000005.;1", "y")));
}

TEST(IsoImage, HoldsLongDirectoriesAndFilesOfEverySize)
{
    std::vector<DiscFile> files;
    Content expected;
    for (std::size_t i = 0; i < 200; ++i) {
        const std::string name = "a file with a longer name, number " + std::to_string(i);
        files.push_back({"many/" + name, std::string(i * 41, static_cast<char>('a' + i % 26))});
        expected[JolietPath("many", name)] = files.back().content;
    }
    EXPECT_EQ(DiscReader(IsoImage(files, "MORVIX")).FilesOf(kJoliet), expected);
}

TEST(IsoImage, ListsItsDirectoriesLevelByLevel)
{
    const DiscReader disc(IsoImage({{"b/z/1", ""}, {"a/y/2", ""}, {"a/x/3", ""}}, "MORVIX"));
    EXPECT_THAT(disc.PathTable(kJoliet),
                ElementsAre(Pair(std::string(1, '\0'), 1u), Pair(Utf16("a"), 1u), Pair(Utf16("b"), 1u),
                            Pair(Utf16("x"), 2u), Pair(Utf16("y"), 2u), Pair(Utf16("z"), 3u)));
}

TEST(IsoImage, SaysHowLargeItIs)
{
    const std::string image = IsoImage({{"one", std::string(kSector, 'x')}, {"two", "y"}}, "MORVIX");
    EXPECT_EQ(image.size() % kSector, 0u);
    const DiscReader disc(image);
    for (const std::size_t descriptor : {kPlain, kJoliet}) {
        EXPECT_EQ(disc.Number(descriptor * kSector + 80, 4) * kSector, image.size());
        EXPECT_EQ(image.substr(descriptor * kSector + 1, 5), "CD001");
    }
    EXPECT_EQ(image.substr(18 * kSector, 6),
              "\xFF"
              "CD001");
}
