#pragma once

/// Finds out whether the machine boots or pages over FCoE and, if so, whether its drivers may be updated, and sets the
/// FCoE fields of RunState. A box reports an update that is not allowed, unless the run is silent or an installer step.
/// @return true when the run may go on.
bool FcoeBootAllowsRun();
