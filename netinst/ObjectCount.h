#pragma once

#include <atomic>
#include <cstdint>

/// The reference count of an object of this library. A new object has one reference, its creator's.
class ObjectCount
{
public:
    /// @return the number of references, the new one included.
    int32_t Add() noexcept { return ++m_references; }
    /// @return the number of references left; at 0 the caller deletes the object.
    int32_t Drop() noexcept { return --m_references; }

private:
    std::atomic<int32_t> m_references{1};
};

/// Implements the lifetime of an object with one of the interfaces: it lives until its last reference is released.
template <class Object, class Interface>
class Counted : public Interface
{
public:
    /// @return the number of references left; at 0 the object was deleted.
    int32_t __stdcall Release() override
    {
        const int32_t left = m_count.Drop();
        if (left == 0) {
            delete static_cast<Object*>(this);
        }
        return left;
    }

protected:
    Counted() = default;
    ~Counted() = default;

    /// @return the number of references, the new one included.
    int32_t AddReference() noexcept { return m_count.Add(); }

private:
    ObjectCount m_count;
};
