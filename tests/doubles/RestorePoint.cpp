// Stands in for srclient.dll. Answers (section Answers of srclient.answers.ini, all optional):
//   Fail=1      every call fails
//   FailEnd=1   the call that ends a restore point fails
//   HoldEnd=1   that call lasts until the file srclient.release is beside the library
//   Status      status reported, 0 when not given
//   Sequence    sequence number reported

#include <windows.h>
// srrestoreptapi.h needs windows.h first.
#include <srrestoreptapi.h>

#include <string>

#include "Journal.h"

namespace {
std::string HexBytes(const void* data, size_t bytes)
{
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (size_t i = 0; i < bytes; ++i) {
        const unsigned char byte = static_cast<const unsigned char*>(data)[i];
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}
} // namespace

extern "C" __declspec(dllexport) BOOL WINAPI SRSetRestorePointW(PRESTOREPOINTINFOW point, PSTATEMGRSTATUS status)
{
    WriteJournal("SRSetRestorePointW event=" + std::to_string(point->dwEventType) + " type=" +
                 std::to_string(point->dwRestorePtType) + " sequence=" + std::to_string(point->llSequenceNumber) +
                 " description=" + HexBytes(point->szDescription, sizeof(point->szDescription)));
    status->nStatus = AnswerNumber("Status");
    status->llSequenceNumber = static_cast<INT64>(AnswerNumber("Sequence"));
    const bool ends = point->dwEventType == END_NESTED_SYSTEM_CHANGE;
    if (ends && AnswerNumber("HoldEnd") != 0) {
        HoldUntilThereIs("srclient.release");
    }
    const bool fails = AnswerNumber("Fail") != 0 || (ends && AnswerNumber("FailEnd") != 0);
    return fails ? FALSE : TRUE;
}
