#include <cstdio>
#include <exception>
#include <variant>

#include "CommandLine.h"
#include "Printable.h"

namespace {
ExitCode Run(const PrintedAnswer& answer)
{
    if (answer.code == ExitCode::Usage) {
        static_cast<void>(std::fprintf(stderr, "morvix-kit: %s\n", Printable(answer.text).c_str()));
    } else {
        std::fputs(answer.text.c_str(), stdout);
    }
    return answer.code;
}
} // namespace

int main(int argc, char** argv)
{
    try {
        return static_cast<int>(
            std::visit([](const auto& request) { return Run(request); }, ParseCommandLine(argc, argv)));
    } catch (const std::exception& error) {
        static_cast<void>(std::fprintf(stderr, "morvix-kit: the command cannot be done: %s\n", error.what()));
        return static_cast<int>(ExitCode::Usage);
    }
}
