#include "Commands.h"
ExitCode Run(const ExplainCommand& /*command*/) { return ExitCode::Usage; }
