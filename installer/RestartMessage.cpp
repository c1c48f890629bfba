#include "RestartMessage.h"

const UINT restartMessage = RegisterWindowMessageA("Norda Morvix Restart Now");
