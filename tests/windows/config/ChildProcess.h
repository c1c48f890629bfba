#pragma once

#include <map>
#include <string>
#include <vector>

/// What the suite cannot do in its own process, because it depends on how a process starts, it does in a copy of
/// itself.

/// What a child found out: named texts, and the trace lines of what it did.
struct ChildReport
{
    std::map<std::string, std::string> values;
    std::vector<std::string> trace;

    [[nodiscard]] std::string At(const std::string& name) const
    {
        const auto found = values.find(name);
        return found == values.end() ? "<none>" : found->second;
    }
};

struct ChildOptions
{
    std::string windowsVersion = {};              ///< the version it is to be given; empty for the session's own
    std::map<std::string, std::string> libraries; ///< which form of a library it loads: "native", "builtin" or none
    std::vector<std::string> arguments = {};
    std::string ownCopyAs = {}; ///< file name of one more copy of this program beside it; empty for none
};

/// Runs a copy of this program in a directory of its own and waits for it. Throws std::runtime_error when it fails.
/// @param task  One of the tasks of RunChildTask.
[[nodiscard]] ChildReport RunChild(const std::string& task, const ChildOptions& options);

/// The child's side: does the task that the command line names and writes the report.
/// @return the process's exit code.
int RunChildTask(const std::vector<std::string>& commandLine);

/// First argument of a child's command line.
inline constexpr char kChildArgument[] = "--child";
