// Stands in for cfgmgr32.dll. Answers (section Answers of cfgmgr32.answers.ini, all optional):
//   Node          the node that is located, 1 when not given
//   Locate        result of the location, 0 (success) when not given
//   Reenumerate   result of the scan, 0 when not given
//   StateResult   result of the question for a device's state, 0 when not given
//   Status, Problem
//                 that state, 0 when not given
//   Status<n>, Problem<n>
//                 the state that the n-th question is answered, from 1, where it differs

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

extern "C" __declspec(dllexport) CONFIGRET WINAPI
    CM_Get_DevNode_Status(PULONG status, PULONG problem, DEVINST node, ULONG flags)
{
    static unsigned calls = 0;
    const std::string call = std::to_string(++calls);
    WriteJournal("CM_Get_DevNode_Status flags=" + std::to_string(flags) + (node == 0 ? " of no node" : ""));
    *status = AnswerNumber(Answer("Status" + call).empty() ? "Status" : "Status" + call);
    *problem = AnswerNumber(Answer("Problem" + call).empty() ? "Problem" : "Problem" + call);
    return AnswerNumber("StateResult");
}
