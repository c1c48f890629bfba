#include "HbaOperation.h"

#include "OrvDebug.h"
#include "OrvString.h"

bool HbaNarrowName(const wchar_t* name, std::array<char, kHbaNameBytes>& narrow)
{
    return COrvString::OrvWideCharToMultiByte(CP_ACP, 0, name, -1, narrow.data(), static_cast<int>(narrow.size()),
                                              nullptr, nullptr) >= 1;
}

CHBAAPIOperation::CHBAAPIOperation(const char* name) : m_name(name)
{
    OrvTrace().Print("Entering CHBAAPIInt::%s", m_name);
}

CHBAAPIOperation::~CHBAAPIOperation()
{
    if (m_mutex) {
        m_mutex->Unlock();
    }
    OrvTrace().Print("Exiting CHBAAPIInt::%s", m_name);
}

bool CHBAAPIOperation::TakeMutex()
{
    m_mutex.emplace();
    if (m_mutex->Lock()) {
        return true;
    }
    TraceFailure("failed to acquire Mutex");
    return false;
}

bool CHBAAPIOperation::Succeeded(HBA_STATUS status) const
{
    if (status != HBA_STATUS_OK) {
        OrvTrace().Print("CHBAAPIInt::%s failed - Status - %d", m_name, static_cast<int>(status));
    }
    return status == HBA_STATUS_OK;
}

bool CHBAAPIOperation::Refuse(const char* reason) const
{
    TraceFailure(reason);
    return false;
}

void CHBAAPIOperation::TraceTableNotInited() const
{
    OrvTrace().Print("m_bEntryPtsInited is false");
}

void CHBAAPIOperation::TraceFailure(const char* what) const
{
    OrvTrace().Print("CHBAAPIInt::%s %s", m_name, what);
}
