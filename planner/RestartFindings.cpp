#include "RestartFindings.h"

std::vector<RestartAnswer> RestartFindings(const Machine& /*machine*/, const MachinePlan& /*plan*/)
{
    return {};
}
