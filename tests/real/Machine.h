#pragma once

#include <windows.h>

#include <optional>
#include <string>

/// Facts about the machine at hand. By these a row decides whether it can run here, never by a call that has failed:
/// that would hide what the row has to show.

/// The system's own version, whatever it reports to programs.
struct SystemNumbers
{
    DWORD major = 0;
    DWORD minor = 0;
    DWORD build = 0;
    BYTE productType = 0; ///< VER_NT_WORKSTATION, VER_NT_SERVER or VER_NT_DOMAIN_CONTROLLER
};
[[nodiscard]] SystemNumbers OwnVersionOfTheSystem();

/// Whether the machine asks for consent before a program gets administrator rights.
[[nodiscard]] bool AsksForConsent();
/// Whether this process runs as the system account.
[[nodiscard]] bool RunsAsSystem();
[[nodiscard]] bool IsRemoteSession();
/// Dots per inch of the screen.
[[nodiscard]] int ScreenDpi();

/// @return why a run without an adapter is not possible on this machine; no value when it is.
[[nodiscard]] std::optional<std::string> WhyNoMachineWithoutAdapter();
/// @return why no window can be seen here; no value when it can.
[[nodiscard]] std::optional<std::string> WhyNoWindows();

/// Has this process see the screen in its real size. Systems before Vista know no other.
void SeeTheScreenInItsRealSize();
