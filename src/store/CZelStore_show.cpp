#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelOQLDumper.h"
#include "oql/CZelShow.h"
#include "store/CZelDatabase.h"
#include "store/CZelStore.h"
#include "store/CZelStoreGuard.h"
#include "store/CZelTable.h"

namespace {

// A record with one value: a list of names.
CZelRecord *namesRecord(const char *label, CZelAtomVector *names) {
    auto *record = new CZelRecord();
    auto *list = new CZelAtom(names);
    record->RRAddValue(label, &list);
    return record;
}

// What `show table` answers with, or null with the status that says what is missing.
CZelRecord *tableSchema(const CZelDatabase *database, const CZelAtom &name, EZelStoreErrorStatus &status) {
    if (database == nullptr) {
        status = E_RSENoDatabase;
        return nullptr;
    }
    const CZelTable *table = database->RDTableNamed(name);
    if (table == nullptr) {
        status = E_RSENoTable;
        return nullptr;
    }
    return table->RTGetSchema();
}

CZelRecord *tableNames(const CZelDatabase *database, EZelStoreErrorStatus &status) {
    if (database == nullptr) {
        status = E_RSENoDatabase;
        return nullptr;
    }
    return namesRecord("tables", database->RDTableNames());
}

CZelAtom *encoded(const CZelRecord &record) {
    unsigned char *data = nullptr;
    int length = 0;
    record.ROMEncode(&data, &length);
    return new CZelAtom(data, length);
}

}  // namespace

CZelBag *CZelStore::RSShowGetRecs(CZelShow *statement, EZelStoreErrorStatus *status) {
    EZelStoreErrorStatus outcome = E_RSEOk;
    auto *rows = new CZelBag();
    if (statement == nullptr) {
        ZEL_REPORT(E_RCBadArgument, "CZelStore::RSShowGetRecs: no statement");
        return rows;
    }
    const CZelStoreGuard guard(m_lock, CZelStoreGuard::READER);
    const CZelAtom *database = statement->RSDbName();
    const CZelAtom *table = statement->RSTblName();
    CZelRecord *record = nullptr;
    if (database != nullptr && table != nullptr)
        record = tableSchema(RSDatabase(database), *table, outcome);
    else if (database != nullptr)
        record = tableNames(RSDatabase(database), outcome);
    else if (table == nullptr)
        record = namesRecord("databases", RSDatabaseNames());
    else
        CZelOQLDumper(this).WriteSchema(*rows);
    if (record != nullptr)
        rows->RBAdd(static_cast<void *>(record));
    if (status != nullptr)
        *status = outcome;
    return rows;
}

CZelBag *CZelStore::RSShow(CZelShow *statement, EZelStoreErrorStatus *status) {
    CZelBag *rows = RSShowGetRecs(statement, status);
    for (CZelPointer *node = rows->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        auto *record = static_cast<CZelRecord *>(node->RPData());
        node->RPSetData(encoded(*record));
        delete record;
    }
    return rows;
}
