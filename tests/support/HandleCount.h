#pragma once

/// @return the number of handles that this process has open.
[[nodiscard]] unsigned CountOwnHandles();
