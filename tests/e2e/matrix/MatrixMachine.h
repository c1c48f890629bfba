#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Adapter.h"
#include "EmulatedSystem.h"
#include "ExpectedRun.h"
#include "RunFolder.h"

/// The run folders of the matrix. Runs leave them as they are, so they serve one run after the other.
class MatrixFolders
{
public:
    /// @return the folder for a machine, ready for the row's run and with an empty journal.
    RunFolder& For(const MatrixRow& row);

    /// @return what in the row's folder is not as it was made: names that came or went, and files of another size.
    [[nodiscard]] std::vector<std::string> ChangesIn(const MatrixRow& row) const;

private:
    struct Made
    {
        std::unique_ptr<RunFolder> folder;
        std::vector<std::string> content;
    };
    std::map<Machine, Made> m_folders;
};

/// A clean machine with the row's system, adapter and driver files, for the life of the object. It has a restart flag
/// and other leftovers of an earlier run.
class MatrixMachine
{
public:
    MatrixMachine(const MatrixRow& row, const ExpectedRun& expected);
    ~MatrixMachine();
    MatrixMachine(const MatrixMachine&) = delete;
    MatrixMachine& operator=(const MatrixMachine&) = delete;

    /// The simulated adapter, or null when the machine has none.
    [[nodiscard]] const Adapter* NetworkAdapter() const { return m_adapter ? &*m_adapter : nullptr; }

    /// Everything below the vendor's registry key: "[key]" for each key and "key: name (type) text" for each value.
    [[nodiscard]] static std::vector<std::string> RegistryLines();
    /// The kit's driver files on the system, in order of their names.
    [[nodiscard]] static std::vector<std::string> DriverFiles();
    /// The kit's INF files in the system's store, in order of their names.
    [[nodiscard]] static std::vector<std::string> StoredInfs();
    /// The directory in which the 9x flows look for staged files, as the registry names it now.
    [[nodiscard]] static std::string SourcePath();
    /// What that directory is when the run begins: one without files.
    [[nodiscard]] const std::string& GivenSourcePath() const { return m_source.Path(); }
    /// The program's own directory for staged files.
    [[nodiscard]] static std::string StagingFolder();

private:
    struct Cleaning
    {
        Cleaning();
        ~Cleaning();
    };
    const Cleaning m_cleaning;
    const EmulatedSystem m_system;
    const NativeLibrary m_restorePoints{"srclient"};
    const ScratchDirectory m_source;
    std::string m_sourceBefore;
    std::optional<Adapter> m_adapter;
};
