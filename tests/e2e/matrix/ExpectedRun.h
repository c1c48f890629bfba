#pragma once

#include <string>
#include <vector>

#include "MatrixRow.h"

// What the rules expect of a run. Written independently of the program: nothing is shared with it.

/// The adapter that the kit serves, by an INF of the PCI Express family that lists its whole name.
inline constexpr char kServedDevice[] = "VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A&REV_01";
/// An adapter of the maker's that no INF lists.
inline constexpr char kUnknownDevice[] = "VEN_5D1A&DEV_7FFF&SUBSYS_00015D1A&REV_01";
/// The INF that the setup INI excludes. It lists the served adapter, belongs to the 10 gigabit family and lies in a
/// directory that is searched before the kit's.
inline constexpr char kSpareInf[] = "nxgaspare.inf";

/// How a run ends.
enum class End
{
    Help,           ///< before anything is done
    Refusal,        ///< before the dialog
    ByItself,       ///< the dialog closes when the work is done
    FinishButton,   ///< the dialog waits for the finish button
    RestartButtons, ///< the dialog counts down to a restart
};

/// A driver of the matched INF.
struct ExpectedDriver
{
    std::string inf;          ///< path in the run folder
    std::string service;      ///< name of the driver's service
    std::string file;         ///< name of the driver file that the INF installs
    std::string resultPrefix; ///< start of the names of the result values
};

/// A driver file and the place in the run folder of the kit file that it is a copy of.
struct ExpectedFile
{
    std::string name;
    std::string kitPath;
};

struct ExpectedRun
{
    int exitCode = 0;
    End end = End::ByItself;
    bool everVisible = true;              ///< a window may be seen
    std::vector<std::string> commandLine; ///< trace lines about the options
    bool asksForManagementSoftware = false;

    std::vector<unsigned> welcome; ///< texts beside the OK button; empty when nobody is asked for OK
    unsigned lastText = 0;         ///< text beside the finish button, or of the refusal; 0 for none
    bool restart = false;          ///< the system is asked to restart

    bool installRuns = false; ///< the install thread does its work
    size_t hardwareScans = 0;
    size_t directoryLookUps = 0; ///< how often the setup INI is asked for the system's directories
    size_t passes = 0;           ///< over the one adapter
    std::string detection;

    std::vector<ExpectedDriver> driver;  ///< of the matched INF; empty without a match
    bool interfaceAsked = false;         ///< the double of the driver-install interface is given the record
    bool installed = false;              ///< the adapter has the driver afterwards
    std::vector<std::string> storedInfs; ///< INF files handed to the system's store, in order

    std::vector<ExpectedFile> filesBefore; ///< driver files that are on the system from the start
    std::vector<ExpectedFile> filesAfter;  ///< those there at the end
    std::string result;                    ///< "SUCCESS", "FAILURE" or empty when none is recorded
    ExpectedFile versionFile;              ///< the file whose version a success records

    bool staged = false;     ///< the directory for staged files is made
    bool helperRuns = false; ///< the legacy helper is started
};

[[nodiscard]] ExpectedRun ExpectedOf(const MatrixRow& row);
