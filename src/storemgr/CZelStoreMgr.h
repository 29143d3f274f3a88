// The front door of the library: OQL text or records in, results and status out. It owns one store, compiles
// the text, sends every statement to the store operation that fits, turns failures into reports and hands
// results back.
//
// Every statement passes through the virtual RSMDo... handlers, which a server may override.
//
// Threads: no lock of its own; any number of threads may run OQL at once. A text of several statements is not
// atomic: each takes and releases the store lock by itself.
#pragma once

#include <string>

#include "foundations/base/ZelEnums.h"
#include "foundations/mom/CMOMRvDataCallback.h"

class CZelAtom;
class CZelAtomVector;
class CZelBag;
class CZelClient;
class CZelCmdCmplr;
class CZelDatabase;
class CZelDbCallback;
class CZelDbEntity;
class CZelDbObject;
class CZelDelete;
class CZelDoubleList;
class CZelDropIndex;
class CZelDropObject;
class CZelEngine;
class CZelExit;
class CZelFilter;
class CZelIndex;
class CZelInsert;
class CZelQryInfo;
class CZelQryInsert;
class CZelQuery;
class CZelRecord;
class CZelRvNet;
class CZelSchema;
class CZelServPool;
class CZelSmartRecord;
class CZelStore;
class CZelTable;
class CZelTblCallback;
class CZelUpdate;

class QUINTOR_API CZelStoreMgr : public CMOMRvDataCallback {
public:
    // A plain in-memory store. Engine or client may be null: a manager without a bus. `exitFn` may be null.
    CZelStoreMgr(CZelEngine *engine, void (*exitFn)(void));
    // A store whose tables have record caches, limited by bytes or by a share, or persistent.
    CZelStoreMgr(CZelEngine *engine, __boolean useByteLimit, unsigned long long byteLimit, __boolean useFractionLimit,
                 float fractionLimit, void (*exitFn)(void), const char *cacheName, __boolean persistent);
    CZelStoreMgr(CZelClient *client, __boolean useByteLimit, unsigned long long byteLimit, __boolean useFractionLimit,
                 float fractionLimit, void (*exitFn)(void), const char *cacheName, __boolean persistent);
    CZelStoreMgr(const CZelStoreMgr &) = delete;
    CZelStoreMgr &operator=(const CZelStoreMgr &) = delete;
    ~CZelStoreMgr() override;

    // Requests from the bus. Without the remote service they are reported and dropped.
    void OnData(const char *subject, CMOMRvSender *sender, const CMOMRvDatum &datum, CMOMRvListener *listener) override;

    // --- statement handlers: 1 or a code; a failure is reported with its sentence ---

    virtual int RSMTransDist(CZelQryInfo *request, EZelStoreErrorStatus *status);
    virtual int RSMDoTable(CZelTable *table, EZelStoreErrorStatus *status);
    virtual int RSMDoDbase(CZelDatabase *database, EZelStoreErrorStatus *status);
    virtual int RSMDoInsert(CZelInsert *insert, EZelStoreErrorStatus *status);
    virtual int RSMDoDelete(CZelDelete *statement, EZelStoreErrorStatus *status);
    virtual int RSMDoQryIns(CZelQryInsert *statement, EZelStoreErrorStatus *status);
    virtual int RSMDoDropObj(CZelDropObject *statement, EZelStoreErrorStatus *status);
    virtual int RSMDoIndex(CZelIndex *index, EZelStoreErrorStatus *status);
    virtual int RSMDoDropIdx(CZelDropIndex *statement, EZelStoreErrorStatus *status);
    virtual CZelBag *RSMDoQuery(CZelQuery *query, EZelStoreErrorStatus *status);         // data atoms
    virtual CZelBag *RSMDoQueryGetRecs(CZelQuery *query, EZelStoreErrorStatus *status);  // records
    virtual int RSMDoExit(CZelExit *statement, EZelStoreErrorStatus *status, CZelQryInfo *request);
    virtual int RSMAddWorkToServePool(void *work);
    virtual int RSMDoUpdate(CZelUpdate *update, EZelStoreErrorStatus *status);

    // --- schema (CZelStoreMgr_schema.cpp) ---

    virtual int RSMConsumeSchema(CZelSchema &schema);  // define, initialise, inserts; 1
    int RSMReadSchema(CZelSchema &schema);             // parses and consumes; 1 or the parse's code
    int RSMDefineStore(CZelSchema &schema);            // databases, tables, indices; 1
    int RSMInitialiseStore();
    int RSMConsumeDatabases(CZelSchema &schema);
    int RSMConsumeTables(CZelSchema &schema);
    int RSMConsumeIndices(CZelSchema &schema);
    int RSMConsumeInserts(CZelSchema &schema);

    // --- OQL ---

    // Runs a text: all its actions, then all its queries, each in text order. *results becomes the queries'
    // rows, the caller's with all in it: data atoms that CZelRecord::ROMDecode reads, or records; null when
    // there was no query. results, status and current (the record that clauses read) may be null. What went
    // wrong is in *status (untouched by a text without statements) and in the reports; a syntax error gives 1.
    int RSMProcessOQL(const char *oql, CZelBag **results, EZelStoreErrorStatus *status, CZelRecord *current);
    int RSMProcessOQLGetRecs(const char *oql, CZelBag **results, EZelStoreErrorStatus *status, CZelRecord *current);
    // The same with a compiler of the caller's, which brings constants. It is purged before and after.
    int RSMProcessOQL(CZelCmdCmplr &compiler, const char *oql, CZelBag **results, EZelStoreErrorStatus *status,
                      CZelRecord *current, __boolean getRecs);
    // Statements parsed earlier (RCCPrecompileOQL), run without parsing. They stay the caller's.
    int RSMProcessPrecompiled(CZelBag *statements, CZelBag **results, EZelStoreErrorStatus *status, CZelRecord *current,
                              __boolean getRecs);
    CZelBag *RSMDistributeQuery(CZelBag *statements, EZelStoreErrorStatus *status, __boolean getRecs);
    CZelBag *RSMQueryDist(CZelDbObject *statement, EZelStoreErrorStatus *status, __boolean getRecs);

    // --- records without OQL (CZelStoreMgr_records.cpp); ownership as CZelStore tells ---

    int RSMInsert(CZelRecord *record, CZelDbEntity *table, EZelStoreErrorStatus *status, __boolean takeLock);
    int RSMUpdate(CZelRecord *values, CZelFilter *filter, CZelDbEntity *table, EZelStoreErrorStatus *status);
    // The key columns' values in the record choose the rows; without any of them nothing happens and 1.
    int RSMUpdate(CZelRecord *values, const char *key, CZelDbEntity *table, EZelStoreErrorStatus *status);
    int RSMUpdate(CZelRecord *values, const CZelAtomVector &keys, CZelDbEntity *table, EZelStoreErrorStatus *status);
    int RSMDelete(CZelRecord *record, const char *key, const CZelDbEntity *table, EZelStoreErrorStatus *status);
    int RSMDelete(CZelRecord *record, const CZelAtomVector &keys, const CZelDbEntity *table,
                  EZelStoreErrorStatus *status);
    // Applies a change record whose int field `actionField` says what to do: 0 insert, 1 update or insert,
    // 2 delete. The caller's hold on the record passes on.
    int RSMNotifyRecordToDb(CZelSmartRecord *record, const CZelDbEntity *table, const char *actionField,
                            const CZelAtomVector &keys, EZelStoreErrorStatus *status);

    // New filters, the caller's; null when the record lacks the column.
    static CZelFilter *RSMMakeSimpleFilter(const char *column, const CZelAtom &value, EZelOper op);
    static CZelFilter *RSMMakeSimpleFilter(const char *column, CZelRecord *record, EZelOper op);
    static CZelFilter *RSMMakeSimpleFilter(const CZelAtomVector &columns, CZelRecord *record, EZelOper op);

    // --- the store ---

    // The stored rows themselves, for a `select *` from one table; otherwise reported and null.
    CZelBag *RSMSimpleQueryGetRecPointers(CZelQuery *query, EZelStoreErrorStatus *status);
    int RSMTotalRecordCount(CZelDbEntity *table, EZelStoreErrorStatus *status);
    CZelStore *RSMGetStore() const { return m_Store; }
    CZelTable *RSMGetTable(CZelDbEntity *table) const;
    CZelDoubleList *RSMGetTables() const;
    EZelStoreErrorStatus RSMDbEntityExists(CZelDbEntity *entity) const;
    EZelStoreErrorStatus RSMAddDbCallback(CZelDbEntity *database, CZelDbCallback *callback);
    EZelStoreErrorStatus RSMAddActive(CZelDbEntity *table, CZelTblCallback *callback, int argument);
    int RSMCopyDatabase(char *source, char *target);
    EZelStoreErrorStatus RSMCopyTable(const char *database, const char *table, const char *newName,
                                      CZelTblCallback *callback, int argument);
    void RSMSetRvNet(CZelRvNet *net) { m_Net = net; }

    void RSMEnterShutdownMode();

    // Appends to `out` what a failed statement did and why.
    static void RSMBuildErrorString(CZelDbObject *statement, int code, EZelStoreErrorStatus *status, std::string &out);
    // The sentence of a status, as it stands in such a text.
    static const char *RSMStatusSentence(EZelStoreErrorStatus status);

protected:
    void RSMCreateStore(__boolean useByteLimit, unsigned long long byteLimit, __boolean useFractionLimit,
                        float fractionLimit, const char *cacheName, __boolean persistent);
    int runCompiled(CZelCmdCmplr &compiler, CZelBag **results, EZelStoreErrorStatus *status, CZelRecord *current,
                    __boolean getRecs);

private:
    int dispatchAction(CZelDbObject *statement, EZelStoreErrorStatus *status);
    int insertAndRelease(CZelSmartRecord *record, CZelDbEntity &table, EZelStoreErrorStatus *status);
    int updateOrInsert(CZelSmartRecord *record, CZelDbEntity &table, const CZelAtomVector &keys,
                       EZelStoreErrorStatus *status);

    CZelStore *m_Store = nullptr;
    CZelServPool *m_ServePool = nullptr;
    CZelRvNet *m_Net = nullptr;
    __boolean m_HasEngine = E_RBFalse;
    __boolean m_StoreKeepsROMP = E_RBFalse;
    __boolean m_ShuttingDown = E_RBFalse;
    __boolean m_ExitRequested = E_RBFalse;
    void (*m_ExitFn)(void) = nullptr;
};
