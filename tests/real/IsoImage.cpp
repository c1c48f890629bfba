#include "IsoImage.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <map>
#include <memory>
#include <string_view>

namespace {
constexpr std::size_t kSector = 2048;
constexpr std::size_t kFirstDescriptor = 16;
constexpr std::size_t kDescriptors = 3;

// The two forms of a disc. Each has directories of its own; both name the same extents of the files.
enum class Form
{
    Plain,
    Joliet
};
constexpr Form kForms[] = {Form::Plain, Form::Joliet};

std::string LittleEndian(std::uint32_t number, unsigned bytes)
{
    std::string text;
    for (unsigned i = 0; i < bytes; ++i) {
        text += static_cast<char>(number >> (8 * i) & 0xFF);
    }
    return text;
}

std::string BigEndian(std::uint32_t number, unsigned bytes)
{
    std::string text = LittleEndian(number, bytes);
    std::ranges::reverse(text);
    return text;
}

std::string BothEndian(std::uint32_t number, unsigned bytes)
{
    return LittleEndian(number, bytes) + BigEndian(number, bytes);
}

std::size_t SectorsOf(std::size_t bytes)
{
    return (bytes + kSector - 1) / kSector;
}

std::string Padded(std::string bytes)
{
    bytes.resize(SectorsOf(bytes.size()) * kSector, '\0');
    return bytes;
}

std::string Encoded(std::string_view ascii, Form form)
{
    if (form == Form::Plain) {
        return std::string(ascii);
    }
    std::string wide;
    for (const char c : ascii) {
        wide += '\0';
        wide += c;
    }
    return wide;
}

/// A text of a descriptor, filled up with blanks.
std::string Field(std::string_view ascii, std::size_t bytes, Form form)
{
    std::string field = Encoded(ascii, form);
    while (field.size() < bytes) {
        field += Encoded(" ", form);
    }
    field.resize(bytes);
    return field;
}

struct Extent
{
    std::size_t sector = 0;
    std::size_t bytes = 0;
};

/// A file or directory.
struct Node
{
    std::string name;
    unsigned number = 0; ///< its name in the plain form
    Node* parent = nullptr;
    const std::string* content = nullptr; ///< null for a directory
    std::map<std::string, std::unique_ptr<Node>> children;
    std::map<Form, Extent> extents;
    std::map<Form, std::uint32_t> pathNumber; ///< number in the path table

    [[nodiscard]] std::string NameIn(Form form) const
    {
        std::string shown = name;
        if (form == Form::Plain) {
            char numbered[16];
            static_cast<void>(
                std::snprintf(numbered, sizeof(numbered), content == nullptr ? "D%07u" : "F%07u.", number));
            shown = numbered;
        }
        return Encoded(content == nullptr ? shown : shown + ";1", form);
    }

    [[nodiscard]] std::vector<Node*> SortedChildren(Form form) const
    {
        std::vector<Node*> sorted;
        for (const auto& [childName, child] : children) {
            sorted.push_back(child.get());
        }
        std::ranges::sort(sorted, {}, [form](const Node* node) { return node->NameIn(form); });
        return sorted;
    }
};

std::string DirectoryRecord(const Extent& extent, bool isDirectory, std::string_view name)
{
    // The second of January 2013, at midnight.
    constexpr std::string_view kDate("\x71\x01\x02\x00\x00\x00\x00", 7);
    std::string record(2, '\0');
    record += BothEndian(static_cast<std::uint32_t>(extent.sector), 4);
    record += BothEndian(static_cast<std::uint32_t>(extent.bytes), 4);
    record += kDate;
    record += isDirectory ? '\x02' : '\0';
    record += std::string(2, '\0');
    record += BothEndian(1, 2);
    record += static_cast<char>(name.size());
    record += name;
    record.resize((record.size() + 1) / 2 * 2, '\0');
    record[0] = static_cast<char>(record.size());
    return record;
}

std::string DirectoryContent(const Node& directory, Form form)
{
    const Node& above = directory.parent == nullptr ? directory : *directory.parent;
    std::string content = DirectoryRecord(directory.extents.at(form), true, std::string_view("\0", 1));
    content += DirectoryRecord(above.extents.at(form), true, "\x01");
    for (const Node* child : directory.SortedChildren(form)) {
        const std::string record =
            DirectoryRecord(child->extents.at(form), child->content == nullptr, child->NameIn(form));
        // No record lies in two sectors.
        if (content.size() / kSector != (content.size() + record.size() - 1) / kSector) {
            content = Padded(content);
        }
        content += record;
    }
    return Padded(content);
}

class Disc
{
public:
    explicit Disc(const std::vector<DiscFile>& files)
    {
        for (const DiscFile& file : files) {
            Add(file);
        }
        for (const Form form : kForms) {
            NumberDirectories(form);
        }
        LayOut();
    }

    [[nodiscard]] std::string Image(const std::string& label) const
    {
        std::string image(kFirstDescriptor * kSector, '\0');
        for (const Form form : kForms) {
            image += Descriptor(label, form);
        }
        image += Padded(std::string("\xFF") + "CD001\x01");
        for (const Form form : kForms) {
            image += Padded(PathTable(form, &LittleEndian));
            image += Padded(PathTable(form, &BigEndian));
            for (const Node* directory : m_directories.at(form)) {
                image += DirectoryContent(*directory, form);
            }
        }
        for (const Node* file : m_files) {
            image += Padded(*file->content);
        }
        return image;
    }

private:
    using Endian = std::string (*)(std::uint32_t number, unsigned bytes);

    void Add(const DiscFile& file)
    {
        Node* node = &m_root;
        for (std::string_view rest = file.path; !rest.empty();) {
            const std::size_t end = std::min(rest.find('/'), rest.size());
            std::unique_ptr<Node>& child = node->children[std::string(rest.substr(0, end))];
            if (!child) {
                child = std::make_unique<Node>();
                child->name = rest.substr(0, end);
                child->number = ++m_nodes;
                child->parent = node;
            }
            node = child.get();
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
        node->content = &file.content;
        m_files.push_back(node);
    }

    // Level by level, as the path table wants them.
    void NumberDirectories(Form form)
    {
        std::vector<Node*>& directories = m_directories[form];
        directories = {&m_root};
        for (std::size_t i = 0; i < directories.size(); ++i) {
            directories[i]->pathNumber[form] = static_cast<std::uint32_t>(i + 1);
            for (Node* child : directories[i]->SortedChildren(form)) {
                if (child->content == nullptr) {
                    directories.push_back(child);
                }
            }
        }
    }

    void LayOut()
    {
        // The size of a directory does not depend on where anything lies.
        for (const Form form : kForms) {
            for (Node* directory : m_directories.at(form)) {
                directory->extents[form] = {};
            }
            for (Node* file : m_files) {
                file->extents[form] = {};
            }
        }
        std::size_t next = kFirstDescriptor + kDescriptors;
        for (const Form form : kForms) {
            m_pathTables[form] = next;
            next += 2 * SectorsOf(PathTable(form, &LittleEndian).size());
            for (Node* directory : m_directories.at(form)) {
                const std::size_t bytes = DirectoryContent(*directory, form).size();
                directory->extents[form] = {next, bytes};
                next += SectorsOf(bytes);
            }
        }
        for (Node* file : m_files) {
            for (const Form form : kForms) {
                file->extents[form] = {next, file->content->size()};
            }
            next += SectorsOf(file->content->size());
        }
        m_sectors = next;
    }

    [[nodiscard]] std::string PathTable(Form form, Endian number) const
    {
        std::string table;
        for (const Node* directory : m_directories.at(form)) {
            const Node& above = directory->parent == nullptr ? *directory : *directory->parent;
            const std::string name = directory->parent == nullptr ? std::string(1, '\0') : directory->NameIn(form);
            table += static_cast<char>(name.size());
            table += '\0';
            table += number(static_cast<std::uint32_t>(directory->extents.at(form).sector), 4);
            table += number(above.pathNumber.at(form), 2);
            table += name;
            table.resize((table.size() + 1) / 2 * 2, '\0');
        }
        return table;
    }

    [[nodiscard]] std::string Descriptor(const std::string& label, Form form) const
    {
        const std::size_t tableBytes = PathTable(form, &LittleEndian).size();
        const std::size_t table = m_pathTables.at(form);
        std::string text = form == Form::Plain ? "\x01" : "\x02";
        text += "CD001\x01";
        text += '\0';
        text += Field("", 32, form) + Field(label, 32, form) + std::string(8, '\0');
        text += BothEndian(static_cast<std::uint32_t>(m_sectors), 4);
        // Joliet is a supplementary form with this escape sequence.
        std::string escape = form == Form::Plain ? "" : "%/E";
        escape.resize(32, '\0');
        text += escape + BothEndian(1, 2) + BothEndian(1, 2) + BothEndian(kSector, 2);
        text += BothEndian(static_cast<std::uint32_t>(tableBytes), 4);
        text += LittleEndian(static_cast<std::uint32_t>(table), 4) + std::string(4, '\0');
        text += BigEndian(static_cast<std::uint32_t>(table + SectorsOf(tableBytes)), 4) + std::string(4, '\0');
        text += DirectoryRecord(m_root.extents.at(form), true, std::string_view("\0", 1));
        for (const std::size_t bytes : {128, 128, 128, 128, 37, 37, 37}) {
            text += Field("", bytes, form);
        }
        // Four times, none of them given, and the version of the structure.
        for (int i = 0; i < 4; ++i) {
            text += std::string(16, '0') + '\0';
        }
        text += '\x01';
        return Padded(text);
    }

    Node m_root;
    unsigned m_nodes = 0;
    std::vector<Node*> m_files;
    std::map<Form, std::vector<Node*>> m_directories;
    std::map<Form, std::size_t> m_pathTables;
    std::size_t m_sectors = 0;
};
} // namespace

std::string IsoImage(const std::vector<DiscFile>& files, const std::string& label)
{
    return Disc(files).Image(label);
}
