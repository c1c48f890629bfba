#pragma once

/// The plain way, in which the platform is asked every time. The product has no such switch.
struct ReuseSwitchRecord
{
    bool plainWay = false; ///< read by AnswerReuse when it begins
};
extern ReuseSwitchRecord reuseSwitch;
