#pragma once

/// The query that shows whether the system has its own DCB: WMI then knows the settings of its DCBX. A system without
/// one lacks the name space or the class.
inline constexpr wchar_t kDcbNameSpace[] = LR"(root\standardcimv2)";
inline constexpr wchar_t kDcbQuery[] =
    L"SELECT * FROM "
    L"MSFT_NetQosDcbxSettingData";
