// Stands in for iscsidsc.dll. Answers (section Answers of <own name>.answers.ini, all optional):
//   Major, Minor, Build  the initiator's version, 0.0.0 when not given
//   Status               status of the version query, 0 (success) when not given; the version is not written then
//   Quiet=1              no journal: for tests that count handles over many calls

#include <windows.h>

#include "Journal.h"

// The compiler's own header for this library does not compile. This is the platform's documented record.
struct ISCSI_VERSION_INFO
{
    ULONG MajorVersion;
    ULONG MinorVersion;
    ULONG BuildNumber;
};

extern "C" __declspec(dllexport) HRESULT WINAPI GetIScsiVersionInformation(ISCSI_VERSION_INFO* versionInfo)
{
    if (AnswerNumber("Quiet") == 0) {
        WriteJournal("GetIScsiVersionInformation");
    }
    if (const uint32_t status = AnswerNumber("Status"); status != 0) {
        return static_cast<HRESULT>(status);
    }
    versionInfo->MajorVersion = AnswerNumber("Major");
    versionInfo->MinorVersion = AnswerNumber("Minor");
    versionInfo->BuildNumber = AnswerNumber("Build");
    return 0;
}
