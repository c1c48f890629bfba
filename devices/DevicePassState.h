#pragma once

/// What the device passes of a run have found out. All fields belong to the install thread; the dialog reads them on
/// the main thread after that thread has reported back. A field that is set stays set for the rest of the run, except
/// unreportedRefusal and, in a run without a driver-install interface, qdatInstalled.
struct DevicePassStateRecord
{
    /// A device has matched an INF. Written by the device pass; read by the installation run for its outcome.
    bool deviceMatched = false;
    /// A matched INF was the DMA-engine INF. Written by the device pass; cleared by the installation run when there was
    /// no interface to install it; read by the end-of-run decision.
    bool qdatInstalled = false;
    /// An install returned kNetInstRefused and no result key says so yet. Written by the install step; read and cleared
    /// by PostInstallRegResult, so that one refusal is reported once.
    bool unreportedRefusal = false;
    /// An install returned kNetInstRefused. Written by the install step; read by the installation run for its outcome
    /// text.
    bool installFailed = false;
    /// A storage-boot adapter was found. Written and read by the storage-adapter test, which asks no further device
    /// after that; read by the end-of-run decision.
    bool storageAdapterFound = false;
};

/// The run's indicators, cleared at process start.
inline DevicePassStateRecord DevicePassState;
