#include "RunState.h"

RunStateRecord RunState;
