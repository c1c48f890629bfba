#include "HelperTrace.h"

#include "OrvDebug.h"

HelperTrace::HelperTrace(const char* entryName, const char* exitName) : m_exitName(exitName)
{
    OrvTrace().Print("Enterning CHelper::%s()", entryName);
}

HelperTrace::~HelperTrace()
{
    OrvTrace().Print("Exiting CHelper::%s()", m_exitName);
}
