#include "foundations/base/CZelSmartRecord.h"

constinit CZelMutex CZelSmartRecord::ms_UseCountMutex;

namespace {

int compareNames(const void *left, const void *right) {
    const CZelVarBind *mine = *static_cast<const CZelVarBind *const *>(left);
    const CZelVarBind *theirs = *static_cast<const CZelVarBind *const *>(right);
    return mine->RVBName().RALex(&theirs->RVBName(), nullptr);
}

}  // namespace

CZelSmartRecord::~CZelSmartRecord() = default;

void CZelSmartRecord::RSRAddUser() {
    CZelAutoMutex guard(ms_UseCountMutex);
    ++m_users;
}

void CZelSmartRecord::RSRDeleteUser() {
    ms_UseCountMutex.Lock();
    bool wasLast = --m_users == 0;
    ms_UseCountMutex.Unlock();
    if (wasLast)
        delete this;
}

int CZelSmartRecord::RSRUsers() const {
    CZelAutoMutex guard(ms_UseCountMutex);
    return m_users;
}

void CZelSmartRecord::RSRSortRecord() {
    m_values.RVBLSortList(compareNames);
}

void CZelSmartRecord::BeginRead() {
    m_lock.Lock();
}

void CZelSmartRecord::EndRead() {
    m_lock.Unlock();
}

void CZelSmartRecord::BeginWrite() {
    m_lock.Lock();
}

void CZelSmartRecord::EndWrite() {
    m_lock.Unlock();
}

void CZelSmartRecord::UsedByDatabase() {
    RSRAddUser();
}

void CZelSmartRecord::DroppedFromDatabase() {
    RSRDeleteUser();
}
