#pragma once

#include <string>

/// The whole screen as the content of a .bmp file; empty where there is none, as in a service's session.
[[nodiscard]] std::string Screenshot();
