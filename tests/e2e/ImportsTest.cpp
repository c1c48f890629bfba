// What the shipped files import. If a file imports a name that the oldest system lacks, the loader rejects the file
// there before any of its code runs; if it imports a library that is not a known library everywhere, a file beside the
// program takes that library's place. The lists are imports.txt and known_libraries.txt, beside this program.

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>

#include "Environment.h"
#include "ImportTable.h"
#include "ScratchDirectory.h"
#include "TestFiles.h"

namespace {
using testing::IsEmpty;

constexpr std::pair kOldestSystem{5, 2};

/// The first version of each name that may be imported, as "library!name".
using KeptImports = std::map<std::string, std::pair<int, int>>;

std::string LowerCase(std::string text)
{
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

std::string NameOf(const Import& import)
{
    return LowerCase(import.module) + "!" + import.name;
}

KeptImports ReadKeptImports()
{
    KeptImports kept;
    std::istringstream list(ReadFileBytes(TestFile("imports.txt")));
    for (std::string line; std::getline(list, line);) {
        std::istringstream fields(line);
        std::string library;
        if (!(fields >> library) || library.starts_with('#')) {
            continue;
        }
        std::string name;
        std::pair<int, int> version{};
        char point = 0;
        fields >> name >> version.first >> point >> version.second;
        if (!fields || point != '.' || !kept.emplace(library + "!" + name, version).second) {
            throw std::runtime_error("imports.txt: " + line);
        }
    }
    return kept;
}

/// The known libraries of each system, with their file names.
std::map<std::string, std::set<std::string>> ReadKnownLibraries()
{
    std::map<std::string, std::set<std::string>> known;
    std::istringstream list(ReadFileBytes(TestFile("known_libraries.txt")));
    for (std::string line; std::getline(list, line);) {
        std::istringstream fields(line);
        std::string system;
        if (!(fields >> system) || system.starts_with('#')) {
            continue;
        }
        for (std::string library; fields >> library;) {
            known[system].insert(library + ".dll");
        }
    }
    return known;
}

std::set<std::string> LibrariesOf(const std::string& file)
{
    std::set<std::string> libraries;
    for (const Import& import : ImportsOf(file)) {
        libraries.insert(LowerCase(import.module));
    }
    return libraries;
}

/// Every program, library and driver that is shipped, by its path; the package's action library travels in the package.
std::vector<std::string> ShippedFiles()
{
    std::vector<std::string> files = {TestFile("MorvixActions.dll")};
    for (const auto& entry : std::filesystem::recursive_directory_iterator(DistFolder())) {
        if (entry.is_regular_file() && ReadFileBytes(entry.path().string()).starts_with("MZ")) {
            files.push_back(entry.path().string());
        }
    }
    return files;
}

std::string FileNameOf(const std::string& path)
{
    return path.substr(path.rfind('\\') + 1);
}

TEST(ShippedImports, AreThoseOfTheKeptListAndTheOldestSystemHasThem)
{
    const KeptImports kept = ReadKeptImports();
    for (const std::string& file : ShippedFiles()) {
        for (const Import& import : ImportsOf(file)) {
            const auto known = kept.find(NameOf(import));
            if (known == kept.end()) {
                ADD_FAILURE() << FileNameOf(file) << ": " << NameOf(import) << " is not in the list";
            } else {
                EXPECT_LE(known->second, kOldestSystem) << FileNameOf(file) << ": " << NameOf(import);
            }
        }
    }
}

TEST(ShippedImports, TheKeptListHoldsNothingElse)
{
    KeptImports kept = ReadKeptImports();
    for (const std::string& file : ShippedFiles()) {
        for (const Import& import : ImportsOf(file)) {
            kept.erase(NameOf(import));
        }
    }
    std::vector<std::string> left;
    for (const auto& [name, version] : kept) {
        left.push_back(name);
    }
    EXPECT_THAT(left, IsEmpty()) << "no file imports these any more";
}

TEST(ShippedImports, ComeFromKnownLibrariesOfEverySystemOnly)
{
    const auto known = ReadKnownLibraries();
    EXPECT_THAT(known, testing::UnorderedElementsAre(testing::Key("5.2"), testing::Key("6.1"), testing::Key("10.0")));
    for (const std::string& file : ShippedFiles()) {
        if (LowerCase(file).ends_with(".sys")) {
            EXPECT_THAT(LibrariesOf(file), testing::IsSubsetOf({"ntoskrnl.exe"})) << FileNameOf(file);
            continue;
        }
        for (const auto& [system, libraries] : known) {
            EXPECT_THAT(LibrariesOf(file), testing::IsSubsetOf(libraries)) << FileNameOf(file) << " on " << system;
        }
    }
}

TEST(ShippedImports, AreReadFromEveryKindOfFile)
{
    std::set<std::string> names;
    for (const std::string& file : ShippedFiles()) {
        names.insert(FileNameOf(file));
    }
    for (const char* name : {"Morvix.exe", "MorvixRes.dll", "NetInst.dll", "MorvixActions.dll", "ngea62x64.sys"}) {
        EXPECT_TRUE(names.contains(name)) << name;
    }
}
} // namespace
