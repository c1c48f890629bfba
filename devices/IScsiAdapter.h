#pragma once

#include <string>

/// Asks an adapter's driver whether the machine boots over iSCSI through that adapter. When it does,
/// DevicePassState.storageAdapterFound is set. An adapter that cannot be asked, or whose driver does not know the
/// question, is not an iSCSI boot adapter.
/// @param instanceId  The adapter's network-configuration instance ID.
/// @return 1 only when an adapter had been found before the call, which then asks nothing; 0 otherwise, also in the
///         call that finds one.
int IsIScsiAdapter(const std::string& instanceId);
