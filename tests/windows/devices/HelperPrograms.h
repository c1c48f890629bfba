#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

/// Programs that the tests need are copies of the test program itself, which knows them by their names.

/// The legacy install helper's runner: a copy of this name records each of its runs.
inline constexpr char kRundll[] = "Rundll.exe";
/// A program whose only work is one ScanForHardwareChanges; its exit code is the result.
inline constexpr char kScanner[] = "Scanner.exe";
/// A program whose only work is one UpdateDriver; its exit code is the result.
inline constexpr char kUpdater[] = "Updater.exe";
/// The iSCSI configuration tool, slow: it says that it has started, waits until it may end, and then leaves a journal.
inline constexpr char kSlowTool[] = "iscsivrf.exe";
/// Names of the events with which it says so and with which the test lets it end.
inline constexpr char kSlowToolStarted[] = "MorvixSlowToolStarted";
inline constexpr char kSlowToolMayEnd[] = "MorvixSlowToolMayEnd";

/// What UpdateDriver is asked for by kUpdater.
inline constexpr char kUpdatedInf[] = R"(C:\kit\ngea.inf)";
inline constexpr char kUpdatedId[] = R"(PCI\VEN_5D1A&DEV_0000)";

/// @return the exit code of the helper program that this process is, or no value for the test program.
[[nodiscard]] std::optional<int> RunAsHelperProgram();

/// Copies this program to `path`, whose file name is one of the names above.
void MakeHelperProgram(const std::string& path);

/// @return the file in which the program at `path` leaves its journal.
[[nodiscard]] std::string JournalOf(const std::string& path);

/// One run of the legacy helper.
struct LegacyRun
{
    std::string commandLine;
    std::string directory;
    std::string instancePath; ///< "RegPCIpath" at that time
};
/// @return the runs of the legacy helper at `path`, in order.
[[nodiscard]] std::vector<LegacyRun> LegacyRunsOf(const std::string& path);

/// @return process id and exit code of a program that has run to its end.
[[nodiscard]] std::pair<DWORD, DWORD> RunToEnd(const std::string& path);

/// How this session's programs load a library, for the life of the object. Programs that have it loaded keep it.
class LibraryLoading
{
public:
    /// @param name   Library without its extension.
    /// @param order  "native" for the library beside the program; empty when loading it is to fail, as on a system that
    ///               lacks it.
    LibraryLoading(std::string name, const std::string& order);
    ~LibraryLoading();
    LibraryLoading(const LibraryLoading&) = delete;
    LibraryLoading& operator=(const LibraryLoading&) = delete;

private:
    std::string m_name;
};
