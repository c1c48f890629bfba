#pragma once

#include <string>
#include <vector>

#include "EmulatedSystem.h"
#include "KitAdapters.h"

// The three sides of the matrix: the system, the options and what the machine has. The rows are facts about the inputs;
// what a run makes of them is in ExpectedRun.h.

/// How a run works on a family of systems.
enum class Flow
{
    Refused,   ///< the system cannot be served: the run ends before its dialog
    WindowsNT, ///< scan, device pass, scan
    WindowsMe, ///< device pass, staging, classification
    Windows98, ///< the same, and the legacy helper
};

struct MatrixSystem
{
    const char* name;
    SystemVersion version;
    const char* family; ///< that the system prober names, empty for none
    Flow flow;
    /// Text that refuses the system; 0 where the flow is another one.
    unsigned refusal;
    /// Drivers can exist for this system. The fields below say which; they are of no consequence otherwise.
    bool hasDrivers;
    const char* detection;    ///< trace line
    const char* section;      ///< of the setup INI
    const char* modelSection; ///< of the kit's INF files
    KitSystem kit;
};

/// What the options of a command line come to.
enum class Mode
{
    Interactive,
    Silent,
    SilentRestart,
    SilentNoRestart,
    Installer, ///< a step of a Windows Installer package
    SilentInstaller,
    Oem, ///< the installer step that shows its result for a while
    SilentOem,
    Help,
};

struct MatrixOptions
{
    const char* name;
    const char* text; ///< as typed
    Mode mode;
    bool forceInfScan;
    bool anyOption; ///< at least one option is on the line, known or not
};

/// What the machine and the folder have for the run.
enum class Machine
{
    Match,            ///< an adapter that the kit serves
    NoMatch,          ///< an adapter that no INF file lists
    InterfaceRefuses, ///< as Match, but the driver-install interface answers that it could not install
    FilesMissing,     ///< as Match, but the kit has lost its driver files; an older driver's files are on the system
    NoAdapter,
};

struct MatrixRow
{
    const MatrixSystem* system;
    const MatrixOptions* options;
    Machine machine;
};

extern const std::vector<MatrixSystem> kMatrixSystems;
extern const std::vector<MatrixOptions> kMatrixOptions;
extern const std::vector<Machine> kMachines;

[[nodiscard]] const char* NameOf(Machine machine);
/// @return System_options_Machine, which is the row's test name too.
[[nodiscard]] std::string NameOf(const MatrixRow& row);

/// Finds a row by its names. Throws std::runtime_error when there is no such row.
[[nodiscard]] MatrixRow RowOf(const std::string& system, const std::string& options, Machine machine);

/// Every row.
[[nodiscard]] std::vector<MatrixRow> AllRows();

/// Some of them, always the same: every system with every mode, every system with every machine, and every set of
/// options with every machine.
[[nodiscard]] std::vector<MatrixRow> CoveringRows();
