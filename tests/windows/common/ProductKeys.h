#pragma once

/// Keys of the maker's management software, which the library reads.
inline constexpr char kNetworkServices[] = R"(SOFTWARE\NORDA\Network_Services)";
inline constexpr char kProduct[] = R"(SOFTWARE\NORDA\Network_Services\ORV2)";
inline constexpr char kDebug[] = R"(SOFTWARE\NORDA\Network_Services\Debug)";
