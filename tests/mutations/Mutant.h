#pragma once

// Put in front of every source that mutate.py has put faults into: one build holds them all, and the environment
// variable MORVIX_MUTANT chooses the one that is alive.
#include <cstdlib>
#include <type_traits>

#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wextra"
#pragma GCC diagnostic ignored "-Wsign-compare"
#pragma GCC diagnostic ignored "-Wunused-function"

inline bool MutantLives(int number)
{
    static const int chosen = [] {
        const char* const text = std::getenv("MORVIX_MUTANT");
        return text == nullptr ? 0 : std::atoi(text);
    }();
    return chosen == number;
}

// What the compiler works out itself has no faults.
constexpr bool MutantIs(int number)
{
    return !std::is_constant_evaluated() && MutantLives(number);
}
