// A walk over rows of a cached table. Each row's record is looked at where it lies: one in memory is not copied.
//
// One record is at hand at a time. It goes with the next step and with any other call to the cache; the present row
// may be deleted from the cache, the walk goes on behind it. A row whose record the cache can't give is reported and
// passed over.
//
// Requires: the table lock is held as writer for as long as the walk lives.
#pragma once

#include "foundations/base/CZelBag.h"

class CZelAtom;
class CZelRecord;
class CZelRecordCache;

class CZelCacheWalk {
public:
    CZelCacheWalk(CZelRecordCache &cache, const CZelBag *handles);  // null: all rows, in the order of their handles
    CZelCacheWalk(const CZelCacheWalk &) = delete;
    CZelCacheWalk &operator=(const CZelCacheWalk &) = delete;
    ~CZelCacheWalk();

    bool hasRow() const { return m_record != nullptr; }
    CZelAtom *handle() const { return static_cast<CZelAtom *>(m_handle); }
    CZelRecord &record() const { return *m_record; }
    void advance();

private:
    void find(const CZelPointer *node);
    void letGo();

    CZelRecordCache &m_cache;
    const CZelPointer *m_next = nullptr;
    void *m_handle = nullptr;
    CZelRecord *m_record = nullptr;  // null at the end
    bool m_isOwned = false;
};
