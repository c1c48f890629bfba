#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

// Starts programs in turn and prints for each run one line of tab-separated fields:
//   program number  milliseconds from start to exit  milliseconds of processor time  peak memory in kB
// Usage: bench_measure ROUNDS -- PROGRAM [ARGUMENT...] [-- PROGRAM [ARGUMENT...]]...
// What the programs print is dropped. A program that fails ends the measurement.

namespace {
using Clock = std::chrono::steady_clock;
using Command = std::vector<char*>;

double Milliseconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
}

[[noreturn]] void Become(const Command& command)
{
    const int nothing = open("/dev/null", O_RDWR);
    for (const int stream : {0, 1, 2}) {
        dup2(nothing, stream);
    }
    execvp(command[0], command.data());
    _exit(127);
}

bool Measure(std::size_t number, const Command& command)
{
    const auto start = Clock::now();
    const pid_t child = fork();
    if (child == 0) {
        Become(command);
    }
    int status = -1;
    rusage usage{};
    if (child < 0 || wait4(child, &status, 0, &usage) != child || status != 0) {
        std::fprintf(stderr, "%s ended with status %d\n", command[0], status);
        return false;
    }
    const std::chrono::duration<double, std::milli> taken = Clock::now() - start;
    std::printf("%zu\t%.2f\t%.2f\t%ld\n", number, taken.count(),
                Milliseconds(usage.ru_utime) + Milliseconds(usage.ru_stime), usage.ru_maxrss);
    return true;
}
} // namespace

int main(int argc, char** argv)
{
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 0;
    std::vector<Command> commands;
    for (int i = 2; i < argc; ++i) {
        if (std::strcmp(argv[i], "--") == 0) {
            commands.emplace_back();
        } else if (!commands.empty()) {
            commands.back().push_back(argv[i]);
        }
    }
    for (Command& command : commands) {
        if (command.empty()) {
            return 2;
        }
        command.push_back(nullptr);
    }
    if (rounds < 1 || commands.empty()) {
        return 2;
    }
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < commands.size(); ++i) {
            if (!Measure(i, commands[i])) {
                return 1;
            }
        }
    }
    return 0;
}
