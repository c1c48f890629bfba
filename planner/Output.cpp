#include "Output.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "Printable.h"

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#else
#include <unistd.h>
#endif

namespace {
constexpr std::size_t kFewMachines = 50;

bool IsTerminal(std::FILE* file)
{
#ifdef _WIN32
    return _isatty(_fileno(file)) != 0;
#else
    return isatty(fileno(file)) != 0;
#endif
}

/// Data has the same bytes everywhere.
std::FILE* StandardOutput()
{
#ifdef _WIN32
    static_cast<void>(_setmode(_fileno(stdout), _O_BINARY));
#endif
    return stdout;
}

bool IsSet(const char* name)
{
    const char* const value = std::getenv(name);
    return value != nullptr && *value != '\0';
}

/// Colours are for terminals that understand them; older consoles of Windows do not.
bool TerminalHasColours()
{
#ifdef _WIN32
    return IsSet("WT_SESSION");
#else
    const char* const terminal = std::getenv("TERM");
    return terminal != nullptr && std::strcmp(terminal, "dumb") != 0;
#endif
}

bool WantsColours(const OutputOptions& options)
{
    return options.file.empty() && !IsSet("NO_COLOR") && IsTerminal(stdout) && TerminalHasColours();
}
} // namespace

void Output::FileCloser::operator()(std::FILE* file) const noexcept
{
    if (file != stdout) {
        std::fclose(file);
    }
}

Output::Output(const OutputOptions& options)
    : m_options(options), m_style(WantsColours(options)), m_showsProgress(!options.quiet && IsTerminal(stderr))
{
}

bool Output::Open(const std::vector<std::string>& inputs)
{
    if (m_options.file.empty()) {
        m_data.reset(StandardOutput());
        return true;
    }
    const auto isOutput = [this](const std::string& input) {
        std::error_code error;
        return std::filesystem::is_regular_file(input, error) &&
               std::filesystem::equivalent(input, m_options.file, error);
    };
    if (std::ranges::any_of(inputs, isOutput)) {
        Complain(Printable(m_options.file) + ": is also read, and would be lost; name another file with --output");
        return false;
    }
    m_data.reset(std::fopen(m_options.file.c_str(), "wb"));
    if (m_data == nullptr) {
        const int error = errno;
        Complain(Printable(m_options.file) + ": cannot be written (" + std::strerror(error) +
                 "); name another file with --output");
    }
    return m_data != nullptr;
}

Output::~Output()
{
    ClearProgress();
}

void Output::Write(std::string_view data)
{
    ClearProgress();
    if (!m_failed && std::fwrite(data.data(), 1, data.size(), m_data.get()) != data.size()) {
        m_failed = true;
        Complain(std::string("the output cannot be written: ") + std::strerror(errno));
    }
}

void Output::Say(const Diagnostic& diagnostic)
{
    if (diagnostic.severity == Severity::Error) {
        m_inputFailed = true;
    } else if (m_options.quiet) {
        return;
    }
    ClearProgress();
    const std::string line = "morvix-kit: " + TextOf(diagnostic) + "\n";
    std::fputs(line.c_str(), stderr);
}

void Output::Say(const std::vector<Diagnostic>& diagnostics)
{
    for (const Diagnostic& diagnostic : diagnostics) {
        Say(diagnostic);
    }
}

void Output::Complain(const std::string& text)
{
    ClearProgress();
    std::fputs(("morvix-kit: " + text + "\n").c_str(), stderr);
}

void Output::ShowProgress(std::size_t done, std::size_t all)
{
    const std::size_t percent = done * 100 / all;
    if (!m_showsProgress || all < kFewMachines || (m_progressIsShown && percent == m_lastPercent)) {
        return;
    }
    static_cast<void>(std::fprintf(stderr, "\r%zu of %zu machines", done, all));
    std::fflush(stderr);
    m_progressIsShown = true;
    m_lastPercent = percent;
}

void Output::ClearProgress()
{
    if (m_progressIsShown) {
        std::fputs("\r\x1b[K", stderr);
        m_progressIsShown = false;
    }
}

ExitCode Output::Finish(ExitCode code)
{
    ClearProgress();
    if (!m_failed && m_data != nullptr && std::fflush(m_data.get()) != 0) {
        m_failed = true;
        Complain(std::string("the output cannot be written: ") + std::strerror(errno));
    }
    if (m_failed) {
        return ExitCode::Usage;
    }
    return m_inputFailed && code != ExitCode::Usage ? ExitCode::Unreadable : code;
}
