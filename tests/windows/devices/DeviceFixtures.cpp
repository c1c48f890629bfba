#include "DeviceFixtures.h"

#include <algorithm>
#include <stdexcept>

#include "DevicePassState.h"
#include "InfReader.h"
#include "InfStore.h"
#include "LangString.h"
#include "OSVersion.h"
#include "ResultKeys.h"
#include "RunOptions.h"
#include "RunState.h"

SimulatedDevice::SimulatedDevice(const std::string& keyName,
                                 const std::optional<std::vector<std::string>>& compatibleIds)
    : m_key(std::string(kPciKey) + "\\" + keyName)
{
    CreateRegistryKey(Instance());
    if (compatibleIds) {
        SetRegistryList(Instance(), "CompatibleIDs", *compatibleIds);
    }
}

InfKit::InfKit(const std::vector<std::string>& directories) : m_directories(directories), m_savedLocation(LocationInfo)
{
    LocationInfo.setupDir = m_scratch.Path();
    LocationInfo.programName = m_scratch.At("Morvix.exe");
    CopiedInfList = {};
    RunOptions = {};
    RunState = {};
    DevicePassState = {};
    matchedHardwareId.fill('\0');
    deviceDescription.fill('\0');

    const OSCode system = COSVersion().GetOSCode();
    if (!IsServed(system)) {
        throw std::runtime_error("these tests need a system that the program serves");
    }
    std::string ini = "[" + std::string(RowOf(system).sectionKey) + "]\r\nInfSectionName=Norda.NTamd64\r\n";
    for (const std::string& directory : directories) {
        ini += "InfDir=" + directory + "\r\n";
    }
    WriteFileBytes(m_scratch.At("Morvix.ini"), ini);
}

InfKit::~InfKit()
{
    LocationInfo = m_savedLocation;
    CopiedInfList = {};
    RunState = {};
    DevicePassState = {};
}

std::string InfKit::Add(const std::string& directory, const std::string& fileName, const std::string& searchId,
                        const std::string& description, const std::string& signature)
{
    const std::string path = m_scratch.At(directory + "\\" + fileName);
    WriteFileBytes(path,
                   "[Version]\r\nSignature=\"" + signature +
                       "\"\r\n[Manufacturer]\r\n%Maker%=Norda,NTamd64\r\n[Norda.NTamd64]\r\n%Device%=Install, PCI\\" +
                       searchId + "\r\n[Strings]\r\nMaker=\"Norda\"\r\nDevice=\"" + description + "\"\r\n");
    CopiedInfList.names.push_back(fileName);
    return path;
}

std::vector<std::string> InfKit::SearchDirectories() const
{
    std::vector<std::string> directories;
    for (const std::string& directory : m_directories) {
        directories.push_back(m_scratch.At(directory) + "\\");
    }
    return directories;
}

int32_t __stdcall RecordingInstall::InstallForRecord(void* record, int32_t flags)
{
    const auto& fields = *static_cast<const DriverInstallRecord*>(record);
    calls.push_back({.infPath = std::string(TextIn(fields.infPath)),
                     .hardwareId = std::string(TextIn(fields.hardwareId)),
                     .flags = flags,
                     .sourcePath = ReadRegistryText(kBasedriversKey, "Tavunstl_source_path")});
    duringCall();
    SetLastError(m_answer.lastError);
    return m_answer.status;
}

DriverInstallRecord RecordOf(std::string_view family)
{
    DriverInstallRecord record;
    std::ranges::copy(family, record.osFamily.begin());
    return record;
}

std::vector<std::string> TraceOf(TraceCapture& trace, const std::function<void()>& action)
{
    trace.Clear();
    action();
    std::vector<std::string> messages = trace.Messages();
    trace.Clear();
    return messages;
}

void Append(std::vector<std::string>& lines, const std::vector<std::string>& more)
{
    lines.insert(lines.end(), more.begin(), more.end());
}

std::string UpperCased(std::string text)
{
    CharUpperBuffA(text.data(), static_cast<DWORD>(text.size()));
    return text;
}
