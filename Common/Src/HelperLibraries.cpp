// The maker's other libraries and their texts.
#include "Helper.h"
#include "HelperTrace.h"
#include "OrvDebug.h"
#include "OrvRegKey.h"

namespace {
constexpr char kStatusTextLibrary[] = "NetShell";

DWORD LoadFlags(AgentLibraryUse use)
{
    // With its own folder searched first, a library finds those installed with it.
    return use == AgentLibraryUse::Resources ? LOAD_LIBRARY_AS_DATAFILE : LOAD_WITH_ALTERED_SEARCH_PATH;
}

// Empty when the registry does not name the directory.
COrvString InstalledDirectory(const AgentLibrary& library)
{
    COrvRegKey key;
    key.Open(HKEY_LOCAL_MACHINE, std::string(library.key), kForReading);
    COrvString directory;
    static_cast<void>(key.GetValue(std::string(library.value), directory));
    return directory;
}
} // namespace

UniqueLibrary CHelper::LoadAgentLibrary(std::span<const AgentLibrary> libraries, const COrvString& shortName,
                                        AgentLibraryUse use)
{
    const HelperTrace trace("LoadAgentLibrary");
    const AgentLibrary* library = FindAgentLibrary(libraries, shortName.Text());
    if (library == nullptr) {
        OrvTrace().Print("LoadAgentLibrary() - %s is not a known library - exiting",
                         static_cast<const char*>(shortName));
        return nullptr;
    }
    const auto path = AgentLibraryPath(InstalledDirectory(*library).Text(), library->fileName, IsSystemLeadByte);
    if (!path) {
        OrvTrace().Print("LoadAgentLibrary() - Unable to find where %s is installed - exiting",
                         static_cast<const char*>(shortName));
        return nullptr;
    }
    UniqueLibrary loaded(LoadLibraryExA(path->c_str(), nullptr, LoadFlags(use)));
    if (!loaded) {
        const DWORD error = GetLastError();
        OrvTrace().Print("LoadAgentLibrary() - LoadLibrary of %s failed - %d", path->c_str(), static_cast<int>(error));
    }
    return loaded;
}

bool CHelper::GetStatusText(std::span<const AgentLibrary> libraries, unsigned long id, COrvString& text)
{
    const HelperTrace trace("GetStatusText");
    text.ClearString();
    const UniqueLibrary library = LoadAgentLibrary(libraries, kStatusTextLibrary, AgentLibraryUse::Resources);
    return text.LoadStringA(library.get(), id) > 0;
}
