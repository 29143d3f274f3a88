// A row that is counted and lockable, for rows shared between a store and its callers.
//
// It starts with one user, its maker, and dies when the count reaches zero; only RSRDeleteUser releases it.
// One lock guards the counts of all smart records and is held for the change of a count alone; each record
// has a lock of its own for BeginRead and BeginWrite, which exclude each other.
#pragma once

#include "foundations/base/CZelRecord.h"
#include "foundations/port/CZelMutex.h"

class QUINTOR_API CZelSmartRecord : public CZelRecord {
public:
    ZEL_POOLED

    CZelSmartRecord() = default;
    explicit CZelSmartRecord(const CZelVBList *values) : CZelRecord(values) {}
    explicit CZelSmartRecord(CZelVBList *values) : CZelRecord(values) {}
    CZelSmartRecord(const CZelRecord &other) : CZelRecord(other) {}
    CZelSmartRecord(const CZelSmartRecord &other) : CZelRecord(other) {}  // a row of its own, with one user

    void RSRAddUser();
    void RSRDeleteUser();  // deletes the record with its last user
    void RSRSortRecord();  // the bindings by RALex on their names
    int RSRUsers() const;

    void BeginRead() override;
    void EndRead() override;
    void BeginWrite() override;
    void EndWrite() override;
    void UsedByDatabase() override;       // one user more
    void DroppedFromDatabase() override;  // one user fewer

private:
    ~CZelSmartRecord() override;

    int m_users = 1;
    CZelMutex m_lock;
    static CZelMutex ms_UseCountMutex;
};
