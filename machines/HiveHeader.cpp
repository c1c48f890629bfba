#include "Hive.h"

namespace {
constexpr std::size_t kFirstSequence = 4;
constexpr std::size_t kSecondSequence = 8;
constexpr std::size_t kMajorVersion = 20;
constexpr std::size_t kMinorVersion = 24;
constexpr std::size_t kRootCell = 36;
constexpr std::size_t kBlocksLength = 40;
constexpr std::size_t kChecksum = 508;
constexpr uint64_t kBlockHeaderBytes = 32;

uint32_t NumberAt(std::string_view bytes, std::size_t at)
{
    uint32_t number = 0;
    for (std::size_t byte = 4; byte > 0; --byte) {
        number = number << 8 | static_cast<unsigned char>(bytes[at + byte - 1]);
    }
    return number;
}

bool ChecksumFits(std::string_view header)
{
    uint32_t sum = 0;
    for (std::size_t at = 0; at < kChecksum; at += 4) {
        sum ^= NumberAt(header, at);
    }
    // Two sums are reserved for the system's own marks.
    sum = sum == 0 ? 1 : sum == 0xFFFFFFFF ? 0xFFFFFFFE : sum;
    return sum == NumberAt(header, kChecksum);
}
} // namespace

HiveHeader CheckHiveHeader(std::string_view header, uint64_t fileBytes)
{
    HiveHeader result;
    if (header.size() < kHiveHeaderBytes || !header.starts_with(kHiveMagic)) {
        result.damage = header.starts_with(kHiveMagic) ? "the hive ends inside its header" : "not a hive";
        return result;
    }
    result.isDirty = NumberAt(header, kFirstSequence) != NumberAt(header, kSecondSequence);
    const uint64_t length = NumberAt(header, kBlocksLength);
    if (!ChecksumFits(header)) {
        result.damage = "the checksum of the hive's header is wrong";
    } else if (NumberAt(header, kMajorVersion) != 1 || NumberAt(header, kMinorVersion) > 6) {
        result.damage = "a hive of an unknown version";
    } else if (kHiveHeaderBytes + length > fileBytes) {
        result.damage = "the hive is cut off after " + std::to_string(fileBytes) + " of " +
                        std::to_string(kHiveHeaderBytes + length) + " bytes";
    } else if (length == 0 || length % kHiveHeaderBytes != 0 || NumberAt(header, kRootCell) >= length) {
        result.damage = "the hive's header is damaged";
    }
    return result;
}

std::string CheckHiveBlocks(std::string_view hive)
{
    const std::string_view blocks = hive.substr(kHiveHeaderBytes, NumberAt(hive, kBlocksLength));
    for (std::size_t at = 0; at < blocks.size();) {
        const std::string_view block = blocks.substr(at);
        const uint64_t length = block.size() < kBlockHeaderBytes ? 0 : NumberAt(block, 8);
        if (!block.starts_with("hbin") || NumberAt(block, 4) != at || length < kHiveHeaderBytes ||
            length % kHiveHeaderBytes != 0 || length > block.size()) {
            return "the hive is damaged at byte " + std::to_string(kHiveHeaderBytes + at);
        }
        at += static_cast<std::size_t>(length);
    }
    return {};
}
