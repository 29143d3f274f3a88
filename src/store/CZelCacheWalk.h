// A walk over rows of a cached table. Each row is looked at where it lies: one in memory is not copied, and one in the
// file is not brought into memory. A walk that is told which columns it is about picks them out of the encodings.
//
// One row is at hand at a time. It goes with the next step and with any other call to the cache; the present row
// may be deleted from the cache, the walk goes on behind it. A row that the cache can't give is reported and
// passed over.
//
// Requires: the table lock is held as writer for as long as the walk lives.
#pragma once

#include <memory>

#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "store/CZelColumnReader.h"
#include "store/CZelRecordCache.h"

class CZelAtom;
class CZelROMPColumns;

class CZelCacheWalk {
public:
    // No handles: all rows, in the order of their handles. No columns: all of them.
    CZelCacheWalk(CZelRecordCache &cache, const CZelBag *handles, CZelROMPColumns *columns = nullptr);
    CZelCacheWalk(const CZelCacheWalk &) = delete;
    CZelCacheWalk &operator=(const CZelCacheWalk &) = delete;

    bool hasRow() const { return m_handle != nullptr; }
    CZelAtom *handle() const { return m_handle; }
    void advance();

    bool isPicked() const {
        return m_row.m_record == nullptr;
    }                                                       // the values are in the columns, and no record is there
    CZelRecord &record() const { return *m_row.m_record; }  // Requires: it is there
    CZelRecord *copy() const { return CZelRecordCache::RRCCopyOf(m_row); }  // the caller's; null is reported

private:
    void find(const CZelPointer *node);
    bool lookAt(CZelAtom *handle);

    CZelRecordCache &m_cache;
    CZelROMPColumns *m_columns;
    const CZelPointer *m_next = nullptr;
    CZelAtom *m_handle = nullptr;  // null at the end
    SZelCachedRow m_row;
    std::unique_ptr<CZelRecord> m_decoded;  // the record, if it is not the cache's
};
