// Queries over several tables.
//
// The first table of the list holds the tuples of the query, so its join mutex is held, behind the store lock, from
// the walk until they are deleted.
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <vector>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/ZelDebug.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "oql/CZelQuery.h"
#include "store/CZelDatabase.h"
#include "store/CZelJoinTaker.h"
#include "store/CZelStore.h"
#include "store/CZelStoreGuard.h"
#include "store/CZelTable.h"
#include "store/CZelTuple.h"
#include "store/CZelTupleProjection.h"

namespace {

void setStatus(EZelStoreErrorStatus *status, EZelStoreErrorStatus value) {
    if (status != nullptr)
        *status = value;
}

const CZelPointer *firstSource(const CZelQuery *query) {
    return query != nullptr && query->RQSource() != nullptr ? query->RQSource()->RBFirst() : nullptr;
}

CZelDbEntity *entityIn(const CZelPointer *node) {
    return static_cast<CZelDbEntity *>(node->RPData());
}

std::unique_lock<std::mutex> joinLockOf(CZelTable *table) {
    return table != nullptr ? std::unique_lock<std::mutex>(table->RTJoinMutex()) : std::unique_lock<std::mutex>();
}

CZelDbEntity *columnOf(const CZelPointer *selected) {
    const auto *item = static_cast<const CZelExpr *>(selected->RPData());
    return item != nullptr ? item->REEntityVal() : nullptr;
}

const CZelPointer *firstSelected(const CZelQuery &query) {
    return query.RQSelectStar() != E_RBTrue && query.RQSelection() != nullptr ? query.RQSelection()->RBFirst()
                                                                              : nullptr;
}

void appendColumns(const CZelQuery &query, CZelBag &columns) {
    for (const CZelPointer *node = firstSelected(query); node != nullptr; node = CZelBag::RBNext(node)) {
        if (CZelDbEntity *column = columnOf(node))
            columns.RBAdd(static_cast<void *>(column));
    }
}

void reportOthers(const CZelQuery &query) {
    for (const CZelPointer *node = firstSelected(query); node != nullptr; node = CZelBag::RBNext(node)) {
        if (columnOf(node) == nullptr)
            ZEL_REPORT(E_RCBadArgument, "CZelStore::RSJoinedQuery: a selection that names no column");
    }
}

CZelRecord *countRecord(int count) {
    auto *record = new CZelRecord;
    record->RRAddOrSetValue("Count", count);
    return record;
}

// Everything that the tuples hold is asked for from the memory.
void prefetchAll(const std::vector<CZelTuple> &tuples) {
    for (const CZelTuple &tuple : tuples) {
        for (std::size_t i = 0; i < tuple.RTLength(); ++i)
            tuple.RTEntries()[i].m_record->RRVbIterator()->RVBLPrefetch();
    }
    for (const CZelTuple &tuple : tuples) {
        for (std::size_t i = 0; i < tuple.RTLength(); ++i)
            tuple.RTEntries()[i].m_record->RRVbIterator()->RVBLPrefetchValues();
    }
}

// How tuples leave the store: as records.
struct AsRecord {
    static void *whole(const CZelTuple &tuple) { return tuple.RTRecord(); }
    static void *selected(const CZelTuple &tuple, CZelTupleProjection &columns) { return columns.project(tuple); }
    static void *count(int number) { return countRecord(number); }
};

// As data atoms.
struct AsBlock {
    static void *whole(const CZelTuple &tuple) {
        int length = 0;
        unsigned char *block = CZelTuple(tuple).RRTakeROMP(length);
        return new CZelAtom(block, length);
    }
    static void *selected(const CZelTuple &tuple, CZelTupleProjection &columns) {
        int length = 0;
        unsigned char *block = columns.encode(tuple, length);
        return new CZelAtom(block, length);
    }
    static void *count(int number) {
        const std::unique_ptr<CZelRecord> record(countRecord(number));
        unsigned char *block = nullptr;
        int length = 0;
        record->ROMEncode(&block, &length);
        return new CZelAtom(block, length);
    }
};

// Makes the rows of a query's result out of tuples.
template <class Form>
class Result : public CZelJoinTaker {
public:
    Result(const CZelQuery &query, CZelBag &out)
        : m_isWhole(query.RQSelectStar() == E_RBTrue), m_columns(columnsOf(query)), m_out(out) {}
    explicit Result(const Result *sample) : m_isWhole(sample->m_isWhole), m_columns(sample->m_columns), m_out(m_own) {}

    void take(const std::vector<CZelTuple> &rows) override {
        if (m_isWhole)
            prefetchAll(rows);
        else
            m_columns.prefetch(rows);
        for (const CZelTuple &row : rows)
            m_out.RBAdd(m_isWhole ? Form::whole(row) : Form::selected(row, m_columns));
    }

    std::unique_ptr<CZelJoinTaker> another() const override {
        return m_columns.isShareable() ? std::make_unique<Result>(this) : nullptr;
    }
    void append(CZelJoinTaker &other) override {
        m_out.RBIterator()->RDLTakeFrom(*static_cast<Result &>(other).m_out.RBIterator());
    }

private:
    static CZelTupleProjection columnsOf(const CZelQuery &query) {
        CZelBag columns;
        appendColumns(query, columns);
        return CZelTupleProjection(&columns);
    }

    bool m_isWhole;
    CZelTupleProjection m_columns;
    CZelBag m_own;
    CZelBag &m_out;
};

void say(const char *text, const char *name) {
    if (__Zeltronix_Debug_Level >= 1)
        std::printf("%s%s\n", text, name);
}

// Has the table of an identifier a cache? Each is looked up once.
class CachedTables {
public:
    explicit CachedTables(const CZelStore &store) : m_store(store), m_known(E_RBFalse) {}
    CachedTables(const CachedTables &) = delete;
    CachedTables &operator=(const CachedTables &) = delete;
    ~CachedTables() {
        const CZelDoubleList *nodes = m_known.RTLIterator();
        for (CZelListable *node = nodes->RDLHead(); node != nullptr; node = nodes->RDLGetNext(node))
            delete static_cast<CZelAtom *>(static_cast<CZelPointer *>(node)->RPData());
    }

    bool holds(const CZelAtom &identifier) {
        auto *known = static_cast<const CZelAtom *>(m_known.RTLData(&identifier));
        if (known == nullptr) {
            auto *answer = new CZelAtom(isCached(identifier) ? 1 : 0);
            m_known.RTLAdd(&identifier, static_cast<void *>(answer), true);
            known = answer;
        }
        return known->RAInt() == 1;
    }

private:
    bool isCached(const CZelAtom &identifier) const {
        const CZelTable *table = find(identifier);
        if (table == nullptr)
            say("Could not find table with ID ", identifier.RAString());
        else if (table->RTIsCacheUsed() != E_RBTrue)
            say(identifier.RAString(), " not cached => no deletion");
        return table != nullptr && table->RTIsCacheUsed() == E_RBTrue;
    }

    // An identifier is database_table. Where the first "_" is one of the database's name the tables are asked.
    CZelTable *find(const CZelAtom &identifier) const {
        CZelDbEntity entity(identifier.RAString());
        const CZelDatabase *database = m_store.RSDatabase(entity.RDEDbNameAtom());
        CZelTable *table = database != nullptr ? m_store.RSTableNamed(&entity) : nullptr;
        return table != nullptr ? table : findAmongAll(identifier);
    }

    CZelTable *findAmongAll(const CZelAtom &identifier) const {
        CZelTable *found = nullptr;
        const std::unique_ptr<CZelDoubleList> tables(m_store.RSGetTables());
        for (CZelListable *node = tables->RDLHead(); node != nullptr; node = tables->RDLGetNext(node)) {
            const std::unique_ptr<CZelDbEntity> entity(entityIn(static_cast<const CZelPointer *>(node)));
            if (found == nullptr && identifier.RATextView() == entity->RDEIdent())
                found = m_store.RSTableNamed(entity.get());
        }
        return found;
    }

    const CZelStore &m_store;
    CZelTreeList m_known;
};

void freeIfCached(const SZelTupleEntry *entry, CachedTables &cached) {
    if (entry == nullptr)
        ZEL_REPORT(E_RCBadArgument, "CZelStore::RSTidyAfterJoinedQryFromCache: no entry");
    else if (entry->m_table == nullptr || entry->m_record == nullptr)
        say("Unexpected value returned from tuple", "");
    else if (entry->m_table->RAType() != E_RDTText)
        say("NULL table id", "");
    else if (cached.holds(*entry->m_table))
        delete entry->m_record;
}

}  // namespace

CZelDoubleList *CZelStore::RSRetrieveJoinTables(CZelQuery *query, EZelStoreErrorStatus *status, CZelTable **first) {
    EZelStoreErrorStatus found = E_RSEOk;
    auto tables = std::make_unique<CZelDoubleList>();
    *first = nullptr;
    for (const CZelPointer *node = firstSource(query); node != nullptr && found == E_RSEOk;
         node = CZelBag::RBNext(node)) {
        CZelTable *table = RSRetrieveTable(entityIn(node), found);
        if (table == nullptr)
            break;
        tables->RDLAddToListEnd(new CZelPointer(static_cast<void *>(table)));
        if (*first == nullptr)
            *first = table;
    }
    setStatus(status, found);
    return found == E_RSEOk ? tables.release() : nullptr;
}

CZelBag *CZelStore::RSExecJoinedQuery(CZelQuery *query, EZelStoreErrorStatus *status, __boolean takeLock) {
    const CZelStoreGuard guard(m_lock, takeLock == E_RBTrue ? CZelStoreGuard::READER : CZelStoreGuard::NONE);
    CZelTable *first = nullptr;
    const std::unique_ptr<CZelDoubleList> tables(RSRetrieveJoinTables(query, status, &first));
    if (tables == nullptr || first == nullptr)
        return nullptr;
    auto *tuples = new CZelBag;
    first->RTExecJoinedQuery(query->RQFilter(), tuples, tables.get(), nullptr, nullptr);
    return tuples;
}

CZelTable *CZelStore::firstJoined(const CZelQuery *query) const {
    EZelStoreErrorStatus status = E_RSEOk;
    CZelTable *table = nullptr;
    for (const CZelPointer *node = firstSource(query); node != nullptr && table == nullptr;
         node = CZelBag::RBNext(node))
        table = RSRetrieveTable(entityIn(node), status);
    return table;
}

bool CZelStore::isJoinCached(const CZelQuery *query) const {
    EZelStoreErrorStatus status = E_RSEOk;
    for (const CZelPointer *node = firstSource(query); node != nullptr; node = CZelBag::RBNext(node)) {
        const CZelTable *table = RSRetrieveTable(entityIn(node), status);
        if (table != nullptr && table->RTIsCacheUsed() == E_RBTrue)
            return true;
    }
    return false;
}

void CZelStore::RSPurgeJoinedQuery(CZelQuery *query) {
    if (__Zeltronix_Debug_Level == 4)
        std::puts("CZelStore::RSPurgeJoinedQuery()");
    CZelTable *first = firstJoined(query);
    if (first != nullptr)
        first->RTPurgeGarbage();
}

bool CZelStore::joinRows(CZelQuery *query, EZelStoreErrorStatus *status, CZelJoinTaker &taker) {
    CZelTable *first = nullptr;
    const std::unique_ptr<CZelDoubleList> tables(RSRetrieveJoinTables(query, status, &first));
    if (tables == nullptr || first == nullptr)
        return false;
    first->RTJoinInto(query->RQFilter(), tables.get(), taker);
    return true;
}

// The rows of cached tables are copies, which tuples hold together until all have been taken.
bool CZelStore::joinCopies(CZelQuery *query, EZelStoreErrorStatus *status, __boolean storeKeepsROMP,
                           CZelJoinTaker &taker) {
    const std::unique_ptr<CZelBag> tuples(RSExecJoinedQuery(query, status, E_RBFalse));
    if (tuples == nullptr)
        return false;
    std::vector<CZelTuple> one;
    for (const CZelPointer *node = tuples->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        one.clear();
        one.emplace_back(*static_cast<const CZelTuple *>(node->RPData()));
        taker.take(one);
    }
    if (storeKeepsROMP == E_RBTrue)
        RSTidyAfterJoinedQryFromCache(tuples.get());
    return true;
}

int CZelStore::countJoined(CZelQuery *query, EZelStoreErrorStatus *status) {
    CZelTable *first = nullptr;
    const std::unique_ptr<CZelDoubleList> tables(RSRetrieveJoinTables(query, status, &first));
    return tables != nullptr && first != nullptr ? first->RTCountJoinedQuery(query->RQFilter(), tables.get()) : 0;
}

template <class Form>
CZelBag *CZelStore::joinedResult(CZelQuery *query, EZelStoreErrorStatus *status, __boolean storeKeepsROMP, Form) {
    if (query == nullptr) {
        ZEL_REPORT(E_RCBadArgument, "CZelStore::RSJoinedQuery: no query");
        return nullptr;
    }
    const CZelStoreGuard guard(m_lock, CZelStoreGuard::READER);
    const std::unique_lock<std::mutex> joinLock = joinLockOf(firstJoined(query));
    auto *result = new CZelBag;
    if (query->RQSelectStar() == E_RBTrue && query->RQCountStar() == E_RBTrue) {
        result->RBAdd(Form::count(countJoined(query, status)));
        return result;
    }
    Result<Form> rows(*query, *result);
    const bool isJoined =
        isJoinCached(query) ? joinCopies(query, status, storeKeepsROMP, rows) : joinRows(query, status, rows);
    if (isJoined) {
        reportOthers(*query);
        RSPurgeJoinedQuery(query);
    }
    return result;
}

CZelBag *CZelStore::RSJoinedQueryGetRecs(CZelQuery *query, EZelStoreErrorStatus *status, __boolean storeKeepsROMP) {
    return joinedResult(query, status, storeKeepsROMP, AsRecord());
}

CZelBag *CZelStore::RSJoinedQuery(CZelQuery *query, EZelStoreErrorStatus *status, __boolean storeKeepsROMP) {
    return joinedResult(query, status, storeKeepsROMP, AsBlock());
}

void CZelStore::RSTidyAfterJoinedQryFromCache(CZelBag *tuples) {
    if (tuples == nullptr) {
        say("Can't tidy NULL input", "");
        return;
    }
    CZelTreeList records(E_RBFalse);
    for (const CZelPointer *node = tuples->RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        static_cast<const CZelTuple *>(node->RPData())->RTScanRecords(&records);
    CachedTables cached(*this);
    const CZelDoubleList *nodes = records.RTLIterator();
    for (CZelListable *node = nodes->RDLHead(); node != nullptr; node = nodes->RDLGetNext(node)) {
        auto *entry = static_cast<SZelTupleEntry *>(static_cast<CZelPointer *>(node)->RPData());
        freeIfCached(entry, cached);
        std::free(entry);
    }
}
