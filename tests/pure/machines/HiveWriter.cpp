#include "HiveWriter.h"

#include <algorithm>
#include <cstddef>

namespace {
constexpr std::size_t kPage = 4096;
constexpr uint32_t kNone = 0xFFFFFFFF;

void PutAt(std::string& bytes, std::size_t at, uint32_t number, std::size_t width = 4)
{
    for (std::size_t byte = 0; byte < width; ++byte) {
        bytes[at + byte] = static_cast<char>(number >> (8 * byte) & 0xFF);
    }
}

void Put(std::string& bytes, uint32_t number, std::size_t width = 4)
{
    bytes.append(width, '\0');
    PutAt(bytes, bytes.size() - width, number, width);
}

class Cells
{
public:
    Cells() : m_bytes(32, '\0') {}

    /// @return the new cell's offset.
    uint32_t Add(const std::string& content)
    {
        const std::size_t at = m_bytes.size();
        const std::size_t length = (content.size() + 4 + 7) / 8 * 8;
        Put(m_bytes, static_cast<uint32_t>(-static_cast<int64_t>(length)));
        m_bytes += content;
        m_bytes.resize(at + length, '\0');
        return static_cast<uint32_t>(at);
    }

    void PatchNumber(uint32_t cell, std::size_t at, uint32_t number) { PutAt(m_bytes, cell + 4 + at, number); }

    /// @return all cells as one block, filled up with a free cell.
    std::string Block()
    {
        const std::size_t length = (m_bytes.size() + 8 + kPage - 1) / kPage * kPage;
        Put(m_bytes, static_cast<uint32_t>(length - m_bytes.size()));
        m_bytes.resize(length, '\0');
        m_bytes.replace(0, 4, "hbin");
        PutAt(m_bytes, 8, static_cast<uint32_t>(length));
        return m_bytes;
    }

private:
    std::string m_bytes;
};

uint32_t HashOf(const std::string& name)
{
    uint32_t hash = 0;
    for (const char letter : name) {
        const bool isLower = letter >= 'a' && letter <= 'z';
        hash = hash * 37 + static_cast<unsigned char>(isLower ? letter - 'a' + 'A' : letter);
    }
    return hash;
}

uint32_t AddValue(Cells& cells, const std::string& name, uint32_t type, const std::string& data)
{
    std::string content = "vk";
    Put(content, static_cast<uint32_t>(name.size()), 2);
    const bool isInline = data.size() <= 4;
    Put(content, static_cast<uint32_t>(data.size()) | (isInline ? 0x80000000U : 0U));
    if (isInline) {
        content += data;
        content.append(4 - data.size(), '\0');
    } else {
        Put(content, cells.Add(data));
    }
    Put(content, type);
    Put(content, 1, 2); // the name is in ASCII
    Put(content, 0, 2);
    return cells.Add(content + name);
}

uint32_t AddKey(Cells& cells, const HiveKey& key, const std::string& name, uint32_t parent, bool isRoot)
{
    uint32_t listed = 0;
    for (const auto& [subName, subKey] : key.keys) {
        listed += subKey.timesListed;
    }
    std::string values;
    for (const auto& [valueName, value] : key.values) {
        Put(values, AddValue(cells, valueName, value.first, value.second));
    }
    const uint32_t valueList = values.empty() ? kNone : cells.Add(values);
    std::string content = "nk";
    Put(content, isRoot ? 0x2C : 0x20, 2);
    content.append(12, '\0');
    Put(content, parent);
    Put(content, listed);
    Put(content, 0);
    const std::size_t subKeyList = content.size();
    Put(content, kNone);
    Put(content, kNone);
    Put(content, static_cast<uint32_t>(key.values.size()));
    Put(content, valueList);
    Put(content, kNone);
    Put(content, kNone);
    content.append(20, '\0');
    Put(content, static_cast<uint32_t>(name.size()), 2);
    Put(content, 0, 2);
    const uint32_t cell = cells.Add(content + name);
    if (!key.keys.empty()) {
        std::string list = "lh";
        Put(list, listed, 2);
        for (const auto& [subName, subKey] : key.keys) {
            const uint32_t subCell = AddKey(cells, subKey, subName, cell, false);
            for (uint32_t time = 0; time < subKey.timesListed; ++time) {
                Put(list, subCell);
                Put(list, HashOf(subName));
            }
        }
        cells.PatchNumber(cell, subKeyList, cells.Add(list));
    }
    return cell;
}
} // namespace

HiveKey& HiveKey::At(const std::string& path)
{
    HiveKey* key = this;
    for (std::size_t begin = 0; begin <= path.size();) {
        const std::size_t end = std::min(path.find('\\', begin), path.size());
        key = &key->keys[path.substr(begin, end - begin)];
        begin = end + 1;
    }
    return *key;
}

HiveKey& HiveKey::Text(const std::string& name, const std::string& text)
{
    values[name] = {1, Wide(text + '\0')};
    return *this;
}

HiveKey& HiveKey::List(const std::string& name, const std::string& entriesWithNuls)
{
    values[name] = {7, Wide(entriesWithNuls)};
    return *this;
}

HiveKey& HiveKey::Number(const std::string& name, uint32_t number)
{
    std::string bytes;
    Put(bytes, number);
    values[name] = {4, bytes};
    return *this;
}

std::string WriteHive(const HiveKey& root)
{
    Cells cells;
    const uint32_t rootCell = AddKey(cells, root, "ROOT", 0, true);
    const std::string block = cells.Block();
    std::string hive(kPage, '\0');
    hive.replace(0, 4, "regf");
    PutAt(hive, 4, 7);
    PutAt(hive, 8, 7);
    PutAt(hive, 20, 1);
    PutAt(hive, 24, 5);
    PutAt(hive, 32, 1);
    PutAt(hive, 36, rootCell);
    PutAt(hive, 40, static_cast<uint32_t>(block.size()));
    PutAt(hive, 44, 1);
    FixHiveChecksum(hive);
    return hive + block;
}

void FixHiveChecksum(std::string& hive)
{
    uint32_t sum = 0;
    for (std::size_t at = 0; at < 508; at += 4) {
        for (std::size_t byte = 0; byte < 4; ++byte) {
            sum ^= static_cast<uint32_t>(static_cast<unsigned char>(hive[at + byte])) << (8 * byte);
        }
    }
    PutAt(hive, 508, sum);
}

std::string Wide(const std::string& text)
{
    std::string wide;
    for (const char letter : text) {
        wide.push_back(letter);
        wide.push_back('\0');
    }
    return wide;
}
