#include "LocationInfo.h"

LocationInfoRecord LocationInfo;

std::string FullProgramPath(const std::string& programName, std::string& invokedDir)
{
    if (programName.find(':') != std::string::npos || programName.find("\\\\") != std::string::npos) {
        return programName;
    }
    if (!invokedDir.ends_with('\\')) {
        invokedDir += '\\';
    }
    return invokedDir + programName;
}

std::string DirectoryOf(const std::string& path)
{
    return path.substr(0, path.rfind('\\'));
}
