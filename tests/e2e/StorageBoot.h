#pragma once

#include <memory>
#include <optional>
#include <string>

#include "Adapter.h"
#include "Environment.h"
#include "OwnInfs.h"
#include "RegistryKeys.h"
#include "RestartWatch.h"
#include "TestAdapter.h"

/// What the tests of network-booted machines share.

inline constexpr char kExtensionKey[] = R"(SOFTWARE\Norda\Network_Services\TERN)";
inline constexpr char kFirstDevice[] = "VEN_5D1A&DEV_7A01&SUBSYS_00115D1A&REV_03";
inline constexpr char kSecondDevice[] = "VEN_5D1A&DEV_7A02&SUBSYS_00115D1A&REV_03";
inline constexpr char kFirstInstance[] = "{5D1A0001-0000-4000-8000-00AA00BB00CC}";
inline constexpr char kSecondInstance[] = "{5D1A0002-0000-4000-8000-00AA00BB00CC}";

/// An adapter that has had a driver before: with a driver key and a network-configuration instance ID in it.
class InstalledAdapter : public Adapter
{
public:
    /// @param driverKey  Number of its driver key, such as "9001".
    InstalledAdapter(const std::string& deviceId, const std::string& driverKey, const std::string& instanceId);
};

/// The operating system's iSCSI initiator among the SCSI adapters, removed by the destructor.
class IScsiInitiator
{
public:
    /// @param dumpDriver  Its crash-dump driver, or nothing for none.
    explicit IScsiInitiator(const std::optional<std::string>& dumpDriver,
                            const std::string& matchingDeviceId = R"(root\iscsiprt)", bool withParameters = true);

private:
    ScratchRegistryKey m_key;
};

/// The system's iSCSI boot configuration tool: a program in the system directory that records its command line. The
/// destructor removes it.
class IScsiTool
{
public:
    IScsiTool();
    ~IScsiTool();
    IScsiTool(const IScsiTool&) = delete;
    IScsiTool& operator=(const IScsiTool&) = delete;

    /// @return the command lines it has been started with so far.
    [[nodiscard]] static std::vector<std::string> CommandLines();
    [[nodiscard]] static std::string Path();
};

/// The machine's list of file operations pending until the next restart, put back at the end of the object's life.
class PendingOperations
{
public:
    explicit PendingOperations(const std::vector<std::string>& entries);
    ~PendingOperations();
    PendingOperations(const PendingOperations&) = delete;
    PendingOperations& operator=(const PendingOperations&) = delete;

    [[nodiscard]] static std::vector<std::string> Entries();

private:
    std::optional<RegistryValue> m_before;
};

/// Makes Wine destroy the windows of Morvix.exe at once. It would otherwise wait two seconds for each, for a window
/// manager that a test's display does not have. Changes nothing on a real Windows.
class NoWindowManager
{
public:
    NoWindowManager();
    ~NoWindowManager();
    NoWindowManager(const NoWindowManager&) = delete;
    NoWindowManager& operator=(const NoWindowManager&) = delete;
};

/// Runs on a machine that may boot from the network. Restarts are refused.
class StorageRun : public DoubleRun
{
protected:
    /// The FCoE library beside the program; every port answers with these flags.
    void UseFcoeLibrary(const std::string& flags);

    /// The iSCSI library beside the program, reporting an initiator of that version.
    void UseIScsiLibrary(const std::string& major, const std::string& minor, const std::string& build);

    static void SetExtensionVersion(const std::string& version);

    /// Starts the driver of the two adapters above, each with a private control device.
    /// @param ndisVersion  With a value there is a network driver interface of that version.
    [[nodiscard]] static std::unique_ptr<TestAdapterDriver> StartAdapterDriver(
        std::optional<uint32_t> ndisVersion = std::nullopt);

    /// The run asked the system for exactly one restart.
    void ExpectRestart(const FinishedRun& run) const;
    void ExpectNoRestart(const FinishedRun& run) const;

    /// "RebootNeeded" is there for the Windows Installer package.
    static void ExpectRebootNeeded();
    static void ExpectNoRebootNeeded();

    /// FinishedRun::Between for lines of the end-of-run decision, which the main thread makes while the install thread
    /// may still trace its end: the latter is left out.
    [[nodiscard]] static std::vector<std::string> DecidedBetween(const FinishedRun& run, const std::string& from,
                                                                 const std::string& to);

    [[nodiscard]] const RestartWatch& Watch() const { return m_watch; }

private:
    NoWindowManager m_noWindowManager;
    RestartWatch m_watch;
};
