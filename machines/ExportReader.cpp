#include "ExportReader.h"

#include <algorithm>
#include <array>
#include <utility>

#include "Printable.h"

namespace {
constexpr std::size_t kMostDiagnostics = 20;
constexpr char16_t kMark = 0xFEFF;
constexpr char kEndTheLine[] = "export it again, or end the last line if the file is whole";

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
    // Wine's "reg export" ends a file with a CR that has no LF; in joined files the mark comes after it.
    while (text.starts_with(u'\r')) {
        text.remove_prefix(1);
    }
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
    CheckEnd();
    if (m_unsaid != 0) {
        m_diagnostics.push_back({.severity = m_isDamaged ? Severity::Error : Severity::Warning,
                                 .source = m_source,
                                 .line = m_lastUnsaid,
                                 .what = std::to_string(m_unsaid) + " more lines are damaged, up to this one",
                                 .cure = "export it again"});
    }
    if (m_isDamaged) {
        m_isRefused = true;
        m_tree = RegistryTree();
        m_key = nullptr;
        // Only what the refusal rests on.
        std::erase_if(m_diagnostics, [](const Diagnostic& each) { return each.severity != Severity::Error; });
    }
}

/// Finds what the end of the file may have cut off, beside its last line.
void ExportReader::CheckEnd()
{
    if (IsOpen()) {
        Complain(m_valueLine, "the file ends inside the value \"" + Printable(m_valueName) + "\"");
    } else if (m_endsInsideSkipped) {
        Complain(0, "the file ends inside a value");
    } else if (!m_isDamaged && m_key != nullptr && !m_endsWithBlankLine && IsDeviceKey(*m_wanted) &&
               FindValue(*m_key, "CompatibleIDs") == nullptr) {
        Complain(0, "the file ends inside a device: neither its IDs nor the blank line after a key follow",
                 "export it again, or add a blank line if the file is whole");
    }
    if (m_lines.EndsInsideCharacter()) {
        Complain(0, "the file ends in the middle of a character");
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
    Remark(Severity::Warning, line, std::move(what), std::move(cure));
}

/// Reports damage by which a device or a fact of the system may be lost.
void ExportReader::Complain(std::size_t line, std::string what, std::string cure)
{
    m_isDamaged = true;
    Remark(Severity::Error, line, std::move(what), std::move(cure));
}

void ExportReader::Remark(Severity severity, std::size_t line, std::string what, std::string cure)
{
    if (m_diagnostics.size() == kMostDiagnostics) {
        ++m_unsaid;
        m_lastUnsaid = line;
        return;
    }
    m_diagnostics.push_back(
        {.severity = severity, .source = m_source, .line = line, .what = std::move(what), .cure = std::move(cure)});
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
        // It may have swallowed the line of a key.
        Complain(line.number, "a byte is missing or too many in this line");
        m_open = ExportData::State::Complete;
        m_key = first == u'[' ? nullptr : m_key;
        return;
    }
    const bool goesOn = IsOpen() || m_endsInsideSkipped;
    if (first == u'[') {
        ReadBracket(line);
    } else if (IsOpen()) {
        GoOn(line);
    } else if (m_key != nullptr && (first == u'"' || first == u'@')) {
        ReadValue(line);
    } else if (m_key != nullptr || first == kMark || first == u'R' || first == u'W') {
        ReadOtherLine(line);
    }
    m_endsWithBlankLine = line.bytes.empty();
    m_endsInsideSkipped = m_key == nullptr && line.GoesOn();
    if (line.isLast && !IsOpen() && !m_endsInsideSkipped) {
        CheckLastLine(line, goesOn);
    }
}

/// A last line without its end is whole or cut off.
/// @param goesOn  A value of an earlier line goes on in it.
void ExportReader::CheckLastLine(const ExportLine& line, bool goesOn)
{
    if (!m_diagnostics.empty() && m_diagnostics.back().line == line.number) {
        return;
    }
    if (goesOn ? m_key != nullptr && m_data.IsSurelyWhole() : IsWholeLine(line)) {
        Warn(line.number, "the last line has no end: the file may be cut off");
    } else {
        Complain(line.number, "the file ends inside this line", kEndTheLine);
    }
}

/// @return true when nothing can be missing at the end of the last line, which was read before and begins anew.
bool ExportReader::IsWholeLine(const ExportLine& line)
{
    std::u16string_view text = line.isCut ? std::u16string_view() : WithoutBlanks(TextOf(line));
    if (line.isCut || text.starts_with(u'[')) {
        // The values of a key that is needed would follow.
        return m_key == nullptr && text.ends_with(u']');
    }
    if (text.empty() || text.starts_with(u';') || ReadHeader(text)) {
        return true;
    }
    if (m_key == nullptr) {
        std::u16string name;
        if (!TakeName(text, name) || !WithoutBlanks(text).starts_with(u'=')) {
            return false;
        }
        m_data.Begin(WithoutBlanks(text).substr(1), line.text, m_wideHex);
    }
    return m_data.IsSurelyWhole();
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
        Complain(line.number, "neither a key nor a value: \"" + Printable(content.substr(0, 40)) + "\"");
    }
}

/// A line that begins with a bracket. Inside a text that goes over several lines it is a key only when it names a root:
/// then the text has lost its end.
void ExportReader::ReadBracket(const ExportLine& line)
{
    if (line.isCut) {
        m_key = nullptr;
        m_open = ExportData::State::Complete;
        Complain(line.number, "a line that is too long to be a key");
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
            Complain(line.number, "no root of a registry: \"" + Printable(path.substr(0, 40)) + "\"");
        }
        return;
    }
    if (std::exchange(m_open, ExportData::State::Complete) != ExportData::State::Complete) {
        // It has swallowed the values after it.
        Complain(m_valueLine, "the value \"" + Printable(m_valueName) + "\" does not end before the next key");
    }
    m_key = nullptr;
    if (root == Root::Machine) {
        ReadKey(path, line, isRemoved);
    }
}

void ExportReader::ReadKey(std::u16string_view path, const ExportLine& line, bool isRemoved)
{
    if (!path.ends_with(u']')) {
        const std::string what = "a key's name without its end: \"" + Printable(path) + "\"";
        if (line.isLast || MayBecomeWanted(NamesIn(path))) {
            Complain(line.number, what);
        } else {
            Warn(line.number, what);
        }
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
        ComplainOfSize(line.number);
    }
}

void ExportReader::ComplainOfSize(std::size_t line)
{
    if (!std::exchange(m_saidSize, true)) {
        Complain(line, "more devices and values than any machine has");
    }
}

void ExportReader::ReadValue(const ExportLine& line)
{
    if (line.isCut) {
        Complain(line.number, "a line that is too long to be a value");
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
        Complain(line.number, "a value that cannot be read: \"" + Printable(rest.substr(0, 40)) + "\"");
    } else {
        m_valueName.swap(name);
        m_valueLine = line.number;
        m_isContinued = false;
        TakeData(m_data.Begin(rest.substr(1), line.text, m_wideHex));
    }
    if (!joined.empty() && !IsOpen()) {
        static_cast<void>(ReadHeader(joined));
    }
}

/// Goes on with a value that its first line has not ended.
void ExportReader::GoOn(const ExportLine& line)
{
    m_isContinued = true;
    TakeData(line.isCut ? ExportData::State::Bad : m_data.Continue(TextOf(line)));
}

/// A value that cannot be read. One that is not needed is not missed, unless its next lines may be another one.
void ExportReader::ComplainOfValue()
{
    const std::string what = "the value \"" + Printable(m_valueName) + "\" cannot be read";
    if (m_isContinued || WantsValue(*m_wanted, m_valueName)) {
        Complain(m_valueLine, what);
    } else {
        Warn(m_valueLine, what);
    }
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
            ComplainOfValue();
            return;
        case ExportData::State::Deletes:
            m_key->values.erase(UpperCaseName(m_valueName));
            return;
        case ExportData::State::Complete:
            break;
    }
    if (WantsValue(*m_wanted, m_valueName) && !m_tree.SetValue(*m_key, m_valueName, m_data.Take())) {
        ComplainOfSize(m_valueLine);
    }
}
