// Queries of one table: its rows, and the form in which they leave the store.
#include <cstdio>
#include <memory>
#include <vector>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/ZelDebug.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "oql/CZelQuery.h"
#include "store/CZelProjection.h"
#include "store/CZelRowsAhead.h"
#include "store/CZelStore.h"
#include "store/CZelStoreGuard.h"
#include "store/CZelTable.h"

namespace {

CZelStoreGuard::Mode readerIf(__boolean takeLock) {
    return takeLock == E_RBTrue ? CZelStoreGuard::READER : CZelStoreGuard::NONE;
}

void setStatus(EZelStoreErrorStatus *status, EZelStoreErrorStatus value) {
    if (status != nullptr)
        *status = value;
}

int sourcesOf(const CZelQuery *query) {
    return query != nullptr && query->RQSource() != nullptr ? query->RQSource()->RBLength() : 0;
}

// No query is a query without a table, which gives no rows.
bool isCount(const CZelQuery *query) {
    return query != nullptr && query->RQSelectStar() == E_RBTrue && query->RQCountStar() == E_RBTrue;
}

bool isWhole(const CZelQuery *query) {
    return query == nullptr || (query->RQSelectStar() == E_RBTrue && query->RQCountStar() != E_RBTrue);
}

CZelRecord *countRecord(int count) {
    auto *record = new CZelRecord;
    record->RRAddOrSetValue("Count", count);
    return record;
}

CZelAtom *takenBlock(unsigned char *block, int length) {
    return new CZelAtom(block, length);
}

CZelAtom *encoded(const CZelRecord &record) {
    unsigned char *block = nullptr;
    int length = 0;
    record.ROMEncode(&block, &length);
    return takenBlock(block, length);
}

// The columns of a selection as entities, some of them made for the time of the query.
class Selection {
public:
    explicit Selection(const CZelBag *items, bool takesClauses) {
        for (const CZelPointer *node = items != nullptr ? items->RBFirst() : nullptr; node != nullptr;
             node = CZelBag::RBNext(node))
            add(static_cast<const CZelExpr *>(node->RPData()), takesClauses);
    }

    CZelBag *entities() { return &m_entities; }

private:
    void add(const CZelExpr *item, bool takesClauses) {
        const EZelExprType type = item != nullptr ? item->REType() : E_RETFunction;
        if (type == E_RETEntity)
            m_entities.RBAdd(static_cast<void *>(item->REEntityVal()));
        else if (type == E_RETAtom || (type == E_RETClause && takesClauses))
            addNamed(item->REHeadAtomVal());
        else
            ZEL_REPORT(E_RCBadArgument, "CZelStore: a selection that names no column");
    }

    // The value of a clause names a column, and so does a constant.
    void addNamed(const CZelAtom *name) {
        if (CZelAtom::RAIsNull(name))
            return;
        if (name->RAType() != E_RDTText) {
            ZEL_REPORT(E_RCBadArgument, "CZelStore: a selection that names no column");
            return;
        }
        const char *nothing = nullptr;
        m_made.push_back(std::make_unique<CZelDbEntity>(nothing, nothing, name->RAString()));
        m_entities.RBAdd(static_cast<void *>(m_made.back().get()));
    }

    CZelBag m_entities;
    std::vector<std::unique_ptr<CZelDbEntity>> m_made;
};

// Walks rows that each become something else. Rows that the query owns are deleted behind it.
template <class Convert>
void replaceRows(CZelBag &rows, bool owned, Convert convert) {
    CZelRowsAhead ahead(rows);
    for (CZelPointer *node = rows.RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        auto *row = static_cast<CZelRecord *>(node->RPData());
        ahead.advance();
        node->RPSetData(convert(row));
        if (owned && node->RPData() != row)
            delete row;
    }
}

// Rows become copies of them.
void copyRows(CZelBag &rows) {
    const auto copy = [](CZelRecord *row) { return static_cast<void *>(new CZelRecord(*row)); };
    if (rows.RBLength() != 1)
        return replaceRows(rows, false, copy);
    CZelPointer *only = rows.RBFirst();
    only->RPSetData(copy(static_cast<CZelRecord *>(only->RPData())));
}

// The table's answer; an empty bag without a table, or where the table can't answer.
CZelBag *rowsOf(CZelTable *table, const CZelQuery *query) {
    CZelBag *rows = table != nullptr ? table->RTReturnRows(query->RQFilter()) : nullptr;
    return rows != nullptr ? rows : new CZelBag;
}

}  // namespace

CZelBag *CZelStore::RSQuery(CZelQuery *query, EZelStoreErrorStatus *status, __boolean storeKeepsROMP) {
    if (sourcesOf(query) > 1)
        return RSJoinedQuery(query, status, storeKeepsROMP);
    if (sourcesOf(query) == 1)
        return RSSimpleQuery(query, status, storeKeepsROMP);
    setStatus(status, E_RSEOk);
    ZEL_REPORT(E_RCBadArgument, "CZelStore::RSQuery: a query without a table");
    return nullptr;
}

CZelBag *CZelStore::RSQueryGetRecs(CZelQuery *query, EZelStoreErrorStatus *status, __boolean storeKeepsROMP) {
    if (sourcesOf(query) > 1)
        return RSJoinedQueryGetRecs(query, status, storeKeepsROMP);
    if (sourcesOf(query) == 1)
        return RSSimpleQueryGetRecs(query, status, storeKeepsROMP);
    setStatus(status, E_RSEOk);
    ZEL_REPORT(E_RCBadArgument, "CZelStore::RSQueryGetRecs: a query without a table");
    return nullptr;
}

CZelTable *CZelStore::tableOf(const CZelQuery *query, EZelStoreErrorStatus *status) const {
    EZelStoreErrorStatus found = E_RSEOk;
    const CZelPointer *first = sourcesOf(query) > 0 ? query->RQSource()->RBFirst() : nullptr;
    auto *entity = first != nullptr ? static_cast<CZelDbEntity *>(first->RPData()) : nullptr;
    if (entity == nullptr)
        ZEL_REPORT(E_RCBadArgument, "CZelStore::RSExecSimpleQuery: a query without a table");
    CZelTable *table = RSRetrieveTable(entity, found);
    setStatus(status, found);
    return table;
}

CZelBag *CZelStore::RSExecSimpleQuery(CZelQuery *query, EZelStoreErrorStatus *status, __boolean takeLock,
                                      __boolean asROMP) {
    const CZelStoreGuard guard(m_lock, readerIf(takeLock));
    CZelTable *table = tableOf(query, status);
    if (asROMP != E_RBTrue)
        return rowsOf(table, query);
    CZelBag *rows = table != nullptr ? table->RTReturnROMPRows(query->RQFilter(), E_RBFalse) : nullptr;
    return rows != nullptr ? rows : new CZelBag;
}

// Requires: the store lock is held. No row is fetched.
int CZelStore::countRows(CZelQuery *query, EZelStoreErrorStatus *status) {
    CZelTable *table = tableOf(query, status);
    if (table == nullptr)
        return 0;
    if (query->RQFilter() == nullptr)
        return table->RTTotalRecordCount();
    return table->RTCountRows(query->RQFilter());
}

// Whether the rows are copies of a cached table is the table's to tell, whatever the caller takes the store for.
CZelBag *CZelStore::RSSimpleQuery(CZelQuery *query, EZelStoreErrorStatus *status, __boolean /*storeKeepsROMP*/) {
    const CZelStoreGuard guard(m_lock, CZelStoreGuard::READER);
    if (isWhole(query))
        return RSExecSimpleQuery(query, status, E_RBFalse, E_RBTrue);
    if (isCount(query)) {
        const std::unique_ptr<CZelRecord> count(countRecord(countRows(query, status)));
        auto *result = new CZelBag;
        result->RBAdd(static_cast<void *>(encoded(*count)));
        return result;
    }
    CZelTable *table = tableOf(query, status);
    CZelBag *rows = rowsOf(table, query);
    if (rows->RBLength() == 0)
        return rows;
    Selection selection(query->RQSelection(), false);
    const bool owned = table->RTIsCacheUsed() == E_RBTrue;
    replaceRows(*rows, owned, [&](CZelRecord *row) {
        unsigned char *block = nullptr;
        int length = 0;
        row->ROMEncodeSubSet(&block, &length, selection.entities());
        return static_cast<void *>(takenBlock(block, length));
    });
    return rows;
}

CZelBag *CZelStore::RSSimpleQueryGetRecs(CZelQuery *query, EZelStoreErrorStatus *status, __boolean /*storeKeepsROMP*/) {
    const CZelStoreGuard guard(m_lock, CZelStoreGuard::READER);
    if (isCount(query)) {
        auto *result = new CZelBag;
        result->RBAdd(static_cast<void *>(countRecord(countRows(query, status))));
        return result;
    }
    CZelTable *table = tableOf(query, status);
    CZelBag *rows = rowsOf(table, query);
    if (rows->RBLength() == 0)
        return rows;
    const bool owned = table->RTIsCacheUsed() == E_RBTrue;
    if (isWhole(query)) {
        if (!owned)
            copyRows(*rows);
        return rows;
    }
    Selection selection(query->RQSelection(), true);
    const CZelProjection projection(*selection.entities());
    replaceRows(*rows, owned, [&](CZelRecord *row) { return static_cast<void *>(projection.project(*row)); });
    return rows;
}

CZelBag *CZelStore::RSSimpleQueryGetRecPtrs(CZelQuery *query, EZelStoreErrorStatus *status, __boolean storeKeepsROMP) {
    const char *refusal = nullptr;
    if (query != nullptr && query->RQSelectStar() != E_RBTrue)
        refusal = "This type of query MUST be select *";
    else if (RSCached() == E_RBTrue)
        refusal = "This type of query MUST not have a cache";
    else if (storeKeepsROMP == E_RBTrue)
        refusal = "This type of query MUST NOT have a cache";
    if (refusal == nullptr)
        return RSExecSimpleQuery(query, status, E_RBTrue, E_RBFalse);
    setStatus(status, E_RSEOk);
    ZEL_REPORT(E_RCBadArgument, refusal);
    return nullptr;
}

bool CZelStore::RSOwnResultsOfSimpleQry(CZelQuery *query) const {
    if (query == nullptr) {
        if (__Zeltronix_Debug_Level >= 1)
            std::printf("Can't tidy NULL values\n");
        return false;
    }
    const CZelTable *table = tableOf(query, nullptr);
    return table != nullptr && table->RTIsCacheUsed() == E_RBTrue;
}

CZelRecord *CZelStore::RSCreateRecord(CZelRecord *row, CZelBag *entities) {
    if (row != nullptr && entities != nullptr)
        return CZelProjection(*entities).project(*row);
    ZEL_REPORT(E_RCBadArgument, "CZelStore::RSCreateRecord: no row or no columns");
    return nullptr;
}
