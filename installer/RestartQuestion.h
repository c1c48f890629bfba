#pragma once

/// Asks the restart question in a Yes/No box without an owner.
/// @return IDYES or IDNO.
int AskRestartQuestion();
