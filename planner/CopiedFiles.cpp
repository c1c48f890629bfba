#include "CopiedFiles.h"

#include <algorithm>
#include <optional>

#include "EqualsIgnoringCase.h"
#include "Trimmed.h"

namespace {
std::string_view BeforeComment(std::string_view text)
{
    return text.substr(0, text.find(';'));
}

std::vector<std::string_view> PartsOf(std::string_view list)
{
    std::vector<std::string_view> parts;
    for (;;) {
        const std::size_t comma = list.find(',');
        parts.push_back(Trimmed(list.substr(0, comma)));
        if (comma == std::string_view::npos) {
            return parts;
        }
        list.remove_prefix(comma + 1);
    }
}

/// @return the folder of the files of a list, as "DestinationDirs" gives it: a number and perhaps a folder below.
std::string DestinationOf(const SetupInf& inf, std::string_view listName)
{
    const SetupInf::Line* line = listName.empty() ? nullptr : inf.FindLine("DestinationDirs", listName);
    if (line == nullptr || line->Field(0).empty()) {
        line = inf.FindLine("DestinationDirs", "DefaultDestDir");
    }
    if (line == nullptr) {
        return {};
    }
    const std::string_view below = line->Field(1);
    return std::string(line->Field(0)) + (below.empty() ? "" : ",") + std::string(below);
}

void AddList(const SetupInf& inf, const SetupInf::Line& copies, std::string_view list, CopiedFiles& copied)
{
    if (list.starts_with('@')) {
        const std::string name(list.substr(1));
        copied.files.push_back(
            {.name = name, .source = name, .destination = DestinationOf(inf, ""), .place = copies.place});
        return;
    }
    const std::string destination = DestinationOf(inf, list);
    for (const SetupInf::Line& line : inf.LinesOf(list)) {
        if (const std::string_view name = line.Field(0); !name.empty()) {
            const std::string_view source = line.Field(1).empty() ? name : line.Field(1);
            copied.files.push_back({.name = std::string(name),
                                    .source = std::string(source),
                                    .destination = destination,
                                    .place = line.place});
        }
    }
}

void AddSection(const SetupInf& inf, const std::string& section, CopiedFiles& copied)
{
    const std::vector<SetupInf::Line>& lines = inf.LinesOf(section);
    copied.place = lines.empty() ? ProfilePlace() : lines.front().place;
    for (const SetupInf::Line& line : lines) {
        copied.namesOtherInfs |= EqualsIgnoringCase(line.key, "Include") || EqualsIgnoringCase(line.key, "Needs");
        if (EqualsIgnoringCase(line.key, "CopyFiles")) {
            for (const std::string_view list : line.fields) {
                AddList(inf, line, list, copied);
            }
        }
    }
}
} // namespace

bool CopiedFile::GoesToDriverDirectory() const
{
    const std::vector<std::string_view> parts = PartsOf(destination);
    const std::string_view below = parts.size() > 1 ? parts[1] : std::string_view();
    return (parts[0] == "12" && below.empty()) || (parts[0] == "11" && EqualsIgnoringCase(below, "drivers")) ||
           (parts[0] == "10" && EqualsIgnoringCase(below, R"(system32\drivers)"));
}

bool CopiedFile::StaysInDriverStore() const
{
    return PartsOf(destination).front() == "13";
}

CopiedFiles FilesCopiedBy(const SetupInf& inf, std::string_view installSection, std::string_view processor)
{
    CopiedFiles copied;
    const std::string ofProcessor = ".NT" + std::string(processor);
    // What a system of the NT family tries after an install section's name; the first that exists wins.
    for (const std::string_view decoration :
         {std::string_view(ofProcessor), std::string_view(".NT"), std::string_view()}) {
        const std::string section = std::string(installSection).append(decoration);
        copied.known = inf.HasSection(section);
        if (copied.known) {
            AddSection(inf, section, copied);
            break;
        }
    }
    for (const CopiedFile& file : copied.files) {
        if (file.GoesToDriverDirectory()) {
            copied.inDriverDirectory.push_back(file.name);
        }
    }
    return copied;
}

CopiedFiles FilesCopiedBy(const Profile& inf, std::string_view installSection, OSCode system)
{
    return FilesCopiedBy(SetupInf(inf), installSection, ProcessorOf(system));
}

std::string_view ProcessorOf(OSCode system)
{
    const std::string_view section = RowOf(system).sectionKey;
    return section.ends_with("32E") ? "amd64" : section.ends_with("64") ? "ia64" : "x86";
}

std::string InstallSectionOf(std::string_view modelValue)
{
    return std::string(PartsOf(BeforeComment(modelValue)).front());
}

bool FitsPattern(std::string_view name, std::string_view pattern)
{
    const std::size_t asterisk = pattern.find('*');
    if (asterisk == std::string_view::npos) {
        return EqualsIgnoringCase(name, pattern);
    }
    if (name.size() < asterisk || !EqualsIgnoringCase(name.substr(0, asterisk), pattern.substr(0, asterisk))) {
        return false;
    }
    for (std::size_t start = asterisk; start <= name.size(); ++start) {
        if (FitsPattern(name.substr(start), pattern.substr(asterisk + 1))) {
            return true;
        }
    }
    return false;
}
