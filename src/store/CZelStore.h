// The store of one process: databases of tables, and one name space of indexes. It takes statements and
// records, finds the table, holds the store lock for the time of the operation, and leaves the answer in a
// result and an EZelStoreErrorStatus (null is accepted; it is first set to E_RSEOk).
//
// Who owns what a query returns is told at each operation; the bag itself is always the caller's.
//
// Threads: any number of threads; the lock is held as writer for changes, as reader for queries, until the last
// stored row has been read. Lookups take no lock.
#pragma once

#include "foundations/base/ZelEnums.h"
#include "foundations/port/CZelRWLock.h"
#include "foundations/port/ZelExport.h"

class CZelAtom;
class CZelAtomVector;
class CZelBag;
class CZelDatabase;
class CZelDbCallback;
class CZelDbEntity;
class CZelDelete;
class CZelDoubleList;
class CZelDropIndex;
class CZelDropObject;
class CZelFilter;
class CZelIndex;
class CZelInsert;
class CZelJoinTaker;
class CZelQryInsert;
class CZelQuery;
class CZelRecord;
class CZelShow;
class CZelTable;
class CZelTblCallback;
class CZelTreeList;
class CZelUpdate;

class QUINTOR_API CZelStore {
public:
    // The cache name is referred to and outlives the store. A size or a proportion limits what a table's cache
    // keeps in memory.
    CZelStore();
    explicit CZelStore(const char *name);
    CZelStore(unsigned long long bytes, const char *name);
    CZelStore(float proportion, const char *name);
    CZelStore(const CZelStore &) = delete;
    CZelStore &operator=(const CZelStore &) = delete;
    virtual ~CZelStore();  // with all databases

    __boolean RSCached() const { return ZelBool(m_limitBySize == E_RBTrue || m_limitByProportion == E_RBTrue); }
    void RSSetPersistant(__boolean persistent);  // once true it stays true
    __boolean RSPersistant() const { return m_persistent; }

    int RSLock();
    int RSReaderLock();
    int RSUnlock();

    // --- databases (CZelStore.cpp) ---

    int RSAddDb(CZelDatabase *database);  // adopts on 1; E_RCNotInitialised, E_RCDuplicateDatabase (reported)
    int RSInitialise();                   // brings everything to life; 1. Before the store is shared: no lock
    int RSDropDatabase(const CZelAtom *name);
    CZelDatabase *RSDatabase(const CZelAtom *name) const;
    CZelDatabase *RSDatabase(const char *name) const;
    CZelAtomVector *RSDatabaseNames() const;  // new
    int RSCopyDatabase(const char *source, CZelAtom *newName, __boolean takeLock, __boolean initialise);
    EZelStoreErrorStatus RSAddDbCallback(CZelDbEntity *entity, CZelDbCallback *callback, __boolean takeLock);

    // --- tables (CZelStore_tables.cpp) ---

    int RSAddTbl(CZelTable *table, __boolean noCache);  // adopts on 1
    void RSCacheTable(CZelTable *table, __boolean lockHeld);
    EZelStoreErrorStatus RSCopyTable(const char *database, const char *table, const char *newName,
                                     CZelTblCallback *callback, int argument);
    int RSAddIndex(CZelIndex *index, EZelStoreErrorStatus *status);
    int RSDropIndex(CZelDropIndex *statement, EZelStoreErrorStatus *status);
    int RSDropObject(CZelDropObject *statement, EZelStoreErrorStatus *status);
    CZelTable *RSTableNamed(CZelDbEntity *entity) const;
    CZelAtom *RSTableIdent(CZelDbEntity *entity) const;
    CZelDoubleList *RSGetTables() const;  // a new list of CZelPointer to new CZelDbEntity, the caller's

    // --- rows (CZelStore_rows.cpp); results as the header of CZelTable tells, statuses beside them ---
    // E_RSEUpdateFailed says for all of them that a cache could not store a row.

    int RSInsert(CZelInsert *statement, EZelStoreErrorStatus *status, __boolean takeLock);
    // The record is the store's on result 1 with status E_RSEOk unless a callback refused it; a refused record
    // is never freed here.
    int RSInsert(CZelRecord *record, CZelDbEntity *entity, EZelStoreErrorStatus *status, __boolean takeLock);
    int RSDelete(CZelDelete *statement, EZelStoreErrorStatus *status);
    int RSUpdate(CZelUpdate *statement, EZelStoreErrorStatus *status);
    int RSUpdate(CZelRecord *values, CZelFilter *filter, CZelDbEntity *entity, EZelStoreErrorStatus *status);
    int RSQueryInsert(CZelQryInsert *statement, EZelStoreErrorStatus *status, __boolean storeKeepsROMP,
                      __boolean takeLock);
    int RSTotalRecordCount(CZelDbEntity *entity, EZelStoreErrorStatus *status, __boolean takeLock);

    // --- queries (CZelStore_query.cpp) ---

    CZelBag *RSQuery(CZelQuery *query, EZelStoreErrorStatus *status, __boolean storeKeepsROMP);         // data atoms
    CZelBag *RSQueryGetRecs(CZelQuery *query, EZelStoreErrorStatus *status, __boolean storeKeepsROMP);  // new records
    // asROMP: new data atoms; otherwise the stored rows of a plain table, copies of a cached one, the caller's.
    CZelBag *RSExecSimpleQuery(CZelQuery *query, EZelStoreErrorStatus *status, __boolean takeLock, __boolean asROMP);
    CZelBag *RSSimpleQuery(CZelQuery *query, EZelStoreErrorStatus *status, __boolean storeKeepsROMP);
    CZelBag *RSSimpleQueryGetRecs(CZelQuery *query, EZelStoreErrorStatus *status, __boolean storeKeepsROMP);
    // The stored rows themselves, no lock held after the return; null when the store has caches.
    CZelBag *RSSimpleQueryGetRecPtrs(CZelQuery *query, EZelStoreErrorStatus *status, __boolean storeKeepsROMP);
    CZelBag *RSJoinedQuery(CZelQuery *query, EZelStoreErrorStatus *status, __boolean storeKeepsROMP);
    CZelBag *RSJoinedQueryGetRecs(CZelQuery *query, EZelStoreErrorStatus *status, __boolean storeKeepsROMP);
    bool RSOwnResultsOfSimpleQry(CZelQuery *query) const;
    // Frees the copies of cached rows in a join's tuples, each once; the tuples stay.
    void RSTidyAfterJoinedQryFromCache(CZelBag *tuples);

    // The projection of a row to the columns of a bag of CZelDbEntity: a new record.
    CZelRecord *RSCreateRecord(CZelRecord *row, CZelBag *entities);

    // --- show (CZelStore_show.cpp) ---

    CZelBag *RSShowGetRecs(CZelShow *statement, EZelStoreErrorStatus *status);  // new records
    CZelBag *RSShow(CZelShow *statement, EZelStoreErrorStatus *status);         // data atoms

protected:
    CZelTable *RSRetrieveTable(CZelDbEntity *entity, EZelStoreErrorStatus &status) const;
    CZelDoubleList *RSRetrieveQueryTableColDefs(CZelQuery *query) const;

    // --- joins (CZelStore_join.cpp) and `select ... into` (CZelStore_into.cpp) ---

    // Tuples of the first table of the source list, valid until RSPurgeJoinedQuery; null when a table is missing.
    // For callers who see to it that one join at a time starts at that table.
    CZelBag *RSExecJoinedQuery(CZelQuery *query, EZelStoreErrorStatus *status, __boolean takeLock);
    CZelDoubleList *RSRetrieveJoinTables(CZelQuery *query, EZelStoreErrorStatus *status, CZelTable **first);
    void RSPurgeJoinedQuery(CZelQuery *query);
    int RSSimpleQueryInsert(CZelQryInsert *statement, CZelTable *table, __boolean storeKeepsROMP);
    int RSJoinedQueryInsert(CZelQryInsert *statement, CZelTable *table, __boolean storeKeepsROMP);

private:
    CZelTable *tableOf(const CZelQuery *query, EZelStoreErrorStatus *status) const;  // the first source; or null
    CZelTable *firstJoined(const CZelQuery *query) const;  // the first source that exists; or null
    bool isJoinCached(const CZelQuery *query) const;       // has one of the sources a cache?
    template <class Form>
    CZelBag *joinedResult(CZelQuery *query, EZelStoreErrorStatus *status, __boolean storeKeepsROMP, Form form);
    // The rows of a join, in front of `taker`; false when a table is missing.
    bool joinRows(CZelQuery *query, EZelStoreErrorStatus *status, CZelJoinTaker &taker);
    bool joinCopies(CZelQuery *query, EZelStoreErrorStatus *status, __boolean storeKeepsROMP, CZelJoinTaker &taker);
    int countJoined(CZelQuery *query, EZelStoreErrorStatus *status);
    static void insertInto(CZelTable &table, CZelRecord *record, const CZelAtomVector *uniques);
    int countRows(CZelQuery *query, EZelStoreErrorStatus *status);
    // *isKept: a callback kept a table, whose cache file then stays too.
    int dropDatabase(CZelDbEntity &target, EZelStoreErrorStatus *status, bool &isKept);
    int dropTable(CZelDbEntity &target, EZelStoreErrorStatus *status, bool &isKept);
    void clearCacheFiles(CZelDbEntity &target, bool wholeDatabase);

    CZelTreeList *m_databases;  // name -> CZelDatabase*, owned
    CZelTreeList *m_indices;    // index name -> CZelTable* that has it, not owned
    mutable CZelRWLock m_lock;
    __boolean m_limitBySize = E_RBFalse;
    __boolean m_limitByProportion = E_RBFalse;
    unsigned long long m_inCoreLimit = 0;
    float m_inCoreProportion = 0.0F;
    __boolean m_persistent = E_RBFalse;
    const char *m_cacheName = nullptr;  // not owned
};
