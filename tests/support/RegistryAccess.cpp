#include "RegistryAccess.h"

#include <bit>

namespace {
struct Request
{
    std::string key;
    REGSAM access = 0;
};
std::vector<Request> requests;

void Note(HKEY root, LPCSTR key, REGSAM access)
{
    if (root == HKEY_LOCAL_MACHINE) {
        requests.push_back({key, access});
    }
}

/// The platform's function, past the import table.
template <class Function>
Function Platform(Function, const char* name)
{
    return std::bit_cast<Function>(GetProcAddress(GetModuleHandleA("advapi32.dll"), name));
}

LSTATUS WINAPI NoteOpen(HKEY root, LPCSTR key, DWORD options, REGSAM access, PHKEY opened)
{
    static const auto open = Platform(&RegOpenKeyExA, "RegOpenKeyExA");
    Note(root, key, access);
    return open(root, key, options, access, opened);
}

LSTATUS WINAPI NoteCreation(HKEY root, LPCSTR key, DWORD reserved, LPSTR keyClass, DWORD options, REGSAM access,
                            const LPSECURITY_ATTRIBUTES security, PHKEY opened, LPDWORD disposition)
{
    static const auto create = Platform(&RegCreateKeyExA, "RegCreateKeyExA");
    Note(root, key, access);
    return create(root, key, reserved, keyClass, options, access, security, opened, disposition);
}
} // namespace

RegistryAccess::RegistryAccess()
    : m_opens("RegOpenKeyExA", reinterpret_cast<void*>(NoteOpen)),
      m_creates("RegCreateKeyExA", reinterpret_cast<void*>(NoteCreation))
{
    requests.clear();
}

std::vector<REGSAM> RegistryAccess::AskedFor(const std::string& key)
{
    std::vector<REGSAM> asked;
    for (const Request& request : requests) {
        if (request.key == key) {
            asked.push_back(request.access);
        }
    }
    return asked;
}
