// A walk over rows of a cached table. Each row is looked at where it lies: one in memory is not copied, and one in the
// file is not brought into memory. A walk that is told which columns it is about picks them out of the encodings.
//
// One row is at hand at a time. It goes with the next step and with any other call to the cache. A row that the cache
// can't give is reported and passed over.
//
// By handle, the present row may be deleted from the cache, and the walk goes on behind it. By place, the cache stays
// as it is; the rows in memory come first, then the others from the front of the file to its end. That reads each part
// of the file once, wherever updates have moved the rows.
//
// Requires: the table lock is held as writer for as long as the walk lives.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "store/CZelRecordCache.h"

class CZelAtom;
class CZelROMPColumns;

class CZelCacheWalk {
public:
    // By handle. No columns: all of them. No handles: all rows, in the order of their handles.
    CZelCacheWalk(CZelRecordCache &cache, const CZelBag *handles, CZelROMPColumns *columns = nullptr);
    // By place, or all rows by handle in a cache that has no places. Pages: of the rows in the file only those that
    // begin there.
    enum Where { ANYWHERE, IN_MEMORY, IN_FILE };
    CZelCacheWalk(CZelRecordCache &cache, CZelROMPColumns *columns, Where where,
                  const std::vector<int> *pages = nullptr);
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

private:
    void find(const CZelPointer *node);
    void findInMemory();
    void findInFile();
    void lookAhead() const;
    const CZelAtom *handleAhead(std::size_t rows) const;
    bool take(bool isFound);

    CZelRecordCache &m_cache;
    CZelROMPColumns *m_columns;
    bool m_isByPlace;
    Where m_where = ANYWHERE;
    bool m_hasRow = false;
    SZelCachedRow m_row;
    std::unique_ptr<CZelRecord> m_decoded;  // the record, if it is not the cache's

    // By handle.
    const CZelPointer *m_next = nullptr;
    CZelAtom *m_handle = nullptr;

    // By place.
    std::vector<int> m_inMemory;  // numbers of handles
    std::size_t m_nextInMemory = 0;
    const std::vector<int> *m_pages = nullptr;  // null: all
    std::size_t m_nextPage = 0;                 // of these
    int m_number = 0;                           // of the present row's handle
};
