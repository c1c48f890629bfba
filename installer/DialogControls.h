#pragma once

/// Controls and timers of the progress dialog, template 101 of MorvixRes.dll.
inline constexpr int kProgressDialog = 101;
inline constexpr int kStatusText = 1000;
inline constexpr int kFinishButton = 1002;
inline constexpr int kRestartNowButton = 1004;
inline constexpr int kRestartLaterButton = 1007;
/// A bar that moves while the install thread works. A template without it works too.
inline constexpr int kActivityBar = 1010;
inline constexpr unsigned kActivityPeriodMilliseconds = 50;

inline constexpr unsigned kCountdownTimer = 0;
inline constexpr unsigned kCountdownPeriodMilliseconds = 1000;
inline constexpr int kCountdownStart = 20;
inline constexpr unsigned kCloseTimer = 1;
inline constexpr unsigned kClosePeriodMilliseconds = 5000;
