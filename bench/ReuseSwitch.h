#pragma once

/// The plain way asks the platform every time. The product has no such switch.
struct ReuseSwitchRecord
{
    bool plainWay = false; ///< read by AnswerReuse when it begins
};
extern ReuseSwitchRecord reuseSwitch;
