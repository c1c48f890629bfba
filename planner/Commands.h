#pragma once

#include <string>
#include <vector>

#include "KitOptions.h"
#include "Output.h"
#include "Planner.h"

/// The commands of morvix-kit: what the command line gives each of them, and the functions that do them. One .cpp file
/// for each command.

enum class PlanFormat
{
    Text,
    Json,   ///< one document
    NdJson, ///< a document of one machine a line
    Trace,
};

struct PlanCommand
{
    KitOptions kit;
    PlanWish wish;
    std::vector<std::string> machines;
    PlanFormat format = PlanFormat::Text;
    bool requireDriver = false;
    bool findings = false; ///< the JSON names the findings in the kit that concern each device
    OutputOptions output;
};

struct ExplainCommand
{
    KitOptions kit;
    PlanWish wish;
    std::string machine;
    std::string device;
    std::string whyNot; ///< an INF; empty: the whole way is explained
    OutputOptions output;
};

struct DiffCommand
{
    KitOptions oldKit;
    KitOptions newKit;
    PlanWish wish;
    std::vector<std::string> machines;
    bool json = false;
    OutputOptions output;
};

struct ReportCommand
{
    KitOptions kit;
    KitOptions oldKit; ///< without a folder nothing is compared
    PlanWish wish;
    std::vector<std::string> machines;
    OutputOptions output;
};

enum class CheckReader
{
    Windows,
    Wine,
    Both, ///< as Windows reads, and where Wine would read differently
};

enum class CheckFormat
{
    Text,
    Json,
    Sarif,
};

struct CheckCommand
{
    KitOptions kit;
    std::vector<std::string> systems; ///< sections of Morvix.ini; empty: see CheckWish
    CheckReader reader = CheckReader::Both;
    CheckFormat format = CheckFormat::Text;
    std::string baseline;      ///< file of accepted findings; empty for none
    std::string writeBaseline; ///< where to write the findings as accepted ones; empty for nowhere
    Severity failOn = Severity::Error;
    OutputOptions output;
};

struct RulesCommand
{
    std::string id; ///< empty: all rules are listed
    bool markdown = false;
    OutputOptions output;
};

[[nodiscard]] ExitCode Run(const PlanCommand& command);
[[nodiscard]] ExitCode Run(const ExplainCommand& command);
[[nodiscard]] ExitCode Run(const DiffCommand& command);
[[nodiscard]] ExitCode Run(const ReportCommand& command);
[[nodiscard]] ExitCode Run(const CheckCommand& command);
[[nodiscard]] ExitCode Run(const RulesCommand& command);
