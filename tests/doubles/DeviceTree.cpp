// Stands for cfgmgr32.dll. Answers (section Answers of cfgmgr32.answers.ini, all optional):
//   Node          the node that is located, 1 when not given
//   Locate        result of the location, 0 (success) when not given
//   Reenumerate   result of the scan, 0 when not given

// The functions are at home here.
#define _CFGMGR32_ // the platform's name
#include <windows.h>
// cfgmgr32.h needs windows.h first.
#include <cfgmgr32.h>

#include <string>

#include "Journal.h"

extern "C" __declspec(dllexport) CONFIGRET WINAPI CM_Locate_DevNodeA(PDEVINST node, DEVINSTID_A deviceId, ULONG flags)
{
    WriteJournal("CM_Locate_DevNodeA id=" + std::string(deviceId == nullptr ? "none" : deviceId) +
                 " flags=" + std::to_string(flags));
    *node = Answer("Node").empty() ? 1 : AnswerNumber("Node");
    return AnswerNumber("Locate");
}

extern "C" __declspec(dllexport) CONFIGRET WINAPI CM_Reenumerate_DevNode(DEVINST node, ULONG flags)
{
    WriteJournal("CM_Reenumerate_DevNode node=" + std::to_string(node) + " flags=" + std::to_string(flags));
    return AnswerNumber("Reenumerate");
}
