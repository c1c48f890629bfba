#include "DevicePassState.h"

DevicePassStateRecord DevicePassState;
