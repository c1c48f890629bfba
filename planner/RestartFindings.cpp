#include "RestartFindings.h"

std::vector<RestartReason> RestartFindings(const Machine& /*machine*/, const MachinePlan& /*plan*/)
{
    return {};
}
