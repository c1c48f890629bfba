#include "ExportReader.h"

#include <algorithm>
#include <array>
#include <utility>

#include "Printable.h"

namespace {
constexpr std::size_t kMostDiagnostics = 20;
constexpr char16_t kMark = 0xFEFF;
constexpr char kExportAgain[] = "export it again";

enum class Root
{
    Machine,
    Other,
    None, // no root at all
};

/// Takes the root's name from the front of a key's path.
Root TakeRoot(std::u16string_view& path)
{
    const std::size_t end = std::min(path.find_first_of(u"\\]"), path.size());
    const std::u16string_view root = path.substr(0, end);
    if (NameIs(root, "HKEY_LOCAL_MACHINE") || NameIs(root, "HKLM")) {
        path.remove_prefix(std::min(end + (path.substr(end).starts_with(u'\\') ? 1 : 0), path.size()));
        return Root::Machine;
    }
    constexpr std::array kOthers =
        std::to_array<std::string_view>({"HKEY_CLASSES_ROOT", "HKCR", "HKEY_CURRENT_USER", "HKCU", "HKEY_USERS", "HKU",
                                         "HKEY_CURRENT_CONFIG", "HKCC", "HKEY_DYN_DATA", "HKEY_PERFORMANCE_DATA"});
    return std::ranges::any_of(kOthers, [root](std::string_view other) { return NameIs(root, other); }) ? Root::Other
                                                                                                        : Root::None;
}

std::vector<std::u16string_view> NamesIn(std::u16string_view path)
{
    std::vector<std::u16string_view> names;
    names.reserve(8);
    while (!path.empty()) {
        const std::size_t end = std::min(path.find(u'\\'), path.size());
        names.push_back(path.substr(0, end));
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return names;
}

std::u16string_view WithoutMark(std::u16string_view text)
{
    return text.starts_with(kMark) ? text.substr(1) : text;
}
} // namespace

ExportReader::ExportReader(std::string source, std::size_t mostBytes)
    : m_source(std::move(source)), m_tree(mostBytes), m_lines([this](const ExportLine& line) { ReadLine(line); })
{
}

void ExportReader::Feed(std::string_view bytes)
{
    if (!m_isRefused) {
        m_lines.Feed(bytes);
    }
}

void ExportReader::Finish()
{
    if (m_isRefused) {
        return;
    }
    m_lines.Finish();
    if (m_isRefused) {
        return;
    }
    if (!m_sawHeader) {
        Refuse(0, "the file is empty");
        return;
    }
    if (IsOpen()) {
        Warn(m_valueLine, "the file ends inside the value \"" + Printable(m_valueName) + "\"", kExportAgain);
    }
    if (m_lines.EndsInsideCharacter()) {
        Warn(0, "the file ends in the middle of a character", kExportAgain);
    }
    if (m_unsaid != 0) {
        m_diagnostics.push_back({.severity = Severity::Warning,
                                 .source = m_source,
                                 .line = m_lastUnsaid,
                                 .what = std::to_string(m_unsaid) + " more lines are damaged, up to this one",
                                 .cure = kExportAgain});
    }
}

void ExportReader::Refuse(std::size_t line, std::string what)
{
    m_isRefused = true;
    m_tree = RegistryTree();
    m_key = nullptr;
    m_diagnostics = {{.severity = Severity::Error,
                      .source = m_source,
                      .line = line,
                      .what = "not a registry export: " + std::move(what),
                      .cure = "write one with collect.cmd, or with \"reg export\""}};
}

void ExportReader::Warn(std::size_t line, std::string what, std::string cure)
{
    if (m_diagnostics.size() == kMostDiagnostics) {
        ++m_unsaid;
        m_lastUnsaid = line;
        return;
    }
    m_diagnostics.push_back({.severity = Severity::Warning,
                             .source = m_source,
                             .line = line,
                             .what = std::move(what),
                             .cure = std::move(cure)});
}

void ExportReader::ReadLine(const ExportLine& line)
{
    if (m_isRefused) {
        return;
    }
    if (!m_sawHeader) {
        ReadFirstLine(line);
        return;
    }
    const char16_t first = line.First();
    if (line.isShifted) {
        Warn(line.number, "a byte is missing or too many in this line; what follows is read from the next line on",
             kExportAgain);
        m_open = ExportData::State::Complete;
        m_key = first == u'[' ? nullptr : m_key;
        return;
    }
    if (first == u'[') {
        ReadBracket(line);
    } else if (IsOpen()) {
        GoOn(line);
    } else if (m_key != nullptr && (first == u'"' || first == u'@')) {
        ReadValue(line);
    } else if (m_key != nullptr || first == kMark || first == u'R' || first == u'W') {
        ReadOtherLine(line);
    }
    if (line.isLast && !IsOpen()) {
        Warn(line.number, "the last line has no end: the file may be cut off", kExportAgain);
    }
}

/// @return the line's text, valid until the text of another line is read.
std::u16string_view ExportReader::TextOf(const ExportLine& line)
{
    line.Read(m_text);
    return m_text;
}

/// @return true when the text is the first line of an export.
bool ExportReader::ReadHeader(std::u16string_view text)
{
    text = WithoutBlanks(WithoutMark(text));
    if (text == u"Windows Registry Editor Version 5.00") {
        m_wideHex = true;
    } else if (text == u"REGEDIT4") {
        m_wideHex = false;
    } else {
        return false;
    }
    m_sawHeader = true;
    m_key = nullptr;
    return true;
}

void ExportReader::ReadFirstLine(const ExportLine& line)
{
    if (line.text == ExportText::Utf16Swapped) {
        Refuse(line.number, "its text is UTF-16 with the high byte first");
        return;
    }
    const std::u16string_view text = TextOf(line);
    if (!ReadHeader(text) && !WithoutBlanks(text).empty()) {
        const std::string begin =
            line.text == ExportText::EightBit ? Printable(line.bytes.substr(0, 40)) : Printable(text.substr(0, 40));
        Refuse(line.number, "it begins with \"" + begin + "\"");
    }
}

/// A line that is neither a key nor a value.
void ExportReader::ReadOtherLine(const ExportLine& line)
{
    if (line.isCut) {
        return;
    }
    const std::u16string_view content = WithoutBlanks(TextOf(line));
    if (content.empty() || content.starts_with(u';') || ReadHeader(content)) {
        return;
    }
    if (m_key != nullptr) {
        Warn(line.number, "neither a key nor a value: \"" + Printable(content.substr(0, 40)) + "\"", kExportAgain);
    }
}

/// A line that begins with a bracket. Inside a text that goes over several lines it is a key only when it names a root:
/// then the text has lost its end.
void ExportReader::ReadBracket(const ExportLine& line)
{
    if (line.isCut) {
        m_key = nullptr;
        m_open = ExportData::State::Complete;
        Warn(line.number, "a line that is too long to be a key", kExportAgain);
        return;
    }
    std::u16string_view path = WithoutBlanks(TextOf(line)).substr(1);
    const bool isRemoved = path.starts_with(u'-');
    path.remove_prefix(isRemoved ? 1 : 0);
    const Root root = TakeRoot(path);
    if (root == Root::None) {
        if (IsOpen()) {
            GoOn(line);
        } else if (m_key != nullptr || path.starts_with(u"HK")) {
            m_key = nullptr;
            Warn(line.number, "no root of a registry: \"" + Printable(path.substr(0, 40)) + "\"", kExportAgain);
        }
        return;
    }
    if (std::exchange(m_open, ExportData::State::Complete) != ExportData::State::Complete) {
        Warn(m_valueLine, "the value \"" + Printable(m_valueName) + "\" does not end before the next key",
             kExportAgain);
    }
    m_key = nullptr;
    if (root == Root::Machine) {
        ReadKey(path, line, isRemoved);
    }
}

void ExportReader::ReadKey(std::u16string_view path, const ExportLine& line, bool isRemoved)
{
    if (!path.ends_with(u']')) {
        Warn(line.number, "a key's name without its end: \"" + Printable(path) + "\"", kExportAgain);
        return;
    }
    path.remove_suffix(1);
    const std::vector<std::u16string_view> names = NamesIn(path);
    if (isRemoved) {
        m_tree.Remove(names);
        return;
    }
    m_wanted = FindWantedKey(names);
    if (m_wanted == nullptr) {
        return;
    }
    m_key = m_tree.Enter(names, line.text != ExportText::EightBit);
    if (m_key == nullptr) {
        WarnOfSize(line.number);
    }
}

void ExportReader::WarnOfSize(std::size_t line)
{
    if (!std::exchange(m_saidSize, true)) {
        Warn(line, "more devices and values than any machine has; the rest is left out", kExportAgain);
    }
}

void ExportReader::ReadValue(const ExportLine& line)
{
    if (line.isCut) {
        Warn(line.number, "a line that is too long to be a value", kExportAgain);
        return;
    }
    std::u16string_view rest = TextOf(line);
    // A file that was joined to a line without its end.
    const std::size_t mark = rest.find(kMark);
    const std::u16string_view joined = rest.substr(std::min(mark, rest.size()));
    rest = rest.substr(0, mark);
    std::u16string name;
    const bool hasName = TakeName(rest, name);
    rest = WithoutBlanks(rest);
    if (!hasName || !rest.starts_with(u'=')) {
        Warn(line.number, "a value that cannot be read: \"" + Printable(rest.substr(0, 40)) + "\"", kExportAgain);
    } else {
        m_valueName.swap(name);
        m_valueLine = line.number;
        TakeData(m_data.Begin(rest.substr(1), line.text, m_wideHex));
    }
    if (!joined.empty() && !IsOpen()) {
        static_cast<void>(ReadHeader(joined));
    }
}

/// Goes on with a value that its first line has not ended.
void ExportReader::GoOn(const ExportLine& line)
{
    TakeData(line.isCut ? ExportData::State::Bad : m_data.Continue(TextOf(line)));
}

void ExportReader::TakeData(ExportData::State state)
{
    m_open = ExportData::State::Complete;
    switch (state) {
        case ExportData::State::OpenText:
        case ExportData::State::OpenBytes:
            m_open = state;
            return;
        case ExportData::State::Bad:
            Warn(m_valueLine, "the value \"" + Printable(m_valueName) + "\" cannot be read", kExportAgain);
            return;
        case ExportData::State::Deletes:
            m_key->values.erase(UpperCaseName(m_valueName));
            return;
        case ExportData::State::Complete:
            break;
    }
    if (WantsValue(*m_wanted, m_valueName) && !m_tree.SetValue(*m_key, m_valueName, m_data.Take())) {
        WarnOfSize(m_valueLine);
    }
}
