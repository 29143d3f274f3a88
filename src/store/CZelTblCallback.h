// The event sink of a table: it sees each row that enters, changes or leaves, and its pre-events can refuse
// the row. Not owned by the table.
//
// Events run inside the operation on its thread, with the store lock held as writer: a handler keeps to the
// table and record it was given. `argument` is the int given with the callback, `flag` that of the operation.
#pragma once

#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class CZelRecord;
class CZelTable;
class CZelUpdate;

class QUINTOR_API CZelTblCallback {
public:
    CZelTblCallback() = default;
    CZelTblCallback(const CZelTblCallback &) = delete;
    CZelTblCallback &operator=(const CZelTblCallback &) = delete;
    virtual ~CZelTblCallback();

    virtual __boolean RTCPreAdd(CZelTable *table, CZelRecord *record, int argument, __boolean flag) = 0;
    virtual void RTCPostAdd(CZelTable *table, CZelRecord *record, int argument, __boolean flag) = 0;
    virtual __boolean RTCPreDelete(CZelTable *table, CZelRecord *record, int argument, __boolean flag) = 0;
    virtual void RTCPostDelete(CZelTable *table, CZelRecord *record, int argument, __boolean flag) = 0;
    virtual __boolean RTCPreUpdate(CZelTable *table, CZelRecord *record, int argument, __boolean flag) = 0;
    virtual void RTCPostUpdate(CZelTable *table, CZelRecord *record, int argument, __boolean flag) = 0;
    // Before RTCPreUpdate; it alone sees the statement.
    virtual __boolean RTCPrePreUpdate(CZelTable *table, CZelRecord *record, int argument, __boolean flag,
                                      CZelUpdate *statement);
    // An insert with unique (...) ran into this row: before and after its counters and timestamps change.
    virtual __boolean RTCPreDuplicate(CZelTable *table, CZelRecord *record, int argument, __boolean flag);
    virtual void RTCPostDuplicate(CZelTable *table, CZelRecord *record, int argument, __boolean flag);
    virtual void RTCInitialised(CZelTable *table, int argument) = 0;
    virtual void RTCDestroyed(CZelTable *table, int argument) = 0;
};
