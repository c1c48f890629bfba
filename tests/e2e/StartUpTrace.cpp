#include "StartUpTrace.h"

std::vector<std::string> LocationTrace(const RunFolder& folder)
{
    const std::string program = folder.At("Morvix.exe");
    return {"Entering -WinMain ",
            "Entering - SetLocationInfo",
            "invoked dir: " + folder.Path() + "\n",
            "program name: " + program + "\n",
            "full path: " + program + "\n",
            "Morvix dir: " + folder.Path() + "\n"};
}

std::vector<std::string> StartUpTrace(const RunFolder& folder, const std::vector<std::string>& options)
{
    std::vector<std::string> lines = LocationTrace(folder);
    lines.push_back("ini file: " + folder.At("Morvix.ini") + "\n");
    lines.push_back("Entering - GetOSLanguageID");
    lines.insert(lines.end(), options.begin(), options.end());
    lines.push_back("Entering - PreviousInstanceRunning");
    return lines;
}
