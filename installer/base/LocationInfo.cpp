#include "LocationInfo.h"

#include "TwoByteText.h"

LocationInfoRecord LocationInfo;

std::string FullProgramPath(const std::string& programName, std::string& invokedDir, LeadByteTest isLeadByte)
{
    if (programName.find(':') != std::string::npos || HasDoubleBackslash(programName, isLeadByte)) {
        return programName;
    }
    if (!EndsWithBackslash(invokedDir, isLeadByte)) {
        invokedDir += '\\';
    }
    return invokedDir + programName;
}

std::string DirectoryOf(const std::string& path, LeadByteTest isLeadByte)
{
    return path.substr(0, LastBackslash(path, isLeadByte));
}
