#pragma once

/// How the system is asked whether it brings a DCB of its own: the management service knows the settings of its DCBX
/// then. A system without it does not know the name space or the class.
inline constexpr wchar_t kDcbNameSpace[] = LR"(root\standardcimv2)";
inline constexpr wchar_t kDcbQuery[] =
    L"SELECT * FROM "
    L"MSFT_NetQosDcbxSettingData";
