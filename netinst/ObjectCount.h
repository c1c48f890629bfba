#pragma once

#include <atomic>
#include <cstdint>

/// The references to one object of this library. A new object has one, its creator's.
class ObjectCount
{
public:
    /// @return the number of references after this one came.
    int32_t Add() noexcept { return ++m_references; }
    /// @return the number of references left; at 0 the caller deletes the object.
    int32_t Drop() noexcept { return --m_references; }

private:
    std::atomic<int32_t> m_references{1};
};
