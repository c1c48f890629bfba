#include "RestorePoint.h"

#include <array>
#include <cstring>

#include "LangString.h"
#include "Trace.h"

SetRestorePointFn setRestorePoint = nullptr;

namespace {
constexpr int kDescriptionBytes = 256;

// The 8-bit text is copied byte for byte into the wide field, without conversion. Restore-point lists have always shown
// this program's points that way.
void SetDescription(RESTOREPOINTINFOW& record)
{
    std::array<char, sizeof(record.szDescription)> description{};
    LoadLangString(resourceModule, kStringRestorePoint, description.data(), kDescriptionBytes);
    std::memcpy(record.szDescription, description.data(), description.size());
}
} // namespace

int BeginRestorePoint(RESTOREPOINTINFOW& record, int64_t& sequence)
{
    Trace("Entering BeginRestorePoint");
    sequence = 0;
    int started = 0;
    if (setRestorePoint != nullptr) {
        record = {};
        record.dwEventType = BEGIN_NESTED_SYSTEM_CHANGE;
        record.dwRestorePtType = DEVICE_DRIVER_INSTALL;
        record.llSequenceNumber = 0;
        SetDescription(record);
        STATEMGRSTATUS status{};
        if (setRestorePoint(&record, &status) != FALSE) {
            Trace("Successfully started the system restore point");
            sequence = status.llSequenceNumber;
            started = 1;
        } else {
            Trace("call to restore point function failed!");
            if (status.nStatus == ERROR_SERVICE_DISABLED) {
                Trace("The service does not exist");
            }
        }
    }
    Trace("Exiting BeginRestorePoint");
    return started;
}

int EndRestorePoint(RESTOREPOINTINFOW& record, int64_t sequence)
{
    Trace("Entering EndRestorePoint");
    if (setRestorePoint == nullptr || sequence == 0) {
        return 0;
    }
    record.dwEventType = END_NESTED_SYSTEM_CHANGE;
    record.llSequenceNumber = sequence;
    STATEMGRSTATUS status{};
    const int result = setRestorePoint(&record, &status);
    if (result == 0) {
        Trace("Call to restore point (END_NESTED_SYSTEM_CHANGE) failed!");
    }
    Trace("Exiting EndRestorePoint");
    return result;
}
