// select ... into: the rows of a query become rows of a table. A row that can't become one does not stop the others.
#include <cstdio>
#include <memory>
#include <mutex>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/ZelDebug.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelQryInsert.h"
#include "oql/CZelQuery.h"
#include "store/CZelDatabase.h"
#include "store/CZelRowsAhead.h"
#include "store/CZelStore.h"
#include "store/CZelStoreGuard.h"
#include "store/CZelTable.h"
#include "store/CZelTuple.h"

namespace {

void setStatus(EZelStoreErrorStatus *status, EZelStoreErrorStatus value) {
    if (status != nullptr)
        *status = value;
}

bool isQuiet(int code) {
    return code == 1 || code == E_RCDuplicate || code == E_RCKeyExists ||
           (code == E_RCRefused && __Zeltronix_Debug_Level != 3);
}

// The status of the statement is that of its target.
void reportMissing(EZelStoreErrorStatus source) {
    if (source != E_RSEOk)
        ZEL_REPORT(E_RCNotFound, "CZelStore::RSQueryInsert: a table to select from does not exist");
}

}  // namespace

int CZelStore::RSQueryInsert(CZelQryInsert *statement, EZelStoreErrorStatus *status, __boolean storeKeepsROMP,
                             __boolean takeLock) {
    EZelStoreErrorStatus found = E_RSEOk;
    if (__Zeltronix_Debug_Level == 4)
        std::puts("Store consumes row");
    const CZelStoreGuard guard(m_lock, takeLock == E_RBTrue ? CZelStoreGuard::WRITER : CZelStoreGuard::NONE);
    CZelTable *table = RSRetrieveTable(statement != nullptr ? statement->RQITarget() : nullptr, found);
    setStatus(status, found);
    if (table == nullptr)
        return E_RCNoText;
    const CZelQuery *query = statement->RQIQuery();
    const int sources = query != nullptr && query->RQSource() != nullptr ? query->RQSource()->RBLength() : 0;
    if (sources == 0)
        return ZEL_FAIL(E_RCNull, "CZelStore::RSQueryInsert: a query without a table");
    const int result = sources == 1 ? RSSimpleQueryInsert(statement, table, storeKeepsROMP)
                                    : RSJoinedQueryInsert(statement, table, storeKeepsROMP);
    if (result != 1)
        ZEL_REPORT(result, "CZelStore::RSQueryInsert");
    return result;
}

// Takes the record over.
void CZelStore::insertInto(CZelTable &table, CZelRecord *record, const CZelAtomVector *uniques) {
    if (record == nullptr) {
        ZEL_REPORT(E_RCNull, "Query insert failed to create a valid insert.");
        return;
    }
    const int result = table.RTTakeRow(record, uniques, E_RBFalse);
    if (!isQuiet(result))
        ZEL_REPORT(result, "CZelStore::RSQueryInsert");
}

CZelDoubleList *CZelStore::RSRetrieveQueryTableColDefs(CZelQuery *query) const {
    const CZelTable *table = tableOf(query, nullptr);
    return table != nullptr ? table->RTColumns()->RTLIterator() : nullptr;
}

int CZelStore::RSSimpleQueryInsert(CZelQryInsert *statement, CZelTable *table, __boolean storeKeepsROMP) {
    EZelStoreErrorStatus status = E_RSEOk;
    CZelQuery *query = statement->RQIQuery();
    CZelDoubleList *sourceColumns = RSRetrieveQueryTableColDefs(query);
    CZelDoubleList *targetColumns = table->RTColumns()->RTLIterator();
    const std::unique_ptr<CZelBag> rows(RSExecSimpleQuery(query, &status, E_RBFalse, E_RBFalse));
    reportMissing(status);
    const bool owned = storeKeepsROMP == E_RBTrue && RSOwnResultsOfSimpleQry(query);
    CZelRowsAhead ahead(*rows, statement->RQISelectedColumns());
    for (const CZelPointer *node = rows->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        auto *row = static_cast<CZelRecord *>(node->RPData());
        ahead.advance();
        insertInto(*table, statement->RQICreateRow(*row, *sourceColumns, *targetColumns), statement->RQIUniques());
        if (owned)
            delete row;
    }
    return 1;
}

int CZelStore::RSJoinedQueryInsert(CZelQryInsert *statement, CZelTable *table, __boolean storeKeepsROMP) {
    EZelStoreErrorStatus status = E_RSEOk;
    CZelQuery *query = statement->RQIQuery();
    CZelTable *first = firstJoined(query);
    if (first == nullptr) {
        reportMissing(E_RSENoTable);
        return 1;
    }
    const std::lock_guard<std::mutex> joinLock(first->RTJoinMutex());
    const std::unique_ptr<CZelBag> tuples(RSExecJoinedQuery(query, &status, E_RBFalse));
    reportMissing(status);
    const CZelDoubleList &targetColumns = *table->RTColumns()->RTLIterator();
    for (const CZelPointer *node = tuples != nullptr ? tuples->RBFirst() : nullptr; node != nullptr;
         node = CZelBag::RBNext(node))
        insertInto(*table, statement->RQICreateRow(*static_cast<const CZelTuple *>(node->RPData()), targetColumns),
                   statement->RQIUniques());
    if (storeKeepsROMP == E_RBTrue && tuples != nullptr && isJoinCached(query))
        RSTidyAfterJoinedQryFromCache(tuples.get());
    RSPurgeJoinedQuery(query);
    return 1;
}
