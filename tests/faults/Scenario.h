#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "FaultedProgram.h"
#include "RunFolder.h"

/// A machine with everything that one way through the program needs. The machine is set up once; before each run only
/// the leftovers of the last one are removed.
class Scenario
{
public:
    virtual ~Scenario();
    Scenario(const Scenario&) = delete;
    Scenario& operator=(const Scenario&) = delete;

    /// One run from a clean start.
    Outcome Run(const Fault& fault = {}, bool noteMemory = false);

protected:
    /// @param arguments    Command line after the program's name.
    /// @param interactive  Whether somebody presses OK and the finish button.
    Scenario(std::string arguments, bool interactive = false);

    RunFolder& Folder() { return m_folder; }
    void WriteInf(const std::string& name, const std::string& content) { m_folder.Write("Inf\\" + name, content); }

    /// Removes what a run leaves besides the results and the uninstall file, and restores what it removes.
    virtual void Reset() {}
    /// What a run left beside these.
    virtual std::vector<std::string> State() { return {}; }

private:
    struct Cleaning
    {
        Cleaning();
        ~Cleaning();
    };
    // First member: the machine is clean before anything else is made and after everything else is gone.
    Cleaning m_cleaning;
    RunFolder m_folder;
    FaultedProgram m_program;
    Start m_start;
};

struct ScenarioRow
{
    const char* name;
    std::unique_ptr<Scenario> (*make)();
    /// Calls that an earlier scenario makes too and that end differently in this one, as Describe() puts them.
    std::vector<std::string> again;
};
[[nodiscard]] std::span<const ScenarioRow> AllScenarios();

/// @return everything below a registry key of this machine, one line for each value.
[[nodiscard]] std::vector<std::string> RegistryContent(const std::string& key);
