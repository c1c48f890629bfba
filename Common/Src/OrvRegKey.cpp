#include "OrvRegKey.h"

#include <array>
#include <utility>

namespace {
constexpr REGSAM kReadAccess = KEY_READ;
constexpr REGSAM kWriteAccess = KEY_READ | KEY_WRITE;
constexpr DWORD kSubKeyNameBytes = 256;
constexpr DWORD kValueNameBytes = 512;

REGSAM Access(bool write)
{
    return write ? kWriteAccess : kReadAccess;
}

// The name of a predefined root with a backslash, or null for any other key.
const char* RootName(HKEY root)
{
    struct Row
    {
        HKEY root;
        const char* name;
    };
    static const std::array<Row, 7> kRoots{{
        {HKEY_LOCAL_MACHINE, R"(HKEY_LOCAL_MACHINE\)"},
        {HKEY_CLASSES_ROOT, R"(HKEY_CLASSES_ROOT\)"},
        {HKEY_CURRENT_USER, R"(HKEY_CURRENT_USER\)"},
        {HKEY_USERS, R"(HKEY_USERS\)"},
        {HKEY_PERFORMANCE_DATA, R"(HKEY_PERFORMANCE_DATA\)"},
        {HKEY_CURRENT_CONFIG, R"(HKEY_CURRENT_CONFIG\)"},
        {HKEY_DYN_DATA, R"(HKEY_DYN_DATA\)"},
    }};
    for (const Row& row : kRoots) {
        if (row.root == root) {
            return row.name;
        }
    }
    return nullptr;
}
} // namespace

COrvRegKey::COrvRegKey(HKEY key)
{
    Store(key);
}

COrvRegKey::COrvRegKey(const COrvRegKey& /*other*/) {}

COrvRegKey& COrvRegKey::operator=(HKEY key)
{
    if (m_bOpen && key == m_hKey) {
        // A second owner of the same handle would close it a second time.
        return *this;
    }
    if (m_owner && m_owner.use_count() == 1) {
        // The previous handle stays open: the caller should have closed it and may still use it.
        static_cast<void>(m_owner->release());
    }
    Store(key);
    return *this;
}

COrvRegKey::~COrvRegKey()
{
    Close();
}

void COrvRegKey::Init()
{
    m_hKey = nullptr;
    m_bOpen = false;
    m_lLastResult = 0;
    m_dwEnumIndex = 0;
    m_strKeyPath.ClearString();
}

void COrvRegKey::Store(HKEY key)
{
    UniqueRegKey owner(key);
    m_owner = std::make_shared<UniqueRegKey>(std::move(owner));
    m_hKey = key;
    m_bOpen = true;
}

void COrvRegKey::CloseHandleOnly()
{
    m_owner.reset();
    m_hKey = nullptr;
    m_bOpen = false;
}

void COrvRegKey::Close()
{
    if (m_bOpen) {
        CloseHandleOnly();
        Init();
    }
}

// The path is set even when the open fails, so that it names the requested key. The enumeration index is not reset.
bool COrvRegKey::Open(HKEY root, const COrvString& subKey, bool write)
{
    CloseHandleOnly();
    HKEY key = nullptr;
    m_lLastResult = RegOpenKeyExA(root, subKey, 0, Access(write), &key);
    if (m_lLastResult == ERROR_SUCCESS) {
        Store(key);
    }
    if (const char* rootName = RootName(root); rootName != nullptr) {
        m_strKeyPath = rootName + subKey;
    }
    return m_bOpen;
}

bool COrvRegKey::Create(HKEY root, const COrvString& subKey, bool write, bool isVolatile)
{
    CloseHandleOnly();
    HKEY key = nullptr;
    DWORD disposition = 0;
    m_lLastResult =
        RegCreateKeyExA(root, subKey, 0, nullptr, isVolatile ? REG_OPTION_VOLATILE : REG_OPTION_NON_VOLATILE,
                        Access(write), nullptr, &key, &disposition);
    if (m_lLastResult != ERROR_SUCCESS) {
        return false;
    }
    Store(key);
    if (const char* rootName = RootName(root); rootName != nullptr) {
        m_strKeyPath = rootName + subKey;
    }
    return true;
}

bool COrvRegKey::SubKeyExists(const COrvString& name) const
{
    COrvRegKey subKey;
    return subKey.Open(m_hKey, name, kForReading);
}

bool COrvRegKey::EnumSubKey(COrvString& name)
{
    std::array<char, kSubKeyNameBytes> buffer{};
    DWORD chars = kSubKeyNameBytes;
    FILETIME lastWrite{};
    m_lLastResult =
        RegEnumKeyExA(m_hKey, m_dwEnumIndex++, buffer.data(), &chars, nullptr, nullptr, nullptr, &lastWrite);
    if (m_lLastResult == ERROR_NO_MORE_ITEMS) {
        m_dwEnumIndex = 0;
    }
    if (m_lLastResult != ERROR_SUCCESS) {
        return false;
    }
    name = buffer.data();
    return true;
}

bool COrvRegKey::EnumValue(COrvString& name)
{
    std::array<char, kValueNameBytes> buffer{};
    DWORD chars = kValueNameBytes;
    m_lLastResult = RegEnumValueA(m_hKey, m_dwEnumIndex++, buffer.data(), &chars, nullptr, nullptr, nullptr, nullptr);
    if (m_lLastResult == ERROR_NO_MORE_ITEMS) {
        m_dwEnumIndex = 0;
    }
    if (m_lLastResult != ERROR_SUCCESS) {
        return false;
    }
    name = buffer.data();
    return true;
}

bool COrvRegKey::DeleteSubKey(const char* name)
{
    // An empty name would be this key itself.
    if (!m_bOpen || name == nullptr || *name == '\0') {
        return false;
    }
    COrvRegKey child;
    if (!child.Open(m_hKey, name, kForReading)) {
        return false;
    }
    std::array<char, kSubKeyNameBytes> buffer{};
    DWORD chars = kSubKeyNameBytes;
    FILETIME lastWrite{};
    // Always the first: the others move up when it is deleted.
    while (RegEnumKeyExA(child.m_hKey, 0, buffer.data(), &chars, nullptr, nullptr, nullptr, &lastWrite) ==
           ERROR_SUCCESS) {
        if (!child.DeleteSubKey(buffer.data())) {
            return false;
        }
        chars = kSubKeyNameBytes;
    }
    child.Close();
    return RemoveSubKey(name) == ERROR_SUCCESS;
}

unsigned long COrvRegKey::RemoveSubKey(const char* name) const
{
    if (name == nullptr) {
        return ERROR_INVALID_PARAMETER;
    }
    return static_cast<unsigned long>(RegDeleteKeyA(m_hKey, name));
}
