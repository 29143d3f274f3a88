// Rows of a cached table: insert, delete, update, and the rows that a cache brings from an earlier run. Each operation
// holds the table lock from its first touch of the cache to its last, so a handle never goes stale in between.
#include <ctime>
#include <memory>
#include <vector>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelString.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/CZelRWLock.h"
#include "foundations/port/ZelDebug.h"
#include "foundations/port/ZelPrefetch.h"
#include "oql/CZelDelete.h"
#include "oql/CZelUpdate.h"
#include "store/CZelCacheWalk.h"
#include "store/CZelIndexLoader.h"
#include "store/CZelRecordCache.h"
#include "store/CZelRowKeys.h"
#include "store/CZelStoreGuard.h"
#include "store/CZelTable.h"
#include "store/CZelTable_change.h"
#include "store/CZelTable_plan.h"
#include "store/CZelTblCallback.h"

namespace {

CZelAtom *handleIn(const CZelPointer *node) {
    return static_cast<CZelAtom *>(node->RPData());
}

// Of many rows the last failure counts.
int latest(int status, int outcome) {
    return outcome != 1 ? outcome : status;
}

// A look ahead along handles: while one row is at work, the memory finds the handles, with their entries, and the
// records of some that follow.
class HandlesAhead {
public:
    HandlesAhead(const CZelRecordCache &cache, const CZelBag &handles)
        : m_cache(cache), m_handle(handles.RBFirst()), m_record(m_handle) {
        for (int i = 0; i < APART; ++i)
            askForHandle();
        for (int i = 0; i < APART; ++i)
            advance();
    }

    void advance() {
        askForHandle();
        if (const CZelAtom *handle = take(m_record))
            m_cache.RRCAskForRecord(*handle);
    }

private:
    static constexpr int APART = 2;

    static const CZelAtom *take(const CZelPointer *&node) {
        if (node == nullptr)
            return nullptr;
        const CZelAtom *handle = handleIn(node);
        node = CZelBag::RBNext(node);
        return handle;
    }
    void askForHandle() { ZelPrefetch(take(m_handle)); }

    const CZelRecordCache &m_cache;
    const CZelPointer *m_handle;
    const CZelPointer *m_record;
};

int fail(int code, const char *what, const CZelAtom *table) {
    CZelString text(what);
    text.RSStrCat(table);
    return ZEL_FAIL(code, text.RSString());
}

}  // namespace

// Nothing is written for a row that a unique tree would refuse.
int CZelTable::addCachedRow(CZelRecord *record, __boolean flag) {
    const CZelStoreGuard guard(*m_lock, CZelStoreGuard::WRITER);
    fillLateIndexes();
    int status = plan().checkUniques(*record);
    if (status != 1)
        return status;
    CZelAtom *handle = nullptr;
    status = m_cache->RRCCacheRecord(record, &handle, E_RBTrue);
    if (status != 1)
        return fail(status, "CZelTable::RTAddRow: the row can't be stored in the cache of ", m_identifier);
    status = plan().enter(*record, handle);
    if (status != 1)
        return takeBack(handle, status);
    if (m_active != nullptr)
        m_active->RTCPostAdd(this, record, m_activeArgument, flag);
    record->UsedByDatabase();  // as a stored row, which ends here: the cache has its own
    record->DroppedFromDatabase();
    return 1;
}

int CZelTable::takeBack(CZelAtom *handle, int refusal) {
    const int status = m_cache->RRCDeleteRecord(handle);
    if (status != 1)
        fail(status, "CZelTable::RTAddRow: a refused row stays in the cache of ", m_identifier);
    return refusal == E_RCKeyExists ? refusal : fail(refusal, "CZelTable::RTAddRow: an index refused ", m_identifier);
}

int CZelTable::deleteCachedRows(CZelDelete &statement, __boolean flag) {
    const CZelStoreGuard guard(*m_lock, CZelStoreGuard::WRITER);
    fillLateIndexes();
    const std::unique_ptr<CZelBag> handles(identities(statement.RDFilter(), E_RBFalse));
    if (handles == nullptr || handles->RBLength() == 0)
        return E_RCNotFound;
    int status = 1;
    for (CZelCacheWalk walk(*m_cache, handles.get()); walk.hasRow(); walk.advance())
        status = latest(status, deleteCachedRow(walk.record(), walk.handle(), flag));
    return status;
}

// The record is the cache's and goes with the row: the events see a copy.
int CZelTable::deleteCachedRow(const CZelRecord &record, CZelAtom *handle, __boolean flag) {
    std::unique_ptr<CZelRecord> copy;
    if (m_active != nullptr) {
        copy = std::make_unique<CZelRecord>(record);
        if (m_active->RTCPreDelete(this, copy.get(), m_activeArgument, flag) != E_RBTrue)
            return 1;
    }
    plan().leave(record, handle);
    const int status = m_cache->RRCDeleteRecord(handle);
    if (status != 1) {
        reenter(handle);
        return fail(status, "CZelTable::RTDeleteRows: a row stays in the cache of ", m_identifier);
    }
    if (m_active != nullptr)
        m_active->RTCPostDelete(this, copy.get(), m_activeArgument, flag);
    return 1;
}

// A row that could not be deleted is found by its indexes again.
void CZelTable::reenter(CZelAtom *handle) {
    CZelBag one;
    one.RBAdd(static_cast<void *>(handle));
    const CZelCacheWalk walk(*m_cache, &one);
    if (walk.hasRow())
        plan().enter(walk.record(), handle);
}

struct CZelTable::CachedUpdate {
    // What an indexed column held before a change.
    struct Former {
        const Change *m_change;
        CZelAtom m_value;
    };

    std::vector<Change> m_changes;
    CZelAtom m_now;
    __boolean m_flag;
    std::vector<Former> m_formers;  // of the row in progress
};

// Row by row: at most one copy is held.
int CZelTable::updateCachedRows(CZelUpdate &statement, CZelDoubleList *changes, __boolean flag) {
    const CZelStoreGuard guard(*m_lock, CZelStoreGuard::WRITER);
    fillLateIndexes();
    const std::unique_ptr<CZelBag> handles(identities(statement.RUFilter(), E_RBFalse));
    if (handles == nullptr)
        return E_RCNotFound;
    int status = checkUpdateOfRows(*handles, changes);
    if (status != 1)
        return status;
    CachedUpdate update{resolveChanges(changes), CZelAtom(static_cast<long>(std::time(nullptr))), flag, {}};
    HandlesAhead ahead(*m_cache, *handles);
    for (const CZelPointer *node = handles->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        ahead.advance();
        std::unique_ptr<CZelRecord> row(m_cache->RRCCopyRecord(handleIn(node)));
        if (row == nullptr)
            fail(E_RCBadArgument, "CZelTable::RTUpdateRows: a row is passed over in the cache of ", m_identifier);
        else if (isUpdateAccepted(row.get(), flag, statement))
            status = latest(status, updateCachedRow(std::move(row), handleIn(node), update));
    }
    return status;
}

// The changed copy takes the place of the cached record. Where the cache can't store it, the row keeps what it had, in
// the indexes too.
int CZelTable::updateCachedRow(std::unique_ptr<CZelRecord> row, CZelAtom *handle, CachedUpdate &update) {
    int status = 1;
    update.m_formers.clear();
    for (const Change &change : update.m_changes) {
        const CZelAtom *former = change.m_tree != nullptr ? row->RRValueOf(change.m_column) : nullptr;
        if (change.m_tree != nullptr)
            update.m_formers.push_back({&change, former != nullptr ? *former : CZelAtom()});
        status = latest(status, applyChange(*row, handle, change));
    }
    stamp(*row, update.m_now);
    const bool isLookedAt = m_active != nullptr || !update.m_formers.empty();  // after it is stored
    const int stored = isLookedAt ? m_cache->RRCUpdateRecord(row.get(), handle, E_RBTrue)
                                  : m_cache->RRCUpdateRecord(row.release(), handle, E_RBFalse);
    if (stored != 1) {
        if (row != nullptr)  // a row that the cache took over touched no index
            putBack(*row, handle, update);
        return fail(stored, "CZelTable::RTUpdateRows: a row keeps what it had in the cache of ", m_identifier);
    }
    if (m_active != nullptr)
        m_active->RTCPostUpdate(this, row.get(), m_activeArgument, update.m_flag);
    return status;
}

// From the last change to the first, so that a column changed twice ends with what it had at first.
void CZelTable::putBack(CZelRecord &row, CZelAtom *handle, const CachedUpdate &update) {
    for (auto former = update.m_formers.rbegin(); former != update.m_formers.rend(); ++former) {
        Change change = *former->m_change;
        change.m_value = &former->m_value;
        updateIndexed(row, handle, change);
    }
}

void CZelTable::rebuildIndexes() {
    const CZelStoreGuard guard(*m_lock, CZelStoreGuard::WRITER);
    if (!loadIndexes())
        enterRowByRow();
    m_cache->RRCFillMemory();
}

// What the cache found when it read its file serves once: rows change from now on.
bool CZelTable::loadIndexes() {
    CZelRowKeys keys;
    if (m_rowKeys != nullptr)
        std::swap(keys, *m_rowKeys);
    if (CZelIndexLoader(plan().indexes()).load(*m_cache, keys) != 1)
        return false;
    if (plan().isKeyInTrees())
        return true;
    for (const SZelIndexValue &index : plan().indexes())
        index.m_tree->RBPTEmpty();
    return false;
}

// A key that the table has got since, or that was broken on disk, keeps the first row only.
void CZelTable::enterRowByRow() {
    for (CZelCacheWalk walk(*m_cache, nullptr); walk.hasRow(); walk.advance()) {
        int status = plan().checkKey(walk.record());
        if (status != E_RCKeyExists)
            status = plan().enter(walk.record(), walk.handle());
        if (status == E_RCKeyExists)
            removeBreaking(walk.record(), walk.handle());
        else if (status != 1)
            fail(E_RCBadArgument, "CZelTable::RDOInitialise: a row does not enter the indexes of ", m_identifier);
    }
}

void CZelTable::removeBreaking(const CZelRecord &record, CZelAtom *handle) {
    if (__Zeltronix_Debug_Level >= 1)
        record.RRPrint();
    fail(E_RCKeyExists, "CZelTable::RDOInitialise: a row breaks a key and is removed from ", m_identifier);
    const int status = m_cache->RRCDeleteRecord(handle);
    if (status != 1)
        fail(status, "CZelTable::RDOInitialise: it could not be removed from ", m_identifier);
}
