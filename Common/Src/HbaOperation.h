#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "EntryPoints.h"
#include "HbaApi.h"
#include "HbaMutex.h"

inline constexpr size_t kHbaNameBytes = 260;

/// Names go to the interface library as 8-bit text, converted with the system's ANSI code page and cut after 259 bytes.
/// @return false for a null name or one that cannot be converted.
[[nodiscard]] bool HbaNarrowName(const wchar_t* name, std::array<char, kHbaNameBytes>& narrow);

enum class HbaEntry
{
    Found,
    Missing,
    NameNotConverted,
};

/// Looks up an entry point of the interface library.
/// @param library  May be null: then nothing is found.
/// @param entry    Receives the entry point, null unless found. `Fn` must be its real type.
template <class Fn>
[[nodiscard]] HbaEntry FindHbaEntry(HMODULE library, const wchar_t* name, Fn& entry)
{
    entry = nullptr;
    std::array<char, kHbaNameBytes> narrow{};
    if (!HbaNarrowName(name, narrow)) {
        return HbaEntry::NameNotConverted;
    }
    if (library == nullptr) {
        // To the platform, a null module is the program itself.
        SetLastError(ERROR_INVALID_HANDLE);
        return HbaEntry::Missing;
    }
    entry = FindEntry<Fn>(library, narrow.data());
    return entry == nullptr ? HbaEntry::Missing : HbaEntry::Found;
}

/// One operation of CHBAAPIInt: traces "Entering CHBAAPIInt::name", and "Exiting CHBAAPIInt::name" after the mutex is
/// released and before it is closed.
class CHBAAPIOperation
{
public:
    /// @param name  Must outlive the object.
    explicit CHBAAPIOperation(const char* name);
    ~CHBAAPIOperation();
    CHBAAPIOperation(const CHBAAPIOperation&) = delete;
    CHBAAPIOperation& operator=(const CHBAAPIOperation&) = delete;

    /// Locks the mutex until the end of the operation; traces a failure.
    [[nodiscard]] bool TakeMutex();

    /// @return the table's entry, or null with a trace when the table is not filled or this slot is empty.
    template <class Fn>
    [[nodiscard]] Fn Slot(bool entryPointsInited, Fn entry) const
    {
        if (!entryPointsInited) {
            TraceTableNotInited();
            return nullptr;
        }
        if (entry == nullptr) {
            TraceFailure("table entry is null");
        }
        return entry;
    }

    /// @return the library's entry point, or null with a trace when it has none of this name.
    template <class Fn>
    [[nodiscard]] Fn Entry(HMODULE library, const wchar_t* name) const
    {
        Fn entry = nullptr;
        switch (FindHbaEntry(library, name, entry)) {
            case HbaEntry::Found:
                break;
            case HbaEntry::Missing:
                TraceFailure("GetProcAddress failed");
                break;
            case HbaEntry::NameNotConverted:
                TraceFailure("ConvertTCHARToChar failed");
                break;
        }
        return entry;
    }

    /// @return true for HBA_STATUS_OK; traces any other status.
    [[nodiscard]] bool Succeeded(HBA_STATUS status) const;

    /// Lets the library fill a record: calls `entry(arguments..., &record)`.
    /// @param record  Written only on success.
    /// @param entry   May be null, which is a failure that has been traced already.
    template <class Record, class Fn, class... Arguments>
    [[nodiscard]] bool Ask(Record& record, Fn entry, Arguments... arguments) const
    {
        Record answer{};
        if (entry == nullptr || !Succeeded(entry(arguments..., &answer))) {
            return false;
        }
        record = answer;
        return true;
    }

    /// Lets the library fill a list: asks for the number of entries, allocates and asks again.
    /// @param list   Written only on success.
    /// @param entry  May be null, which is a failure that has been traced already.
    template <class Item>
    [[nodiscard]] bool AskList(std::vector<Item>& list, NordaGetListFn<Item> entry, HBA_HANDLE handle) const
    {
        HBA_UINT32 count = 0;
        if (!AskCount(count, entry, handle)) {
            return false;
        }
        std::vector<Item> answer(count);
        if (count != 0 && !Succeeded(entry(handle, answer.data(), &count))) {
            return false;
        }
        // A list that has become shorter in between ends earlier; one that has become longer is cut.
        answer.resize(std::min(answer.size(), static_cast<size_t>(count)));
        list = std::move(answer);
        return true;
    }

    /// Asks for the number of entries alone.
    /// @param count  Written only on success.
    /// @return false, also for an impossible number.
    template <class Item>
    [[nodiscard]] bool AskCount(HBA_UINT32& count, NordaGetListFn<Item> entry, HBA_HANDLE handle) const
    {
        HBA_UINT32 answer = 0;
        if (entry == nullptr) {
            return false;
        }
        const HBA_STATUS status = entry(handle, nullptr, &answer);
        // A library may answer "more data" for a list without room.
        if (status != HBA_STATUS_ERROR_MORE_DATA && !Succeeded(status)) {
            return false;
        }
        if (answer > kMaximumListEntries) {
            return Refuse("got a list that is too long");
        }
        count = answer;
        return true;
    }

    /// @return false, after a trace that says what is wrong with the caller's arguments.
    [[nodiscard]] bool Refuse(const char* reason) const;

private:
    /// Far more ports or networks than one adapter sees; a larger number is an error.
    static constexpr HBA_UINT32 kMaximumListEntries = 0x10000;

    void TraceTableNotInited() const;
    void TraceFailure(const char* what) const;

    const char* m_name;
    std::optional<CHBAAPIMutex> m_mutex;
};
