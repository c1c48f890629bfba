#pragma once

#include <windows.h>

#include <array>
#include <string>
#include <utility>

#include "Handles.h"
#include "NetInst.h"

/// The caller's side of the installer library.

/// The install record as the program lays it out: family at 0, INF path at 204, hardware ID at 716.
struct RawRecord
{
    std::array<char, 1280> bytes{};

    void SetInfPath(const std::string& path) { path.copy(bytes.data() + 204, 256); }
    void SetFamily(const std::string& family) { family.copy(bytes.data(), 203); }
    void SetHardwareId(const std::string& id) { id.copy(bytes.data() + 716, 300); }
    [[nodiscard]] std::string Family() const { return bytes.data(); }
};

struct Releaser
{
    template <class Object>
    void operator()(Object* object) const
    {
        object->Release();
    }
};
template <class Object>
using Held = std::unique_ptr<Object, Releaser>;

/// The result of an installation.
struct InstallAnswer
{
    int32_t status = 0;
    DWORD lastError = 0;
};

/// A library of the interface as it was built, loaded for the life of the object.
class NetInstLibrary
{
public:
    /// NetInst.dll, or the library at `path`. Throws std::runtime_error when it cannot be loaded.
    NetInstLibrary();
    explicit NetInstLibrary(const std::string& path);

    /// @return the entry point's status and the factory pointer, which held a wild address before the call.
    [[nodiscard]] std::pair<int32_t, void*> AskForFactory(const char* name) const;
    [[nodiscard]] DllGetClassFactoryObjectFn EntryPoint() const { return m_entryPoint; }
    [[nodiscard]] HMODULE Module() const { return m_library.get(); }

    /// The objects, created as the program creates them; null when a step fails.
    [[nodiscard]] Held<ISysProberInterface> MakeProber() const;
    [[nodiscard]] Held<IDriverInstallInterface> MakeInstaller(RawRecord& record) const;

    /// Binds `hardwareId` to `infPath` through an object of its own. The last error is set to `lastErrorBefore` first.
    /// Throws std::runtime_error when there is no such object.
    [[nodiscard]] InstallAnswer Install(const std::string& infPath, const std::string& hardwareId,
                                        DWORD lastErrorBefore = ERROR_SUCCESS) const;

private:
    UniqueLibrary m_library;
    DllGetClassFactoryObjectFn m_entryPoint = nullptr;
};

/// The same through NetInst.dll, loaded for the call.
[[nodiscard]] InstallAnswer InstallThroughNetInst(const std::string& infPath, const std::string& hardwareId,
                                                  DWORD lastErrorBefore = ERROR_SUCCESS);

/// Runs this test program again as a process that reports another system version (a setting that Wine reads when a
/// process starts), passes it `task` and returns what it printed. The tasks are those of RunTask.
[[nodiscard]] std::string RunTaskOnSystem(const std::string& wineVersion, const std::string& task);

/// Performs one task of a child process and prints the result:
///   "identify"                        "<status> <family>"
///   "install <hardware ID> <INF path>" "<status> <last error>"
/// Numbers are hexadecimal with eight digits.
/// @return the process's exit code: 0 when the task was understood.
int RunTask(const std::string& task);

/// The first argument of a child process; the second is the task.
inline constexpr char kTaskArgument[] = "--netinst-task";
