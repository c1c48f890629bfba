#pragma once

// Included by every source that mutate.py has put faults into: one build holds them all, and the environment variable
// MORVIX_MUTANT chooses the one that takes effect.
#include <cstdlib>
#include <type_traits>

inline bool MutantWasChosen(int number)
{
    static const int chosen = [] {
        const char* const text = std::getenv("MORVIX_MUTANT");
        return text == nullptr ? 0 : std::atoi(text);
    }();
    return chosen == number;
}

// What the compiler evaluates has no faults.
constexpr bool MutantIs(int number)
{
    return !std::is_constant_evaluated() && MutantWasChosen(number);
}
