#pragma once

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "DriverInstallRecord.h"
#include "EqualsIgnoringCase.h"
#include "KitSearch.h"

/// A kit in memory, with the platform's rules for profile files as far as kits rely on them, and a count of what it was
/// asked. One object belongs to one thread.
class MemoryKit final : public KitSource
{
public:
    struct File
    {
        std::string text; ///< lines ended by "\n"
        FileStamp stamp{.bytes = 1, .writeTime = 1};
        FileMark mark{.opened = true, .read = true, .utf16 = false};
        bool isLink = false;
        bool readable = true; ///< what is not readable reads as missing
    };

    /// Full paths with their files. A directory lists its files in the order of their names.
    std::map<std::string, File> files;
    int profileReads = 0;
    int markReads = 0;
    int stampReads = 0;

    void Add(const std::string& path, const std::string& text) { files[path] = {.text = text}; }

    uint32_t ReadText(const char* section, const char* key, const char* defaultText, std::span<char> buffer,
                      const std::string& file) override
    {
        ++profileReads;
        std::ranges::fill(buffer, '\0');
        if (key == nullptr) {
            std::string names;
            for (const std::string& line : LinesOfSection(file, section)) {
                if (const auto equals = line.find('='); equals != std::string::npos) {
                    names += line.substr(0, equals) + '\0';
                }
            }
            return names.empty() ? Put(defaultText, buffer, 1) : Put(names, buffer, 2);
        }
        for (const std::string& line : LinesOfSection(file, section)) {
            const auto equals = line.find('=');
            if (equals != std::string::npos && EqualsIgnoringCase(line.substr(0, equals), key)) {
                return Put(WithoutQuotes(line.substr(equals + 1)), buffer, 1);
            }
        }
        return Put(defaultText, buffer, 1);
    }

    uint32_t ReadSection(const char* section, std::span<char> buffer, const std::string& file) override
    {
        ++profileReads;
        std::ranges::fill(buffer, '\0');
        std::string lines;
        for (const std::string& line : LinesOfSection(file, section)) {
            lines += line + '\0';
        }
        return Put(lines, buffer, 2);
    }

    [[nodiscard]] FileMark MarkOf(const std::string& file) override
    {
        ++markReads;
        const auto found = files.find(file);
        return found == files.end() || !found->second.readable ? FileMark{} : found->second.mark;
    }

    [[nodiscard]] std::optional<FileStamp> StampOf(const std::string& file) override
    {
        ++stampReads;
        const auto found = files.find(file);
        return found == files.end() || found->second.isLink ? std::nullopt : std::optional(found->second.stamp);
    }

    [[nodiscard]] std::unique_ptr<InfListing> List(const std::string& directoryPath) override
    {
        std::vector<InfEntry> entries;
        for (const auto& [path, file] : files) {
            const std::string_view name = std::string_view(path).substr(std::min(path.size(), directoryPath.size()));
            if (path.starts_with(directoryPath) && name.find('\\') == std::string_view::npos &&
                name.ends_with(".inf")) {
                entries.push_back({std::string(name), file.isLink ? std::nullopt : std::optional(file.stamp)});
            }
        }
        return entries.empty() ? nullptr : std::make_unique<Listing>(std::move(entries));
    }

private:
    class Listing final : public InfListing
    {
    public:
        explicit Listing(std::vector<InfEntry> entries) : m_entries(std::move(entries)) {}
        [[nodiscard]] const InfEntry* Next() override
        {
            return m_next == m_entries.size() ? nullptr : &m_entries[m_next++];
        }

    private:
        std::vector<InfEntry> m_entries;
        std::size_t m_next = 0;
    };

    /// @param terminators  NULs that must fit after the text.
    static uint32_t Put(std::string_view text, std::span<char> buffer, std::size_t terminators)
    {
        const std::string_view fitting = text.substr(0, buffer.size() - terminators);
        std::ranges::copy(fitting, buffer.begin());
        return static_cast<uint32_t>(fitting.size());
    }

    static std::string WithoutQuotes(const std::string& value)
    {
        return value.size() >= 2 && value.front() == '"' && value.back() == '"' ? value.substr(1, value.size() - 2)
                                                                                : value;
    }

    /// @return the lines of the first section of that name.
    [[nodiscard]] std::vector<std::string> LinesOfSection(const std::string& path, std::string_view section) const
    {
        std::vector<std::string> lines;
        const auto found = files.find(path);
        if (found == files.end() || !found->second.readable) {
            return lines;
        }
        bool inside = false;
        std::string_view rest = found->second.text;
        while (!rest.empty()) {
            const std::string_view line = rest.substr(0, rest.find('\n'));
            rest.remove_prefix(std::min(line.size() + 1, rest.size()));
            if (line.starts_with('[')) {
                if (inside) {
                    break;
                }
                inside = EqualsIgnoringCase(line.substr(1, line.find(']') - 1), section);
            } else if (inside && !line.empty()) {
                lines.emplace_back(line);
            }
        }
        return lines;
    }
};

/// Takes notes of a search.
class NotingLog final : public SearchLog
{
public:
    struct JudgedInf
    {
        std::string infPath;
        InfVerdict verdict;
        friend bool operator==(const JudgedInf&, const JudgedInf&) = default;
    };

    std::vector<std::string> lines;       ///< of the trace
    std::vector<std::string> stored;      ///< paths of the INF files that were handed to the store
    std::vector<std::string> directories; ///< their source directories
    std::vector<JudgedInf> judged;
    std::vector<std::string> sections; ///< "INF [section]: line of the match", the first being 0, or "no match"
    std::vector<SearchStep> steps;
    std::vector<std::string> passes; ///< "2 ID"

    void SayPieces(std::span<const std::string_view> pieces) override
    {
        std::string line;
        for (const std::string_view piece : pieces) {
            line += piece;
        }
        lines.push_back(line);
    }
    void Store(const std::string& infPath, const std::string& sourceDirectory) override
    {
        stored.push_back(infPath);
        directories.push_back(sourceDirectory);
    }
    void Reached(SearchStep step) override { steps.push_back(step); }
    void PassBegins(int pass, std::string_view searchId) override
    {
        passes.push_back(std::to_string(pass) + " " + std::string(searchId));
    }
    void InfJudged(const std::string& infPath, InfVerdict verdict) override { judged.push_back({infPath, verdict}); }

    void SectionSearched(std::string_view infPath, std::string_view sectionName, const ModelSection& /*section*/,
                         std::optional<std::size_t> match) override
    {
        sections.push_back(std::string(infPath) + " [" + std::string(sectionName) +
                           "]: " + (match ? std::to_string(*match) : "no match"));
    }

    [[nodiscard]] bool Said(const std::string& line) const { return std::ranges::find(lines, line) != lines.end(); }
};

/// A search in a kit in memory, with all that belongs to it.
struct MemorySearch
{
    MemoryKit kit;
    NotingLog log;
    std::vector<std::string> storedInfs;
    std::array<char, 256> matchedHardwareId{};
    std::array<char, 260> deviceDescription{};

    /// @return the search of a Windows 7 workstation of x64, in C:\Kit. Refers to this object.
    [[nodiscard]] KitSearch Search() { return Over(kit); }
    [[nodiscard]] KitSearch Over(KitSource& source)
    {
        return {.source = source,
                .log = log,
                .setupDir = R"(C:\Kit)",
                .system = osWINSEVEN32E,
                .family = std::string(kFamilyWindowsVista),
                .forceInfScan = false,
                .isLeadByte = [](unsigned char) { return false; },
                .storedInfs = storedInfs,
                .matchedHardwareId = matchedHardwareId,
                .deviceDescription = deviceDescription};
    }
};

/// @return an INF of our brand for the NT family that lists one device.
inline std::string InfThatLists(const std::string& id, const std::string& section = "Norda.NTamd64")
{
    return "[Version]\nSignature=\"$Windows NT$\"\n[Manufacturer]\n%Maker%=Norda,NTamd64\n[" + section +
           "]\n%Device%=Install, PCI\\" + id + "\n[Strings]\nMaker=\"Norda\"\nDevice=\"Adapter " + id + "\"\n";
}
