#include "ReadHive.h"

#include <fcntl.h>
#include <hivex.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>
#include <vector>

#include "Hive.h"
#include "ReadExport.h"
#include "RegistryWalk.h"

namespace {
struct HiveCloser
{
    void operator()(hive_h* hive) const noexcept { hivex_close(hive); }
};
using UniqueHive = std::unique_ptr<hive_h, HiveCloser>;

struct Freer
{
    void operator()(void* memory) const noexcept { std::free(memory); }
};
template <class T>
using UniqueMemory = std::unique_ptr<T, Freer>;

class FileDescriptor
{
public:
    explicit FileDescriptor(int descriptor) : m_descriptor(descriptor) {}
    ~FileDescriptor()
    {
        if (IsOpen()) {
            close(m_descriptor);
        }
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    [[nodiscard]] bool IsOpen() const { return m_descriptor >= 0; }
    [[nodiscard]] int Get() const { return m_descriptor; }

private:
    int m_descriptor;
};

/// A file's bytes, for reading.
class MappedFile
{
public:
    MappedFile(int descriptor, std::size_t bytes)
        : m_address(mmap(nullptr, bytes, PROT_READ, MAP_PRIVATE, descriptor, 0)), m_bytes(bytes)
    {
    }
    ~MappedFile()
    {
        if (m_address != MAP_FAILED) {
            munmap(m_address, m_bytes);
        }
    }
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;
    [[nodiscard]] std::string_view Bytes() const
    {
        return m_address == MAP_FAILED ? std::string_view() : std::string_view(static_cast<char*>(m_address), m_bytes);
    }

private:
    void* m_address;
    std::size_t m_bytes;
};

/// The keys of a hive. An entry that the library cannot read is left out.
class HiveView : public RegistryView
{
public:
    explicit HiveView(UniqueHive hive) : m_hive(std::move(hive)) {}

    [[nodiscard]] std::optional<Key> Root() override { return Found(hivex_root(m_hive.get())); }

    [[nodiscard]] std::optional<Key> Open(Key key, const StoredName& name) override
    {
        return Found(hivex_node_get_child(m_hive.get(), key, ToUtf8(name.units).c_str()));
    }

    [[nodiscard]] std::vector<SubKey> SubKeys(Key key) override
    {
        std::vector<SubKey> found;
        const UniqueMemory<hive_node_h> children(hivex_node_children(m_hive.get(), key));
        for (const hive_node_h* child = children.get(); child != nullptr && *child != 0; ++child) {
            if (const UniqueMemory<char> name{hivex_node_name(m_hive.get(), *child)}) {
                found.push_back({.name = {.units = FromUtf8(name.get()), .wide = true}, .key = *child});
            }
        }
        return found;
    }

    [[nodiscard]] std::optional<StoredValue> Value(Key key, std::string_view name) override
    {
        const hive_value_h value = hivex_node_get_value(m_hive.get(), key, std::string(name).c_str());
        if (value == 0) {
            return std::nullopt;
        }
        // Not the library's enumeration: registries hold types beyond it.
        uint32_t type = 0;
        static_assert(sizeof(hive_type) == sizeof(type));
        std::size_t bytes = 0;
        const UniqueMemory<char> data(
            hivex_value_value(m_hive.get(), value, reinterpret_cast<hive_type*>(&type), &bytes));
        if (!data) {
            return std::nullopt;
        }
        return StoredValue{.type = type, .bytes = std::string(data.get(), bytes), .wide = true};
    }

private:
    static std::optional<Key> Found(hive_node_h node) { return node == 0 ? std::nullopt : std::optional<Key>(node); }

    UniqueHive m_hive;
};

struct OpenedHive
{
    std::unique_ptr<HiveView> view; ///< null for a hive that cannot be read
    bool isDirty = false;
    Diagnostic trouble; ///< why it cannot be read
};

/// The library maps the file and follows what it finds there, so what it relies on is checked first.
OpenedHive OpenHive(const std::string& path)
{
    OpenedHive opened;
    const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status = {};
    if (!file.IsOpen() || fstat(file.Get(), &status) != 0) {
        opened.trouble = FileRemark(path, errno);
        return opened;
    }
    opened.trouble = {
        .severity = Severity::Error, .source = path, .line = 0, .what = {}, .cure = "copy the hive again"};
    if (!S_ISREG(status.st_mode) || status.st_size == 0) {
        opened.trouble.what = "not a hive";
        return opened;
    }
    const MappedFile bytes(file.Get(), static_cast<std::size_t>(status.st_size));
    const HiveHeader header = CheckHiveHeader(bytes.Bytes().substr(0, kHiveHeaderBytes), bytes.Bytes().size());
    opened.isDirty = header.isDirty;
    opened.trouble.what = header.damage.empty() ? CheckHiveBlocks(bytes.Bytes()) : header.damage;
    if (!opened.trouble.what.empty()) {
        return opened;
    }
    UniqueHive hive(hivex_open(path.c_str(), 0));
    if (!hive) {
        opened.trouble.what = "the hive is damaged inside";
        return opened;
    }
    opened.view = std::make_unique<HiveView>(std::move(hive));
    return opened;
}

/// The hive of that name in any letter case, in the folder of another one.
std::string FindBeside(const std::string& path, std::string_view upperName)
{
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    std::string found;
    for (std::filesystem::directory_iterator at(folder.empty() ? "." : folder, error), end; !error && at != end;
         at.increment(error)) {
        const std::string name = at->path().filename().string();
        // Of several names the first one in their order counts, whatever the order of the folder.
        if (NameIs(FromUtf8(name), upperName) && (found.empty() || at->path().string() < found)) {
            found = at->path().string();
        }
    }
    return found;
}

/// @return the name of the control set that "Select" names; empty when it names none.
std::string CurrentControlSet(RegistryView& view)
{
    const auto root = view.Root();
    const auto select = root ? view.Open(*root, {.units = u"Select", .wide = true}) : std::nullopt;
    const auto value = select ? view.Value(*select, "Current") : std::nullopt;
    const auto number = value ? NumberIn({.type = value->type, .bytes = value->bytes}) : std::nullopt;
    if (!number || *number > 999) {
        return {};
    }
    const std::string digits = std::to_string(1000 + *number);
    return "ControlSet" + digits.substr(1);
}

Diagnostic DirtyRemark(const std::string& path)
{
    return {.severity = Severity::Warning,
            .source = path,
            .line = 0,
            .what = "the hive was not closed: the latest changes are in its .LOG files, which are not read",
            .cure = "shut the machine down and copy the hive again to be sure"};
}

void ReadSoftwareHive(const std::string& path, RegistryTree& tree, std::vector<Diagnostic>& diagnostics)
{
    OpenedHive software = OpenHive(path);
    if (!software.view) {
        software.trouble.severity = Severity::Warning;
        diagnostics.push_back(software.trouble);
        return;
    }
    if (software.isDirty) {
        diagnostics.push_back(DirtyRemark(path));
    }
    software.trouble.what = CopyWantedKeys(*software.view, "SOFTWARE", {}, tree);
    if (!software.trouble.what.empty()) {
        software.trouble.severity = Severity::Warning;
        diagnostics.push_back(software.trouble);
    }
}
} // namespace

Machine ReadHive(const std::string& path, const MachineOrigin& origin)
{
    OpenedHive opened = OpenHive(path);
    if (!opened.view) {
        return RefusedMachine(origin, {opened.trouble});
    }
    const std::string controlSet = CurrentControlSet(*opened.view);
    RegistryTree tree;
    opened.trouble.what = CopyWantedKeys(*opened.view, "SYSTEM", controlSet, tree);
    if (!opened.trouble.what.empty()) {
        return RefusedMachine(origin, {opened.trouble});
    }
    if (tree.Find("SYSTEM\\" + controlSet) == nullptr) {
        const std::string what = controlSet.empty() ? "not a SYSTEM hive: nothing says which control set is current"
                                                    : "the current control set, " + controlSet + ", is missing";
        return RefusedMachine(origin, {{.severity = Severity::Error,
                                        .source = path,
                                        .line = 0,
                                        .what = what,
                                        .cure = R"(name the file SYSTEM of Windows\System32\config)"}});
    }
    std::vector<Diagnostic> diagnostics;
    if (opened.isDirty) {
        diagnostics.push_back(DirtyRemark(path));
    }
    if (const std::string software = FindBeside(path, "SOFTWARE"); !software.empty()) {
        ReadSoftwareHive(software, tree, diagnostics);
    }
    Machine machine = DescribeMachine(tree, origin, std::move(diagnostics));
    machine.dirty = opened.isDirty;
    return machine;
}
