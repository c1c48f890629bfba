#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "DebugOutput.h"
#include "DeviceInstall.h"
#include "DriverInstallRecord.h"
#include "LocationInfo.h"
#include "MachineKeyOverride.h"
#include "NetInst.h"
#include "RegistryKeys.h"
#include "ScratchDirectory.h"

/// What the tests of the device room share: simulated PCI devices, kits of INF files, an install that records its
/// calls.

inline constexpr char kPciKey[] = R"(SYSTEM\CurrentControlSet\Enum\PCI)";
inline constexpr char kEthernetId[] = R"(PCI\VEN_5D1A&CC_020000)";

/// A device in the registry's PCI key, gone at the end of the object's life.
class SimulatedDevice
{
public:
    /// @param compatibleIds  Of the first instance; without a value the instance has no such list.
    explicit SimulatedDevice(const std::string& keyName,
                             const std::optional<std::vector<std::string>>& compatibleIds = std::vector<std::string>{
                                 kEthernetId, R"(PCI\CC_0200)"});
    [[nodiscard]] const std::string& Path() const { return m_key.Path(); }
    /// The path of the only instance.
    [[nodiscard]] std::string Instance() const { return Path() + R"(\3&11583659&0&18)"; }

private:
    ScratchRegistryKey m_key;
};

/// A program directory with a setup INI and INF files. While it lives, LocationInfo names it. The run's state is that
/// of a new run, except that every INF counts as handed to the platform's INF store already.
class InfKit
{
public:
    /// @param directories  The kit's INF directories in the order of the setup INI, below the program's directory.
    explicit InfKit(const std::vector<std::string>& directories = {"Drv"});
    ~InfKit();
    InfKit(const InfKit&) = delete;
    InfKit& operator=(const InfKit&) = delete;

    /// Adds an INF that lists one device.
    /// @param searchId  Hardware ID without the bus prefix.
    /// @return the INF's full path.
    std::string Add(const std::string& directory, const std::string& fileName, const std::string& searchId,
                    const std::string& description = "Norda Test Adapter",
                    const std::string& signature = "$Windows NT$");
    [[nodiscard]] const ScratchDirectory& Directory() const { return m_scratch; }
    /// The kit's directories as the search sees them.
    [[nodiscard]] std::vector<std::string> SearchDirectories() const;

private:
    ScratchDirectory m_scratch;
    std::vector<std::string> m_directories;
    LocationInfoRecord m_savedLocation;
};

/// Answers install calls as prepared and records them.
class RecordingInstall final : public IDriverInstallInterface
{
public:
    struct Call
    {
        std::string infPath;
        std::string hardwareId;
        int32_t flags = 0;
        std::string sourcePath; ///< "Tavunstl_source_path" during the call
    };
    struct Answer
    {
        int32_t status = 0;
        DWORD lastError = ERROR_SUCCESS;
    };

    RecordingInstall() = default;
    explicit RecordingInstall(Answer answer) : m_answer(answer) {}
    int32_t __stdcall AddRef() override { return 1; }
    int32_t __stdcall Release() override { return 1; }
    int32_t __stdcall InstallForRecord(void* record, int32_t flags) override;

    std::vector<Call> calls;
    std::function<void()> duringCall = [] {};

private:
    Answer m_answer;
};

/// For tests that do not look at the progress.
inline const ReportProgressFn kNoProgress = [](const std::string& /*text*/) {};

[[nodiscard]] DriverInstallRecord RecordOf(std::string_view family);

/// @return the messages that `action` traces.
[[nodiscard]] std::vector<std::string> TraceOf(TraceCapture& trace, const std::function<void()>& action);

/// Appends `more` to `lines`.
void Append(std::vector<std::string>& lines, const std::vector<std::string>& more);

[[nodiscard]] std::string UpperCased(std::string text);
