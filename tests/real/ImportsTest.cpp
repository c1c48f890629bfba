// Every function that a shipped file imports is exported by the module of this system, as the loader will look for it.

#include <gmock/gmock.h>

#include <filesystem>
#include <map>
#include <set>

#include "Bundle.h"
#include "Environment.h"
#include "Handles.h"
#include "ImportTable.h"
#include "MsiPackage.h"
#include "NativeMachine.h"
#include "ProcessorRule.h"
#include "ScratchDirectory.h"

namespace {
/// The modules that files import from, as this system has them. They are only read: none of their code runs.
class SystemModules
{
public:
    [[nodiscard]] bool Exports(const Import& import)
    {
        UniqueLibrary& module = m_modules[import.module];
        if (!module) {
            module.reset(LoadLibraryExA((SystemDirectory() + "\\" + import.module).c_str(), nullptr,
                                        DONT_RESOLVE_DLL_REFERENCES));
        }
        const bool byNumber = import.name.starts_with('#');
        const auto* name = byNumber ? MAKEINTRESOURCEA(std::stoul(import.name.substr(1))) : import.name.c_str();
        return module && GetProcAddress(module.get(), name) != nullptr;
    }

private:
    std::map<std::string, UniqueLibrary> m_modules;
};

void ExpectExported(const std::string& file)
{
    SystemModules modules;
    const std::vector<Import> imports = ImportsOf(file);
    for (const Import& import : imports) {
        EXPECT_TRUE(modules.Exports(import)) << file << ": " << import.module << " lacks " << import.name;
    }
    const std::string name = file.substr(file.rfind('\\') + 1);
    testing::Test::RecordProperty(name, static_cast<int>(imports.size()));
}

/// Expects it of every file below the shippable folder whose name ends so.
std::set<std::string> ExpectExportedForAll(const std::set<std::string>& extensions)
{
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(DistFolder())) {
        if (extensions.contains(entry.path().extension().string())) {
            names.insert(entry.path().filename().string());
            ExpectExported(entry.path().string());
        }
    }
    return names;
}
} // namespace

TEST(Imports, OfTheProgramAndItsLibrariesAreExportedHere)
{
    const std::set<std::string> files = ExpectExportedForAll({".exe", ".dll"});
    EXPECT_THAT(files, testing::IsSupersetOf({"Morvix.exe", "MorvixRes.dll", "NetInst.dll"}));
}

TEST(Imports, OfTheDriversAreExportedByTheKernelHere)
{
    if (const auto why = WhyNoX64Machine(NativeMachine())) {
        GTEST_SKIP() << NotHere(*why);
    }
    EXPECT_FALSE(ExpectExportedForAll({".sys"}).empty());
}

TEST(Imports, OfThePackagesStepsAreExportedHere)
{
    const ScratchDirectory directory;
    for (const char* package : {"morvix-old.msi", "morvix-new.msi"}) {
        SCOPED_TRACE(package);
        WriteFileBytes(directory.At("MorvixActions.dll"), MsiPackage(PackagePath(package)).ActionLibrary());
        EXPECT_FALSE(ImportsOf(directory.At("MorvixActions.dll")).empty());
        ExpectExported(directory.At("MorvixActions.dll"));
    }
}
