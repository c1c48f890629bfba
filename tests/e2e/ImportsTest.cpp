// What the shipped files import. If the oldest system lacks a name, it refuses the file before any of it runs; if a
// library is not a known one, a file beside the program can take its place. The kept list is imports.txt, beside this
// program.

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

/// The kept list.
struct KeptImports
{
    std::map<std::string, std::string> origins;               ///< where each library is taken from
    std::map<std::string, std::pair<int, int>> firstVersions; ///< of each name, as "library!name"
};

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
        std::string second;
        fields >> second;
        std::string name;
        if (!(fields >> name)) {
            kept.origins[library] = second;
            continue;
        }
        std::pair<int, int> version{};
        char point = 0;
        std::istringstream(name) >> version.first >> point >> version.second;
        if (point != '.' || !kept.firstVersions.emplace(library + "!" + second, version).second) {
            throw std::runtime_error("imports.txt: " + line);
        }
    }
    return kept;
}

/// Every program, library and driver that is shipped, by its path; the package's action library is inside the package.
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
            const auto known = kept.firstVersions.find(NameOf(import));
            if (known == kept.firstVersions.end()) {
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
            kept.firstVersions.erase(NameOf(import));
            kept.origins.erase(LowerCase(import.module));
        }
    }
    std::vector<std::string> left;
    for (const auto& [name, version] : kept.firstVersions) {
        left.push_back(name);
    }
    for (const auto& [library, origin] : kept.origins) {
        left.push_back(library);
    }
    EXPECT_THAT(left, IsEmpty()) << "no file imports these any more";
}

TEST(ShippedImports, ComeFromLibrariesThatNoFileBesideTheProgramCanReplace)
{
    const KeptImports kept = ReadKeptImports();
    for (const std::string& file : ShippedFiles()) {
        std::set<std::string> libraries;
        for (const Import& import : ImportsOf(file)) {
            libraries.insert(LowerCase(import.module));
        }
        const bool isDriver = LowerCase(file).ends_with(".sys");
        for (const std::string& library : libraries) {
            const auto known = kept.origins.find(library);
            ASSERT_NE(known, kept.origins.end()) << FileNameOf(file) << ": " << library << " is not in the list";
            const std::string& origin = known->second;
            EXPECT_EQ(origin == "kernel", isDriver) << FileNameOf(file) << ": " << library;
            if (origin == "manifest") {
                EXPECT_TRUE(ReadFileBytes(file).find("Microsoft.Windows.Common-Controls") != std::string::npos)
                    << FileNameOf(file) << ": its manifest does not say where " << library << " is";
            } else if (origin == "loaded") {
                EXPECT_EQ(FileNameOf(file), "NetInst.dll") << "nobody loads " << library << " before it";
            } else if (!isDriver) {
                EXPECT_EQ(origin, "known") << FileNameOf(file) << ": " << library;
            }
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
