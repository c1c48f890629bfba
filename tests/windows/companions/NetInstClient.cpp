#include "NetInstClient.h"

#include <cstdio>
#include <sstream>
#include <stdexcept>

#include "CompanionFiles.h"
#include "EntryPoints.h"

NetInstLibrary::NetInstLibrary() : NetInstLibrary(NetInstPath()) {}

NetInstLibrary::NetInstLibrary(const std::string& path) : m_library(LoadLibraryA(path.c_str()))
{
    if (!m_library) {
        throw std::runtime_error("cannot load " + path);
    }
    m_entryPoint = FindEntry<DllGetClassFactoryObjectFn>(m_library.get(), kNetInstEntryPoint);
    if (m_entryPoint == nullptr) {
        throw std::runtime_error(path + " has no entry point");
    }
}

std::pair<int32_t, void*> NetInstLibrary::AskForFactory(const char* name) const
{
    int wild = 0;
    void* factory = &wild;
    const int32_t status = m_entryPoint(name, &factory);
    return {status, factory};
}

Held<ISysProberInterface> NetInstLibrary::MakeProber() const
{
    void* made = nullptr;
    ISysProberInterface* prober = nullptr;
    if (m_entryPoint(kSysProberFactoryName, &made) == 0) {
        const Held<ISysProberInterfaceFactory> factory(static_cast<ISysProberInterfaceFactory*>(made));
        factory->CreateSysProber(&prober);
    }
    return Held<ISysProberInterface>(prober);
}

Held<IDriverInstallInterface> NetInstLibrary::MakeInstaller(RawRecord& record) const
{
    void* made = nullptr;
    IDriverInstallInterface* installer = nullptr;
    if (m_entryPoint(kDriverInstallFactoryName, &made) == 0) {
        const Held<IDriverInstallInterfaceFactory> factory(static_cast<IDriverInstallInterfaceFactory*>(made));
        factory->CreateDriverInstall(&installer, &record);
    }
    return Held<IDriverInstallInterface>(installer);
}

InstallAnswer NetInstLibrary::Install(const std::string& infPath, const std::string& hardwareId,
                                      DWORD lastErrorBefore) const
{
    RawRecord record;
    record.SetFamily("Windows Vista");
    record.SetInfPath(infPath);
    record.SetHardwareId(hardwareId);
    const Held<IDriverInstallInterface> installer = MakeInstaller(record);
    if (!installer) {
        throw std::runtime_error("no driver-install interface");
    }
    SetLastError(lastErrorBefore);
    InstallAnswer answer;
    answer.status = installer->InstallForRecord(&record, 0);
    answer.lastError = GetLastError();
    return answer;
}

InstallAnswer InstallThroughNetInst(const std::string& infPath, const std::string& hardwareId, DWORD lastErrorBefore)
{
    return NetInstLibrary().Install(infPath, hardwareId, lastErrorBefore);
}

namespace {
std::string ProgramPath()
{
    std::array<char, MAX_PATH> path{};
    GetModuleFileNameA(nullptr, path.data(), MAX_PATH);
    return path.data();
}

/// Makes processes of this program's name report another system for the life of the object.
class PretendedSystem
{
public:
    explicit PretendedSystem(const std::string& wineVersion)
    {
        const std::string program = ProgramPath();
        m_key = "Software\\Wine\\AppDefaults\\" + program.substr(program.rfind('\\') + 1);
        HKEY opened = nullptr;
        if (RegCreateKeyA(HKEY_CURRENT_USER, m_key.c_str(), &opened) != ERROR_SUCCESS) {
            throw std::runtime_error("cannot choose the system version");
        }
        const UniqueRegKey key(opened);
        RegSetValueExA(key.get(), "Version", 0, REG_SZ, reinterpret_cast<const BYTE*>(wineVersion.c_str()),
                       static_cast<DWORD>(wineVersion.size() + 1));
    }
    ~PretendedSystem() { RegDeleteKeyA(HKEY_CURRENT_USER, m_key.c_str()); }
    PretendedSystem(const PretendedSystem&) = delete;
    PretendedSystem& operator=(const PretendedSystem&) = delete;

private:
    std::string m_key;
};

std::string ReadAll(HANDLE pipe)
{
    std::string text;
    std::array<char, 512> part{};
    DWORD count = 0;
    while (ReadFile(pipe, part.data(), static_cast<DWORD>(part.size()), &count, nullptr) && count > 0) {
        text.append(part.data(), count);
    }
    return text;
}
} // namespace

std::string RunTaskOnSystem(const std::string& wineVersion, const std::string& task)
{
    const PretendedSystem system(wineVersion);
    SECURITY_ATTRIBUTES inheritable{sizeof(inheritable), nullptr, TRUE};
    HANDLE readEnd = nullptr;
    HANDLE writeEnd = nullptr;
    if (!CreatePipe(&readEnd, &writeEnd, &inheritable, 0)) {
        throw std::runtime_error("no pipe");
    }
    const UniqueHandle reading(readEnd);
    UniqueHandle writing(writeEnd);
    SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);

    STARTUPINFOA start{};
    start.cb = sizeof(start);
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = writeEnd;
    start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION process{};
    std::string command = "\"" + ProgramPath() + "\" " + kTaskArgument + " \"" + task + "\"";
    if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &process)) {
        throw std::runtime_error("cannot start " + command);
    }
    const UniqueHandle child(process.hProcess);
    const UniqueHandle childThread(process.hThread);
    writing.reset();
    const std::string answer = ReadAll(reading.get());
    WaitForSingleObject(child.get(), INFINITE);
    return answer;
}

int RunTask(const std::string& task)
{
    std::istringstream words(task);
    std::string verb;
    words >> verb;
    if (verb == "identify") {
        const NetInstLibrary library;
        RawRecord record;
        const Held<ISysProberInterface> prober = library.MakeProber();
        const int64_t status = prober->IdentifySystem(&record);
        std::printf("%08x %s", static_cast<unsigned>(status), record.Family().c_str());
        return 0;
    }
    if (verb == "install") {
        std::string hardwareId;
        std::string infPath;
        words >> hardwareId >> std::ws;
        std::getline(words, infPath);
        const InstallAnswer answer = InstallThroughNetInst(infPath, hardwareId);
        std::printf("%08x %08x", static_cast<unsigned>(answer.status), static_cast<unsigned>(answer.lastError));
        return 0;
    }
    return 1;
}
