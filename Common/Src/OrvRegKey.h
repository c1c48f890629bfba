#pragma once

#include <windows.h>

#include <memory>
#include <vector>

#include "Handles.h"
#include "OrvString.h"

/// How COrvRegKey opens a key, and how long a key lasts that it creates.
inline constexpr bool kForReading = false;
inline constexpr bool kForWriting = true;
inline constexpr bool kPermanent = false;

/// Owner of one open registry key. Operations return true or false and store the platform's status for LastResult; none
/// throws on a registry error. Keys are opened for reading (KEY_READ) or for reading and writing (KEY_READ |
/// KEY_WRITE), never with more.
class COrvRegKey
{
public:
    COrvRegKey() = default;
    /// Takes over an open key.
    explicit COrvRegKey(HKEY key);
    /// Copies nothing: the new object is closed. So a container or a return value never creates a second owner of the
    /// handle.
    COrvRegKey(const COrvRegKey& other);
    /// Takes over an open key and keeps the path. A key that was open before is not closed: the caller closes first.
    /// Assigning the handle that the object holds already changes nothing.
    COrvRegKey& operator=(HKEY key);
    /// Copies everything; both objects then hold the same handle. They share its ownership: the key is closed once, by
    /// the last of them. (With two plain owners the second close would hit whatever key has the handle's number by
    /// then.) The key that this object held before is closed, unless another object shares it.
    COrvRegKey& operator=(const COrvRegKey& other) = default;
    virtual ~COrvRegKey();

    [[nodiscard]] HKEY GetHKey() const { return m_hKey; }
    /// Win32 status of the last call that stored one, 0 for success.
    [[nodiscard]] long LastResult() const { return m_lLastResult; }
    /// Full path of the key, root name first. It follows opens below one of the predefined roots only: an open below
    /// another key does not change it.
    [[nodiscard]] const COrvString& KeyPath() const { return m_strKeyPath; }
    void Close();
    void ResetEnumeration() { m_dwEnumIndex = 0; }

    /// Opens a key, closing the one that is open.
    /// @param root    A predefined root or an open key.
    /// @param write   Access for reading and writing, else for reading.
    bool Open(HKEY root, const COrvString& subKey, bool write);
    /// Opens a key, creating it when it is missing.
    /// @param isVolatile  A key that is created lives until the system stops.
    bool Create(HKEY root, const COrvString& subKey, bool write, bool isVolatile);
    /// @return true when a key of this name below this one can be opened for reading. LastResult is unchanged.
    [[nodiscard]] bool SubKeyExists(const COrvString& name) const;

    /// Reads a number. True for a stored REG_DWORD only; `value` may be overwritten by up to 4 bytes of another type.
    bool GetValue(const COrvString& name, DWORD& value);
    /// Reads the text of a value of any type, up to its first NUL; more than 512 bytes are a failure. `value` is empty
    /// after a failure.
    bool GetValue(const COrvString& name, COrvString& value);
    /// Reads raw bytes. `size` is the room in `data` and receives the length of the value.
    bool GetValue(const COrvString& name, BYTE* data, DWORD& size);
    /// Reads a list of texts. Any type is read as one; empty texts are dropped. `list` is empty after a failure.
    bool GetValue(const COrvString& name, std::vector<COrvString>& list);

    /// Writes a REG_DWORD.
    bool SetValue(const COrvString& name, DWORD value);
    /// Writes a REG_EXPAND_SZ when `expand` is true, else a REG_SZ.
    bool SetValue(const COrvString& name, const COrvString& value, bool expand = false);
    /// Writes `size` bytes as REG_BINARY.
    bool SetValue(const COrvString& name, const BYTE* data, DWORD size);
    /// Writes a REG_MULTI_SZ. An empty text in the list would end it early for readers.
    bool SetValue(const COrvString& name, std::vector<COrvString> list);

    /// @return true when the value is deleted, and also when no key is open.
    bool DeleteValue(const COrvString& name);
    /// @return the stored type, or REG_NONE when it cannot be read.
    DWORD GetRegType(const COrvString& name);

    /// The next sub-key's name. Both enumerations share one index, so interleaving them skips items. After the last
    /// item the result is false, the status 259, and the next call starts over; any other failure skips an item.
    bool EnumSubKey(COrvString& name);
    /// The next value's name.
    bool EnumValue(COrvString& name);

    /// Deletes a key below this one with everything below it. It stops at the first failure; what was deleted so far
    /// stays deleted. LastResult is unchanged.
    bool DeleteSubKey(const char* name);
    /// Deletes a key without sub-keys. LastResult is unchanged.
    /// @return the platform's status.
    unsigned long RemoveSubKey(const char* name) const;
    /// Writes the key's changes to disk. LastResult is unchanged.
    /// @return the platform's status.
    long FlushKey() const;

    // Lists of texts. Whole texts are compared ignoring letter case, multibyte-aware.

    /// Appends a text unless the list holds it. A list that cannot be read counts as empty.
    bool AddValueToMultiString(const COrvString& name, const COrvString& value);
    /// Removes every equal text. True when there is nothing to remove, also when the list cannot be read. The value
    /// itself stays, even with an empty list.
    bool RemoveValueFromMultiString(const COrvString& name, const COrvString& value);
    [[nodiscard]] bool IsValueInMultiString(const COrvString& name, const COrvString& value);
    /// Finds a text that contains `value`, ignoring letter case.
    /// @param match  Receives the first such text as stored; unchanged when there is none.
    [[nodiscard]] bool IsSubStringValueInMultiString(const COrvString& name, const COrvString& value,
                                                     COrvString& match);

private:
    void Init();
    void Store(HKEY key);
    void CloseHandleOnly();

    HKEY m_hKey = nullptr;
    bool m_bOpen = false;
    LONG m_lLastResult = 0;
    DWORD m_dwEnumIndex = 0;
    COrvString m_strKeyPath;
    // Closes m_hKey when the last object that shares it lets go.
    std::shared_ptr<UniqueRegKey> m_owner;
};
