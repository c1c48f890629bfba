#include "RunOptions.h"

RunOptionsRecord RunOptions;
