#pragma once

#include <string>
#include <vector>

#include "CleanMachine.h"

/// The model section that the tests' own setup INI names and their own INF files hold.
inline constexpr char kModelSection[] = "Norda.NTamd64";
/// The name that the tests' own INF files give every device.
inline constexpr char kDeviceDescription[] = "Norda Test Adapter";

/// An INF file under construction. Each member is text in the file.
struct InfContent
{
    std::vector<std::string> ids; ///< hardware IDs without "PCI\"
    std::string signature = "$Windows NT$";
    std::string manufacturer = "Norda";
};
[[nodiscard]] std::string InfText(const InfContent& content);

/// An INF that lists `id` and qualifies on every NT system.
[[nodiscard]] std::string InfFor(const std::string& id);

/// @return `text` (ASCII) as a UTF-16 file with its byte-order mark.
[[nodiscard]] std::string AsUnicodeFile(const std::string& text);

/// Runs with the NetInst double and INF files of the test's own in the folder "Inf", so that a run only asks and
/// records: nothing is installed, and the double's journal shows what would have been.
class DoubleRun : public CleanMachine
{
protected:
    DoubleRun();

    void WriteInf(const std::string& name, const std::string& content) { Folder().Write("Inf\\" + name, content); }

    /// The line that the NetInst double writes for the install of `deviceId` from the INF `inf` (path in the run
    /// folder).
    [[nodiscard]] std::string InstallLine(const std::string& inf, const std::string& deviceId);
    /// The full path of a file in the run folder as the program passes it on.
    [[nodiscard]] std::string InfInUpperCase(const std::string& inf);
    [[nodiscard]] std::vector<std::string> Installs() { return Folder().JournalLines("InstallForRecord"); }
};
