#pragma once

#include <cstdint>

/// The status of the driver-install interface that a run remembers: the set-up error ERROR_DEVINST_ALREADY_EXISTS.
inline constexpr uint32_t kRememberedInstallError = 0xE0000207;

/// What the device passes of a run have found out. All fields belong to the install thread; the dialog reads them on
/// the main thread after that thread has reported back. A field that is set stays set for the rest of the run, except
/// installErrorCode and, in a run without a driver-install interface, qdatInstalled.
struct DevicePassStateRecord
{
    /// 1 once any device has matched an INF. Written by the device pass; read by the installation run for its outcome.
    uint32_t deviceMatched = 0;
    /// 1 once the matched INF was the DMA-engine INF. Written by the device pass; taken back by the installation run
    /// when there was no interface to install it; read by the end-of-run decision.
    uint32_t qdatInstalled = 0;
    /// kRememberedInstallError after an install that answered it, else 0. Written by the install step; read and reset
    /// by PostInstallRegResult, so that one failure is reported once.
    uint32_t installErrorCode = 0;
    /// 1 once installErrorCode was set; not reset with it. Written by the install step; read by the installation run
    /// for its outcome text.
    uint32_t installFailed = 0;
    /// 1 once a storage-boot adapter was found. Written and read by the storage-adapter test, which asks no further
    /// device after that; read by the end-of-run decision.
    uint32_t storageAdapterFound = 0;
};

/// The run's indicators, cleared at process start.
inline DevicePassStateRecord DevicePassState;
