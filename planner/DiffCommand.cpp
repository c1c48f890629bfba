#include "Commands.h"
ExitCode Run(const DiffCommand& /*command*/) { return ExitCode::Usage; }
