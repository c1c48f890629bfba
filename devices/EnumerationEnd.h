#pragma once

#include <cstdint>

/// Tells when the walk over a registry key's sub-keys is over. The regular end is "no more items". Any other error
/// leaves its index without a name, and the caller decides whether that is skipped or treated like an empty name; the
/// walk goes on with the next one. A key that keeps answering with errors, such as one that was deleted during the
/// walk, would however never come to its regular end, so a thousand errors without a single name between them end the
/// walk as well.
class EnumerationEnd
{
public:
    static constexpr uint32_t kMaxErrorsInARow = 1000;

    /// Takes the status of the next enumeration call (0 for a name, otherwise the platform's error).
    /// @return true when the walk is over; false when it goes on: with a name for status 0, otherwise as the caller
    ///         treats an index without one.
    [[nodiscard]] constexpr bool ReachedWith(int32_t status)
    {
        constexpr int32_t kSuccess = 0;
        constexpr int32_t kNoMoreItems = 259;
        if (status == kNoMoreItems) {
            return true;
        }
        m_errorsInARow = status == kSuccess ? 0 : m_errorsInARow + 1;
        return m_errorsInARow > kMaxErrorsInARow;
    }

private:
    uint32_t m_errorsInARow = 0;
};
