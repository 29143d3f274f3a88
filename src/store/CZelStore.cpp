#include "store/CZelStore.h"

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelPointer.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDbEntity.h"
#include "store/CZelDatabase.h"
#include "store/CZelStoreGuard.h"
#include "store/CZelTable.h"

namespace {

CZelDatabase *databaseOf(const CZelListable *node) {
    return static_cast<CZelDatabase *>(static_cast<const CZelPointer *>(node)->RPData());
}

// The key is interned where it can be: statements then find the database by an address.
int addDatabase(CZelTreeList &databases, CZelDatabase *database) {
    const CZelAtom key = CZelAtom::RAName(database->RDName()->RAString());
    return databases.RTLAdd(&key, static_cast<void *>(database), true);
}

}  // namespace

CZelStore::CZelStore() : m_databases(new CZelTreeList(E_RBFalse)), m_indices(new CZelTreeList(E_RBFalse)) {}

CZelStore::CZelStore(const char *name) : CZelStore() {
    m_cacheName = name;
}

CZelStore::CZelStore(unsigned long long bytes, const char *name) : CZelStore(name) {
    m_limitBySize = E_RBTrue;
    m_inCoreLimit = bytes;
}

CZelStore::CZelStore(float proportion, const char *name) : CZelStore(name) {
    m_limitByProportion = E_RBTrue;
    m_inCoreProportion = proportion;
}

CZelStore::~CZelStore() {
    CZelDoubleList *databases = m_databases->RTLIterator();
    for (CZelListable *node = databases->RDLHead(); node != nullptr; node = databases->RDLGetNext(node))
        delete databaseOf(node);
    delete m_databases;
    delete m_indices;
}

void CZelStore::RSSetPersistant(__boolean persistent) {
    if (m_persistent != E_RBTrue)
        m_persistent = persistent;
}

int CZelStore::RSLock() {
    return m_lock.RRWLWriterLock();
}

int CZelStore::RSReaderLock() {
    return m_lock.RRWLReaderLock();
}

int CZelStore::RSUnlock() {
    return m_lock.RRWLUnLock();
}

int CZelStore::RSAddDb(CZelDatabase *database) {
    if (database == nullptr)
        return ZEL_FAIL(E_RCBadArgument, "CZelStore::RSAddDb: no database");
    if (database->RDInitialise() != E_RBTrue) {
        database->RDSetStoreErrorStatus(E_RSECreateDatabase);
        return E_RCNotInitialised;
    }
    const CZelStoreGuard guard(m_lock, CZelStoreGuard::WRITER);
    const int status = addDatabase(*m_databases, database);
    database->RDSetStoreErrorStatus(status == 1 ? E_RSEOk : E_RSECreateDatabase);
    if (status == 1)
        database->RDOAdopted();
    if (status != E_RCDuplicate)
        return status == 1 ? 1 : (ZEL_REPORT(status, "CZelStore::RSAddDb"), 1);
    CZelString text("CZelStore::RSAddDb: there is a database ");
    text.RSStrCat(database->RDName());
    return ZEL_FAIL(E_RCDuplicateDatabase, text.RSString());
}

int CZelStore::RSInitialise() {
    CZelDoubleList *databases = m_databases->RTLIterator();
    for (CZelListable *node = databases->RDLHead(); node != nullptr; node = databases->RDLGetNext(node)) {
        const int status = databaseOf(node)->RDOInitialise(this);
        if (status != 1)
            ZEL_REPORT(status, "CZelStore::RSInitialise");
    }
    return 1;
}

int CZelStore::RSDropDatabase(const CZelAtom *name) {
    if (CZelAtom::RAIsNull(name))
        return E_RCBadArgument;
    const CZelStoreGuard guard(m_lock, CZelStoreGuard::WRITER);
    CZelDatabase *database = RSDatabase(name);
    if (database == nullptr)
        return E_RCBadArgument;
    // The index names stay, but must not lead to tables that are gone.
    CZelDoubleList *indices = m_indices->RTLIterator();
    for (CZelListable *node = indices->RDLHead(); node != nullptr; node = indices->RDLGetNext(node)) {
        auto *entry = static_cast<CZelPointer *>(node);
        const auto *table = static_cast<const CZelTable *>(entry->RPData());
        if (table != nullptr && database->RDTableNamed(*table->RTName()) == table)
            entry->RPSetData(nullptr);
    }
    m_databases->RTLDelete(name);
    delete database;
    return 1;
}

CZelDatabase *CZelStore::RSDatabase(const CZelAtom *name) const {
    return name != nullptr ? static_cast<CZelDatabase *>(m_databases->RTLData(name)) : nullptr;
}

CZelDatabase *CZelStore::RSDatabase(const char *name) const {
    return name != nullptr ? static_cast<CZelDatabase *>(m_databases->RTLData(name)) : nullptr;
}

CZelAtomVector *CZelStore::RSDatabaseNames() const {
    return m_databases->RTLGetKeys();
}

int CZelStore::RSCopyDatabase(const char *source, CZelAtom *newName, __boolean takeLock, __boolean initialise) {
    const CZelStoreGuard guard(m_lock, takeLock == E_RBTrue ? CZelStoreGuard::WRITER : CZelStoreGuard::NONE);
    CZelDatabase *original = RSDatabase(source);
    if (original == nullptr || CZelAtom::RAIsNull(newName) || newName->RAString() == nullptr)
        return ZEL_FAIL(E_RCBadArgument, "CZelStore::RSCopyDatabase: no such database, or no name for the copy");
    auto *copy = new CZelDatabase(original, newName);
    const int status = addDatabase(*m_databases, copy);
    if (status != 1) {
        delete copy;
        return status == E_RCDuplicate ? status : ZEL_FAIL(status, "CZelStore::RSCopyDatabase");
    }
    copy->RDSetStoreErrorStatus(E_RSEOk);
    const int initialised = initialise == E_RBTrue ? copy->RDOInitialise(this) : 1;
    if (initialised != 1)
        ZEL_REPORT(initialised, "CZelStore::RSCopyDatabase");
    return 1;
}

EZelStoreErrorStatus CZelStore::RSAddDbCallback(CZelDbEntity *entity, CZelDbCallback *callback, __boolean takeLock) {
    const CZelStoreGuard guard(m_lock, takeLock == E_RBTrue ? CZelStoreGuard::WRITER : CZelStoreGuard::NONE);
    CZelDatabase *database = entity != nullptr ? RSDatabase(entity->RDEDbNameAtom()) : nullptr;
    if (database == nullptr)
        return E_RSENoDatabase;
    database->RDSetDbCallback(callback);
    return E_RSEOk;
}
