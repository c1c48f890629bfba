#pragma once

#include <string>
#include <string_view>

/// @return the text of a Windows Installer log, which the engine writes in UTF-16 or in the system's code page. What is
///         not ASCII in UTF-16 is a question mark.
[[nodiscard]] std::string InstallerLogText(std::string_view bytes);

/// Whether the package's own steps have logged `message`, as a whole line "Morvix: " + message.
[[nodiscard]] bool StepLogged(std::string_view log, std::string_view message);

/// Whether the package's own steps have logged a line that begins so.
[[nodiscard]] bool StepLoggedLineThatBegins(std::string_view log, std::string_view start);
