#include <cstdio>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelPointer.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/ZelDebug.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelDropIndex.h"
#include "oql/CZelDropObject.h"
#include "oql/CZelIndex.h"
#include "store/CZelDatabase.h"
#include "store/CZelStore.h"
#include "store/CZelStoreGuard.h"
#include "store/CZelTable.h"

namespace {

void setStatus(EZelStoreErrorStatus *status, EZelStoreErrorStatus value) {
    if (status != nullptr)
        *status = value;
}

bool isText(const CZelAtom *atom) {
    return atom != nullptr && atom->RAType() == E_RDTText;
}

int refuseTable(CZelTable &table, int code) {
    table.RTSetStoreErrorStatus(E_RSECreateTable);
    return code;
}

// The table's created indexes lose their names; a name that has passed to another table stays.
void removeIndexNames(const CZelTable &table, CZelTreeList &indices) {
    CZelDoubleList *own = table.RTIndices()->RTLIterator();
    for (CZelListable *node = own->RDLHead(); node != nullptr; node = own->RDLGetNext(node)) {
        const auto *index = static_cast<const CZelIndex *>(static_cast<CZelPointer *>(node)->RPData());
        const CZelAtom *name = index->RIName();
        if (name != nullptr && indices.RTLData(name) == &table)
            indices.RTLDelete(name);
    }
}

EZelStoreErrorStatus missing(const char *what, const char *name, EZelStoreErrorStatus status) {
    CZelString text(what);
    text.RSStrCat(name != nullptr ? name : "NULL");
    ZEL_REPORT(E_RCNotFound, text.RSString());
    return status;
}

// Drops every table with its index names. A callback may keep one, which then goes with its database but leaves its
// cache file; false says so.
bool dropTables(CZelDatabase &database, CZelTreeList &indices) {
    CZelDoubleList *tables = database.RDTableIterator();
    CZelListable *node = tables->RDLHead();
    while (node != nullptr) {
        const auto *table = static_cast<const CZelTable *>(static_cast<CZelPointer *>(node)->RPData());
        node = tables->RDLGetNext(node);
        removeIndexNames(*table, indices);
        const int status = database.RDDropTable(table->RTName()->RAString());
        if (status != 1)
            ZEL_REPORT(status, "CZelStore::RSDropObject");
    }
    return tables->RDLLength() == 0;
}

// What goes wrong with one index name: the name is freed again and the status tells why.
int refuseIndex(CZelTreeList &indices, const CZelAtom *name, int code, EZelStoreErrorStatus *status,
                EZelStoreErrorStatus outcome) {
    indices.RTLDelete(name);
    setStatus(status, outcome);
    CZelString text("CZelStore::RSAddIndex: ");
    text.RSStrCat(name);
    return ZEL_FAIL(code, text.RSString());
}

}  // namespace

int CZelStore::RSAddTbl(CZelTable *table, __boolean noCache) {
    if (table == nullptr)
        return ZEL_FAIL(E_RCBadArgument, "CZelStore::RSAddTbl: no table");
    if (table->RTInitialise() != E_RBTrue)
        return refuseTable(*table, E_RCNotInitialised);
    const CZelStoreGuard guard(m_lock, CZelStoreGuard::WRITER);
    if (!isText(table->RTDatabase()) || !isText(table->RTName())) {
        if (__Zeltronix_Debug_Level >= 4)
            std::puts("Failed to get name of table");
        return refuseTable(*table, E_RCBadArgument);
    }
    CZelDatabase *database = RSDatabase(table->RTDatabase());
    if (database == nullptr)
        return refuseTable(*table, E_RCNotFound);
    const int status = database->RDAddTable(table);
    if (status != 1)
        return refuseTable(*table, ZEL_FAIL(status, "Failed to add table"));
    if (database->RDTableNamed(*table->RTName()) != table)  // the callback kept it out
        return refuseTable(*table, 1);
    if (noCache != E_RBTrue)
        RSCacheTable(table, E_RBTrue);
    table->RTSetStoreErrorStatus(E_RSEOk);
    table->RDOAdopted();
    return 1;
}

void CZelStore::RSCacheTable(CZelTable *table, __boolean lockHeld) {
    const CZelStoreGuard guard(m_lock, lockHeld == E_RBTrue ? CZelStoreGuard::NONE : CZelStoreGuard::WRITER);
    if (m_limitBySize == E_RBTrue)
        table->RTCacheMe(new CZelAtom(m_cacheName), m_inCoreLimit, m_persistent);
    else if (m_limitByProportion == E_RBTrue)
        table->RTCacheMe(new CZelAtom(m_cacheName), m_inCoreProportion, m_persistent);
    else if (m_persistent == E_RBTrue)
        table->RTCacheMe(new CZelAtom(m_cacheName), 1.0F, m_persistent);
}

EZelStoreErrorStatus CZelStore::RSCopyTable(const char *database, const char *table, const char *newName,
                                            CZelTblCallback *callback, int argument) {
    const CZelStoreGuard guard(m_lock, CZelStoreGuard::WRITER);
    CZelDatabase *owner = RSDatabase(database);
    if (owner == nullptr)
        return missing("CZelStore::RSCopyTable: no database ", database, E_RSENoDatabase);
    const CZelTable *source = owner->RDTableNamed(table);
    if (source == nullptr)
        return missing("CZelStore::RSCopyTable: no table ", table, E_RSENoTable);
    const CZelAtom name(newName);
    auto *copy = new CZelTable(source, owner->RDName(), newName != nullptr ? &name : nullptr);
    if (callback != nullptr)
        copy->RTAddActive(callback, argument);
    int status = owner->RDAddTable(copy);
    if (owner->RDTableNamed(*copy->RTName()) != copy) {
        delete copy;
        return status == 1 ? E_RSECreateTable : (ZEL_REPORT(status, "CZelStore::RSCopyTable"), E_RSEOk);
    }
    status = copy->RDOInitialise(this);
    if (status != 1)
        ZEL_REPORT(status, "CZelStore::RSCopyTable");
    return E_RSEOk;
}

int CZelStore::RSAddIndex(CZelIndex *index, EZelStoreErrorStatus *status) {
    setStatus(status, E_RSEOk);
    if (index == nullptr)
        return 1;
    const CZelStoreGuard guard(m_lock, CZelStoreGuard::WRITER);
    const CZelAtom *name = index->RIName();
    if (name == nullptr) {
        setStatus(status, E_RSECreateIndex);
        return ZEL_FAIL(E_RCNoText, "CZelStore::RSAddIndex: no index name");
    }
    void *noTable = nullptr;
    const int added = m_indices->RTLAdd(name, noTable, true);
    if (added != 1) {
        setStatus(status, E_RSECreateIndex);
        return added == E_RCDuplicate ? E_RCNoText : ZEL_FAIL(E_RCNoText, "CZelStore::RSAddIndex");
    }
    EZelStoreErrorStatus found = E_RSEOk;
    CZelTable *table = RSRetrieveTable(index->RITable(), found);
    if (table == nullptr)
        return refuseIndex(*m_indices, name, E_RCNoText, status, found);
    const int result = table->RTAddIndex(index);
    if (result != 1)
        return refuseIndex(*m_indices, name, result, status, E_RSECreateIndex);
    m_indices->RTLGet(name)->RPSetData(table);
    return 1;
}

int CZelStore::RSDropIndex(CZelDropIndex *statement, EZelStoreErrorStatus *status) {
    setStatus(status, E_RSEOk);
    if (statement == nullptr)
        return 1;
    const CZelStoreGuard guard(m_lock, CZelStoreGuard::WRITER);
    const CZelAtom *name = statement->RDIName();
    const CZelPointer *entry = name != nullptr ? m_indices->RTLGet(name) : nullptr;
    if (entry == nullptr) {
        setStatus(status, E_RSENoIndex);
        CZelString text("CZelStore::RSDropIndex: no index ");
        text.RSStrCat(name);
        return ZEL_FAIL(E_RCNoText, text.RSString());
    }
    auto *table = static_cast<CZelTable *>(entry->RPData());
    if (table == nullptr)
        return ZEL_FAIL(E_RCBadArgument, "CZelStore::RSDropIndex: the index has lost its table");
    const int result = table->RTDropIndex(statement);
    if (result != 1)
        return ZEL_FAIL(result, "CZelStore::RSDropIndex");
    m_indices->RTLDelete(name);
    return 1;
}

int CZelStore::RSDropObject(CZelDropObject *statement, EZelStoreErrorStatus *status) {
    setStatus(status, E_RSEOk);
    CZelDbEntity *target = statement != nullptr ? statement->RDOTarget() : nullptr;
    if (target == nullptr || target->RDEDbName() == nullptr) {
        setStatus(status, E_RSENoDatabase);
        return E_RCNoText;
    }
    const bool wholeDatabase = statement->RDOType() == E_RDODatabase;
    bool isKept = false;
    const int result = wholeDatabase ? dropDatabase(*target, status, isKept) : dropTable(*target, status, isKept);
    if (!isKept)
        clearCacheFiles(*target, wholeDatabase);
    return result;
}

int CZelStore::dropDatabase(CZelDbEntity &target, EZelStoreErrorStatus *status, bool &isKept) {
    const CZelStoreGuard guard(m_lock, CZelStoreGuard::WRITER);
    CZelDatabase *database = RSDatabase(target.RDEDbNameAtom());
    if (database == nullptr) {
        setStatus(status, E_RSENoDatabase);
        return E_RCNotFound;
    }
    isKept = !dropTables(*database, *m_indices);
    const int removed = m_databases->RTLDelete(database->RDName());
    if (removed != 1)
        ZEL_REPORT(removed, "CZelStore::RSDropObject");
    delete database;
    return 1;
}

int CZelStore::dropTable(CZelDbEntity &target, EZelStoreErrorStatus *status, bool &isKept) {
    const CZelStoreGuard guard(m_lock, CZelStoreGuard::WRITER);
    CZelDatabase *database = RSDatabase(target.RDEDbNameAtom());
    if (database == nullptr) {
        setStatus(status, E_RSENoDatabase);
        return E_RCNotFound;
    }
    const char *name = target.RDETblName();
    if (name == nullptr)
        return ZEL_FAIL(E_RCBadValue, "RSDropObject: Table name invalid");
    const CZelTable *table = database->RDTableNamed(name);
    if (table != nullptr)
        removeIndexNames(*table, *m_indices);
    else
        setStatus(status, E_RSENoTable);
    const int dropped = database->RDDropTable(name);
    if (dropped != 1)
        ZEL_REPORT(dropped, "CZelStore::RSDropObject");
    isKept = table != nullptr && database->RDTableNamed(name) != nullptr;
    return table != nullptr ? 1 : E_RCNotFound;
}

void CZelStore::clearCacheFiles(CZelDbEntity &target, bool wholeDatabase) {
    if (RSCached() != E_RBTrue && m_persistent != E_RBTrue)
        return;
    const CZelStoreGuard guard(m_lock, CZelStoreGuard::WRITER);
    if (wholeDatabase)
        CZelDatabase::RDClearCache(m_cacheName, target.RDEDbName());
    else
        CZelTable::RTClearCache(m_cacheName, target.RDEDbName(), target.RDETblName());
}

CZelTable *CZelStore::RSTableNamed(CZelDbEntity *entity) const {
    if (entity == nullptr || entity->RDEDbName() == nullptr) {
        ZEL_REPORT(E_RCNotFound, "CZelStore::RSTableNamed: no database name");
        return nullptr;
    }
    const CZelDatabase *database = RSDatabase(entity->RDEDbNameAtom());
    if (database == nullptr) {
        if (__Zeltronix_Debug_Level >= 1)
            missing("CZelStore::RSTableNamed: no database ", entity->RDEDbName(), E_RSENoDatabase);
        return nullptr;
    }
    const CZelAtom *name = entity->RDETblNameAtom();
    return name != nullptr ? database->RDTableNamed(*name) : nullptr;
}

CZelAtom *CZelStore::RSTableIdent(CZelDbEntity *entity) const {
    EZelStoreErrorStatus status = E_RSEOk;
    const CZelTable *table = RSRetrieveTable(entity, status);
    if (table == nullptr) {
        missing("CZelStore::RSTableIdent: no table ", entity != nullptr ? entity->RDEIdent() : nullptr, status);
        return nullptr;
    }
    return const_cast<CZelAtom *>(table->RTIdentifier());
}

CZelDoubleList *CZelStore::RSGetTables() const {
    auto *all = new CZelDoubleList();
    CZelDoubleList *databases = m_databases->RTLIterator();
    for (CZelListable *node = databases->RDLHead(); node != nullptr; node = databases->RDLGetNext(node)) {
        const auto *database = static_cast<const CZelDatabase *>(static_cast<CZelPointer *>(node)->RPData());
        all->RDLAddToListEnd(database->RDTables(), true);
    }
    return all;
}
