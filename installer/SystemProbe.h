#pragma once

#include <cstdint>

#include "DriverInstallRecord.h"

/// Creates the system prober, checks administrator rights and lets the prober write the family name into `record`.
/// @return 0 on success; 0x80640008 for a caller without administrator rights, in which case the prober is not asked;
///         else the status of the prober or of its creation.
uint32_t ProbeSystem(DriverInstallRecord& record);

/// Traces the message for a failed probe and, unless `silent`, shows it in a box.
void ReportProbeFailure(uint32_t status, const DriverInstallRecord& record, bool silent);
