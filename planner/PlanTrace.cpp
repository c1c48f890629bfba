#include "PlanTrace.h"

#include <array>
#include <cstdio>

#include "InstallResult.h"
#include "Utf8.h"

namespace {
void AppendShown(std::string& out, std::string_view text)
{
    while (!text.empty()) {
        const Utf8Character character = FirstCharacter(text);
        // Letters of the machine's code page that make no UTF-8 are escaped too.
        if (character.bytes != 0 && !SteersTerminal(character.value)) {
            out += text.substr(0, character.bytes);
            text.remove_prefix(character.bytes);
            continue;
        }
        std::array<char, 5> escape{};
        static_cast<void>(std::snprintf(escape.data(), escape.size(), "\\x%02X",
                                        static_cast<unsigned>(static_cast<unsigned char>(text.front()))));
        out += escape.data();
        text.remove_prefix(1);
    }
}
} // namespace

void TraceLog::SayPieces(std::span<const std::string_view> pieces)
{
    std::string line;
    for (const std::string_view piece : pieces) {
        line += piece;
    }
    if (line.ends_with('\n')) {
        line.pop_back();
    }
    m_out += "Morvix: ";
    AppendShown(m_out, line);
    m_out += '\n';
}

void TraceLog::Store(const std::string& infPath, const std::string& sourceDirectory)
{
    Say("Entering - SetupCopyInf");
    Say("SetupCopyOEMInfA(), src inf:", infPath, ", src media loc:", sourceDirectory, "\n");
    Say("Calling SetupCopyOEMInfA for ", infPath);
    Placeholder(kStorePlaceholder);
}

void TraceLog::Reached(SearchStep step)
{
    if (step == SearchStep::DescriptionSought) {
        Say("Entering - GetLanguageSpecificString");
    }
}

void TraceLog::Installed(InstallRoute route, const std::string& deviceKey, const std::string& recordPath,
                         const PlannedSystem& system, LeadByteTest isLeadByte)
{
    Say("Entering - GetLanguageSpecificString");
    Say("==>installing driver(s)\n");
    const std::string what = R"(PCI\)" + deviceKey + ", " + recordPath + "\n";
    switch (route) {
        case InstallRoute::DriverUpdate:
            Say("ME install: ", what);
            Placeholder(kInstallPlaceholder);
            break;
        case InstallRoute::DriverInterface:
            Say("2K/XP install: ", what);
            InstalledByInterface(recordPath, system, isLeadByte);
            break;
        case InstallRoute::LegacyInstaller:
            Say("98 install: ", what);
            Placeholder(kInstallPlaceholder);
            break;
    }
}

void TraceLog::InstalledByInterface(const std::string& recordPath, const PlannedSystem& system, LeadByteTest isLeadByte)
{
    Placeholder(kInstallPlaceholder);
    Say("Enter -> PostInstallRegResult\n");
    std::string path = recordPath;
    if (ClassifyInf(path, system.code, isLeadByte, *this)) {
        Placeholder(kResultPlaceholder);
    }
    Placeholder(kStorageBootPlaceholder);
}

void TraceLog::Placeholder(std::string_view line)
{
    m_out += line;
    m_out += '\n';
}
