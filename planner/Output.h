#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Machine.h"
#include "TextStyle.h"

/// How a command ends.
enum class ExitCode
{
    Clean = 0,
    Findings = 1,   ///< something that the user asked to be warned about
    Usage = 2,      ///< the command could not be done as it was given
    Unreadable = 3, ///< some input could not be read; the rest was answered
};

struct OutputOptions
{
    std::string file; ///< empty for standard output
    bool quiet = false;
};

/// What a command prints: data, and what goes to standard error beside it.
class Output
{
public:
    explicit Output(const OutputOptions& options);
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    /// Opens the output. A file loses its content here, so this comes after all other reasons to give up.
    /// @param inputs  The files that the command reads; the output must be none of them.
    /// @return false when the file cannot be opened; the reason is printed.
    [[nodiscard]] bool Open(const std::vector<std::string>& inputs = {});

    /// The output must be open.
    void Write(std::string_view data);

    /// Says something about an input. Notes and warnings are left out when the user wants quiet.
    void Say(const Diagnostic& diagnostic);
    void Say(const std::vector<Diagnostic>& diagnostics);
    /// Says why a command cannot be done.
    void Complain(const std::string& text);

    /// Shows on a terminal how far a long work is.
    void ShowProgress(std::size_t done, std::size_t all);

    /// Ends the output.
    /// @return the exit code: `code`, or Usage when data could not be written, or Unreadable after an error about an
    /// input.
    [[nodiscard]] ExitCode Finish(ExitCode code);

    [[nodiscard]] const TextStyle& Style() const { return m_style; }

private:
    struct FileCloser
    {
        void operator()(std::FILE* file) const noexcept;
    };
    void ClearProgress();

    OutputOptions m_options;
    std::unique_ptr<std::FILE, FileCloser> m_data;
    TextStyle m_style;
    bool m_showsProgress;
    bool m_progressIsShown = false;
    std::size_t m_lastPercent = 0;
    bool m_failed = false;
    bool m_inputFailed = false;
};
