// A walk over rows of a cached table. Each row is looked at where it lies: one in memory is not copied, and one in the
// file is not brought into memory. A walk that is told which columns it is about picks them out of the encodings.
//
// One row is at hand at a time. It goes with the next step and with any other call to the cache. A row that the cache
// can't give is reported and passed over.
//
// By handle, the present row may be deleted from the cache, and the walk goes on behind it. By place, the cache stays
// as it is; the rows in memory come first, then the others from the front of the file to its end. That reads each part
// of the file once, wherever updates have moved the rows. What such a walk keeps is given in the order of the handles.
//
// Requires: the table lock is held as writer for as long as the walk lives.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "store/CZelColumnReader.h"
#include "store/CZelNumberSet.h"
#include "store/CZelRecordCache.h"

class CZelAtom;
class CZelROMPColumns;

class CZelCacheWalk {
public:
    enum Order { BY_HANDLE, BY_PLACE };

    // No columns: all of them. No handles: all rows, in the order of their handles unless another is asked for.
    CZelCacheWalk(CZelRecordCache &cache, const CZelBag *handles, CZelROMPColumns *columns = nullptr,
                  Order order = BY_HANDLE);
    CZelCacheWalk(const CZelCacheWalk &) = delete;
    CZelCacheWalk &operator=(const CZelCacheWalk &) = delete;

    bool hasRow() const { return m_hasRow; }
    CZelAtom *handle() const { return m_isByPlace ? m_cache.RRCHandle(m_number) : m_handle; }
    std::size_t number() const;  // of the handle
    void advance();

    bool isPicked() const {
        return m_row.m_record == nullptr;
    }                                                       // the values are in the columns, and no record is there
    CZelRecord &record() const { return *m_row.m_record; }  // Requires: it is there

    CZelRecord *copy() const { return CZelRecordCache::RRCCopyOf(m_row); }  // the caller's; null is reported

    // Of the present row, the handle or a copy, which becomes whose the bag is. A copy that can't be made is reported
    // and left out. A walk keeps either handles or copies.
    void keepHandle();
    void keepCopy();
    void appendKept(CZelBag &rows) const;

private:
    void find(const CZelPointer *node);
    void findPlaced();
    bool take(bool isFound);

    CZelRecordCache &m_cache;
    CZelROMPColumns *m_columns;
    bool m_isByPlace;
    bool m_hasRow = false;
    SZelCachedRow m_row;
    std::unique_ptr<CZelRecord> m_decoded;  // the record, if it is not the cache's
    std::vector<void *> m_kept;             // by place only copies, under the numbers of their handles

    // By handle.
    const CZelPointer *m_next = nullptr;
    CZelAtom *m_handle = nullptr;

    // By place.
    std::vector<int> m_inMemory;  // numbers of handles
    std::size_t m_nextInMemory = 0;
    std::size_t m_nextPage = 0;
    int m_number = 0;             // of the present row's handle
    CZelNumberSet m_keptHandles;  // by their numbers
    bool m_keepsHandles = false;
};
