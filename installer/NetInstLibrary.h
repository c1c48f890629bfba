#pragma once

#include <cstdint>
#include <memory>

#include "NetInst.h"

/// Releases a NetInst object through its own Release.
struct NetInstRelease
{
    template <class Interface>
    void operator()(Interface* object) const noexcept
    {
        object->Release();
    }
};
template <class Interface>
using UniqueNetInst = std::unique_ptr<Interface, NetInstRelease>;

/// Creates the system prober of the NetInst.dll beside the program. The library is loaded on first use and stays
/// loaded.
/// @param status  0 on success, else the failure: NetInst's own status, or the Win32 error as an HRESULT when the
///                library or its export is missing.
UniqueNetInst<ISysProberInterface> CreateSysProber(uint32_t& status);

/// Creates the driver-install interface for `record`; otherwise as above.
UniqueNetInst<IDriverInstallInterface> CreateDriverInstall(void* record, uint32_t& status);
