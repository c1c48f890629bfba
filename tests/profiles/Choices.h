#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

/// Choices that are the same on every machine: the standard's distributions are not.
class Choices
{
public:
    explicit Choices(uint32_t seed) : m_engine(seed) {}

    /// @return a number from 0 to `count` - 1.
    std::size_t Below(std::size_t count) { return m_engine() % count; }
    /// @return true once in `times`.
    bool OnceIn(std::size_t times) { return Below(times) == 0; }
    /// @param things  An array, a span or a text.
    template <class Things>
    const auto& OneOf(const Things& things)
    {
        return things[Below(things.size())];
    }

private:
    std::mt19937 m_engine;
};
