#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/ZelDebug.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelDelete.h"
#include "oql/CZelInsert.h"
#include "oql/CZelUpdate.h"
#include "store/CZelDatabase.h"
#include "store/CZelStore.h"
#include "store/CZelStoreGuard.h"
#include "store/CZelTable.h"

namespace {

CZelStoreGuard::Mode writerIf(__boolean takeLock) {
    return takeLock == E_RBTrue ? CZelStoreGuard::WRITER : CZelStoreGuard::NONE;
}

void setStatus(EZelStoreErrorStatus *status, EZelStoreErrorStatus value) {
    if (status != nullptr)
        *status = value;
}

bool isDuplicate(int code) {
    return code == E_RCDuplicate || code == E_RCKeyExists;
}

// A row that its table's cache can't store.
bool isNotStored(int code) {
    return code == E_RCPageWrite || code == E_RCNoHandle;
}

void reportOn(int code, const char *operation, CZelDbEntity *entity) {
    CZelString text(operation);
    text.RSStrCat(entity->RDEIdent());
    ZEL_REPORT(code, text.RSString());
}

// A callback's refusal is no failure; only a developer wants to see it.
void traceRefusal(CZelDbEntity *entity) {
    if (__Zeltronix_Debug_Level == 3)
        reportOn(E_RCRefused, "", entity);
}

}  // namespace

CZelTable *CZelStore::RSRetrieveTable(CZelDbEntity *entity, EZelStoreErrorStatus &status) const {
    CZelDatabase *database = entity != nullptr ? RSDatabase(entity->RDEDbNameAtom()) : nullptr;
    if (database == nullptr) {
        status = E_RSENoDatabase;
        return nullptr;
    }
    const CZelAtom *name = entity->RDETblNameAtom();
    CZelTable *table = name != nullptr ? database->RDTableNamed(*name) : nullptr;
    if (table == nullptr)
        status = E_RSENoTable;
    return table;
}

int CZelStore::RSInsert(CZelInsert *statement, EZelStoreErrorStatus *status, __boolean takeLock) {
    EZelStoreErrorStatus found = E_RSEOk;
    const CZelStoreGuard guard(m_lock, writerIf(takeLock));
    CZelDbEntity *target = statement != nullptr ? statement->RITarget() : nullptr;
    CZelTable *table = RSRetrieveTable(target, found);
    setStatus(status, found);
    if (table == nullptr)
        return E_RCNoText;
    const int result = table->RTAddRow(statement, E_RBFalse);
    if (isDuplicate(result))
        setStatus(status, E_RSEDuplicateKey);
    else if (result == E_RCRefused)
        traceRefusal(target);
    else if (result != 1)
        reportOn(result, "", target);
    if (isNotStored(result))
        setStatus(status, E_RSEUpdateFailed);
    return 1;
}

int CZelStore::RSInsert(CZelRecord *record, CZelDbEntity *entity, EZelStoreErrorStatus *status, __boolean takeLock) {
    EZelStoreErrorStatus found = E_RSEOk;
    const CZelStoreGuard guard(m_lock, writerIf(takeLock));
    CZelTable *table = RSRetrieveTable(entity, found);
    setStatus(status, found);
    if (table == nullptr)
        return E_RCNoText;
    if (record == nullptr)
        return ZEL_FAIL(E_RCBadArgument, "CZelStore::RSInsert: no record");
    const int result = table->RTAddRow(record, E_RBFalse);
    if (result == 1 || result == E_RCRefused)
        return 1;
    if (isDuplicate(result)) {
        setStatus(status, E_RSEDuplicateKey);
        return 1;
    }
    if (isNotStored(result))
        setStatus(status, E_RSEUpdateFailed);
    reportOn(result, "CZelStore::RSInsert ", entity);
    return result;
}

int CZelStore::RSDelete(CZelDelete *statement, EZelStoreErrorStatus *status) {
    EZelStoreErrorStatus found = E_RSEOk;
    const CZelStoreGuard guard(m_lock, CZelStoreGuard::WRITER);
    CZelDbEntity *target = statement != nullptr ? statement->RDTarget() : nullptr;
    CZelTable *table = RSRetrieveTable(target, found);
    setStatus(status, found);
    if (table == nullptr)
        return E_RCNoText;
    const int result = table->RTDeleteRows(statement, E_RBFalse);
    if (result == E_RCNotFound)
        setStatus(status, E_RSENoMatch);
    else if (result != 1)
        reportOn(result, "CZelStore::RSDelete ", target);
    if (isNotStored(result))
        setStatus(status, E_RSEUpdateFailed);
    return 1;
}

int CZelStore::RSUpdate(CZelUpdate *statement, EZelStoreErrorStatus *status) {
    EZelStoreErrorStatus found = E_RSEOk;
    const CZelStoreGuard guard(m_lock, CZelStoreGuard::WRITER);
    CZelDbEntity *target = statement != nullptr ? statement->RUTarget() : nullptr;
    CZelTable *table = RSRetrieveTable(target, found);
    setStatus(status, found);
    if (table == nullptr)
        return E_RCNoText;
    const int result = table->RTUpdateRows(statement, E_RBFalse);
    if (result == E_RCNotFound) {
        setStatus(status, E_RSENoMatch);
    } else if (result != 1) {
        reportOn(result, "CZelStore::RSUpdate ", target);
        setStatus(status, E_RSEUpdateFailed);
    }
    return 1;
}

int CZelStore::RSUpdate(CZelRecord *values, CZelFilter *filter, CZelDbEntity *entity, EZelStoreErrorStatus *status) {
    EZelStoreErrorStatus found = E_RSEOk;
    const CZelStoreGuard guard(m_lock, CZelStoreGuard::WRITER);
    CZelTable *table = RSRetrieveTable(entity, found);
    setStatus(status, found);
    if (table == nullptr)
        return E_RCNoText;
    if (values == nullptr)
        return ZEL_FAIL(E_RCBadArgument, "CZelStore::RSUpdate: no record");
    const int result = table->RTUpdateRows(values, filter, E_RBFalse);
    if (isNotStored(result))
        setStatus(status, E_RSEUpdateFailed);
    if (result != E_RCNotFound) {
        if (result != 1)
            reportOn(result, "CZelStore::RSUpdate ", entity);
        return 1;
    }
    if (status == nullptr)
        return 1;
    *status = E_RSENoMatch;
    return result;
}

int CZelStore::RSTotalRecordCount(CZelDbEntity *entity, EZelStoreErrorStatus *status, __boolean takeLock) {
    EZelStoreErrorStatus found = E_RSEOk;
    const CZelStoreGuard guard(m_lock, writerIf(takeLock));
    const CZelTable *table = RSRetrieveTable(entity, found);
    setStatus(status, found);
    return table != nullptr ? table->RTTotalRecordCount() : 0;
}
