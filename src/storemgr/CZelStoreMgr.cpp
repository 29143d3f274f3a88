#include "storemgr/CZelStoreMgr.h"

#include <cstdio>
#include <cstdlib>

#include "clause/CZelCmdCmplr.h"
#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/CZelServPool.h"
#include "foundations/port/ZelDebug.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelDbObject.h"
#include "oql/CZelExit.h"
#include "oql/CZelQuery.h"
#include "oql/CZelShow.h"
#include "store/CZelDatabase.h"
#include "store/CZelStore.h"
#include "store/CZelTable.h"

namespace {

// Frees the rows that nobody asked for.
void deleteRows(CZelBag *rows, __boolean areRecords) {
    if (areRecords == E_RBTrue)
        const CZelBagGuard<CZelRecord> owner(rows);
    else
        const CZelBagGuard<CZelAtom> owner(rows);
}

void handOver(CZelBag *rows, CZelBag **results, __boolean areRecords) {
    if (results != nullptr)
        *results = rows;
    else
        deleteRows(rows, areRecords);
}

void traceText(const char *oql) {
    if (__Zeltronix_Debug_Level >= 4)
        std::printf("RSMProcessOQL: %s\n", oql != nullptr ? oql : "NULL");
}

void reportAgain(int code) {
    if (code != 1)
        ZEL_REPORT(code, "CZelStoreMgr::RSMQueryDist");
}

// A failed insert shows its text to a developer.
void traceInsert(CZelDbObject *insert, int code) {
    if (code == 1 || __Zeltronix_Debug_Level < 4)
        return;
    char *text = insert->RDOAsString();
    std::printf("%s\n", text != nullptr ? text : "NULL");
    std::free(text);
}

}  // namespace

CZelStoreMgr::CZelStoreMgr(CZelEngine *engine, void (*exitFn)(void))
    : CZelStoreMgr(engine, E_RBFalse, 0, E_RBFalse, 0.0F, exitFn, nullptr, E_RBFalse) {}

// The bus connection is taken by RSMSetRvNet; here it only says on which side of the bus the process stands.
CZelStoreMgr::CZelStoreMgr(CZelEngine *engine, __boolean useByteLimit, unsigned long long byteLimit,
                           __boolean useFractionLimit, float fractionLimit, void (*exitFn)(void), const char *cacheName,
                           __boolean persistent)
    : m_HasEngine(ZelBool(engine != nullptr)), m_ExitFn(exitFn) {
    RSMCreateStore(useByteLimit, byteLimit, useFractionLimit, fractionLimit, cacheName, persistent);
}

CZelStoreMgr::CZelStoreMgr(CZelClient * /*client*/, __boolean useByteLimit, unsigned long long byteLimit,
                           __boolean useFractionLimit, float fractionLimit, void (*exitFn)(void), const char *cacheName,
                           __boolean persistent)
    : m_ExitFn(exitFn) {
    RSMCreateStore(useByteLimit, byteLimit, useFractionLimit, fractionLimit, cacheName, persistent);
}

void CZelStoreMgr::RSMCreateStore(__boolean useByteLimit, unsigned long long byteLimit, __boolean useFractionLimit,
                                  float fractionLimit, const char *cacheName, __boolean persistent) {
    if (useByteLimit == E_RBTrue)
        m_Store = new CZelStore(byteLimit, cacheName);
    else if (useFractionLimit == E_RBTrue)
        m_Store = new CZelStore(fractionLimit, cacheName);
    else
        m_Store = new CZelStore(cacheName);
    m_StoreKeepsROMP = ZelBool(useByteLimit == E_RBTrue || useFractionLimit == E_RBTrue || persistent == E_RBTrue);
    if (persistent == E_RBTrue)
        m_Store->RSSetPersistant(E_RBTrue);
}

CZelStoreMgr::~CZelStoreMgr() {
    RSMEnterShutdownMode();
    delete m_ServePool;
    CZelDoubleList *tables = RSMGetTables();
    for (CZelListable *node = tables->RDLHead(); node != nullptr; node = tables->RDLGetNext(node)) {
        auto *entity = static_cast<CZelDbEntity *>(static_cast<CZelPointer *>(node)->RPData());
        if (CZelTable *table = RSMGetTable(entity))
            table->RTAddActive(nullptr, 0);
        delete entity;
    }
    delete tables;
    delete m_Store;
}

void CZelStoreMgr::OnData(const char * /*subject*/, CMOMRvSender * /*sender*/, const CMOMRvDatum & /*datum*/,
                          CMOMRvListener * /*listener*/) {
    if (m_ShuttingDown != E_RBTrue)
        ZEL_REPORT(E_RCUnsupported, "CZelStoreMgr::OnData: this build has no remote service; the request is dropped");
}

int CZelStoreMgr::RSMTransDist(CZelQryInfo * /*request*/, EZelStoreErrorStatus * /*status*/) {
    return ZEL_FAIL(E_RCUnsupported, "CZelStoreMgr::RSMTransDist: this build has no remote service");
}

int CZelStoreMgr::RSMAddWorkToServePool(void *work) {
    if (m_ServePool == nullptr)
        return ZEL_FAIL(E_RCBadArgument, "CZelStoreMgr::RSMAddWorkToServePool: there is no pool");
    return m_ServePool->RSPAddWorkDetail(work);
}

void CZelStoreMgr::RSMEnterShutdownMode() {
    m_ShuttingDown = E_RBTrue;
}

int CZelStoreMgr::RSMProcessOQL(const char *oql, CZelBag **results, EZelStoreErrorStatus *status, CZelRecord *current) {
    CZelCmdCmplr compiler;
    return RSMProcessOQL(compiler, oql, results, status, current, E_RBFalse);
}

int CZelStoreMgr::RSMProcessOQLGetRecs(const char *oql, CZelBag **results, EZelStoreErrorStatus *status,
                                       CZelRecord *current) {
    CZelCmdCmplr compiler;
    return RSMProcessOQL(compiler, oql, results, status, current, E_RBTrue);
}

int CZelStoreMgr::RSMProcessOQL(CZelCmdCmplr &compiler, const char *oql, CZelBag **results,
                                EZelStoreErrorStatus *status, CZelRecord *current, __boolean getRecs) {
    traceText(oql);
    if (results != nullptr)
        *results = nullptr;
    if (oql == nullptr)
        return ZEL_FAIL(E_RCBadArgument, "CZelStoreMgr::RSMProcessOQL: no text");
    compiler.RCCPurge(E_RBFalse);
    int code = compiler.RCCCompileOQL(oql);
    if (code == 1)
        code = runCompiled(compiler, results, status, current, getRecs);
    compiler.RCCPurge(E_RBFalse);
    return code;
}

int CZelStoreMgr::RSMProcessPrecompiled(CZelBag *statements, CZelBag **results, EZelStoreErrorStatus *status,
                                        CZelRecord *current, __boolean getRecs) {
    CZelDbObject *ready = statements != nullptr ? CZelCmdCmplr::RCCReadyStatement(*statements) : nullptr;
    if (ready != nullptr) {
        handOver(RSMQueryDist(ready, status, getRecs), results, getRecs);
        return 1;
    }
    CZelCmdCmplr compiler;
    compiler.RCCCompileOQL(statements, false);
    return runCompiled(compiler, results, status, current, getRecs);
}

// Evaluates the clauses against the record and runs actions, then queries. The results of the queries replace
// those of the actions.
int CZelStoreMgr::runCompiled(CZelCmdCmplr &compiler, CZelBag **results, EZelStoreErrorStatus *status,
                              CZelRecord *current, __boolean getRecs) {
    CZelBag activeSet;
    if (current != nullptr)
        activeSet.RBAdd(static_cast<void *>(current));
    compiler.RCCSetActiveSet(&activeSet);
    compiler.RCCSetCurrentRec(current, 0);
    const int compiled = compiler.RCCCompileClauses();
    if (compiled != 1)
        ZEL_REPORT(compiled, "CZelStoreMgr::RSMProcessOQL");
    deleteRows(RSMDistributeQuery(compiler.RCCActions(), status, getRecs), getRecs);
    CZelBag *rows = RSMDistributeQuery(compiler.RCCQueries(), status, getRecs);
    compiler.RCCSetActiveSet(nullptr);
    handOver(rows, results, getRecs);
    return compiled;
}

CZelBag *CZelStoreMgr::RSMDistributeQuery(CZelBag *statements, EZelStoreErrorStatus *status, __boolean getRecs) {
    if (statements == nullptr)
        return nullptr;
    CZelBag *all = nullptr;
    for (CZelPointer *node = statements->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        CZelBag *rows = RSMQueryDist(static_cast<CZelDbObject *>(node->RPData()), status, getRecs);
        if (all == nullptr)
            all = rows;
        else if (rows != nullptr)
            all->RBAdd(rows);
    }
    return all;
}

CZelBag *CZelStoreMgr::RSMQueryDist(CZelDbObject *statement, EZelStoreErrorStatus *status, __boolean getRecs) {
    if (statement == nullptr)
        return nullptr;
    switch (statement->RDOType()) {
        case E_DONone:
            return nullptr;
        case E_DOQuery: {
            auto *query = static_cast<CZelQuery *>(statement);
            return getRecs == E_RBTrue ? RSMDoQueryGetRecs(query, status) : RSMDoQuery(query, status);
        }
        case E_DOShow: {
            auto *show = static_cast<CZelShow *>(statement);
            return getRecs == E_RBTrue ? m_Store->RSShowGetRecs(show, status) : m_Store->RSShow(show, status);
        }
        case E_DOExit:
            RSMDoExit(static_cast<CZelExit *>(statement), status, nullptr);
            return nullptr;
        default:
            break;
    }
    const bool isInsert = statement->RDOType() == E_DOInsert;
    const int code = dispatchAction(statement, status);  // a table may be another's to drop from here on
    reportAgain(code);
    if (isInsert)
        traceInsert(statement, code);
    return nullptr;
}

CZelTable *CZelStoreMgr::RSMGetTable(CZelDbEntity *table) const {
    return m_Store->RSTableNamed(table);
}

CZelDoubleList *CZelStoreMgr::RSMGetTables() const {
    return m_Store->RSGetTables();
}

int CZelStoreMgr::RSMTotalRecordCount(CZelDbEntity *table, EZelStoreErrorStatus *status) {
    return m_Store->RSTotalRecordCount(table, status, E_RBTrue);
}

CZelBag *CZelStoreMgr::RSMSimpleQueryGetRecPointers(CZelQuery *query, EZelStoreErrorStatus *status) {
    const char *refusal = nullptr;
    if (query == nullptr || query->RQSource() == nullptr || query->RQSource()->RBLength() != 1)
        refusal = "Only call RSMSimpleQueryGetRecPointers for simple queries";
    else if (query->RQSelectStar() != E_RBTrue)
        refusal = "Only call RSMSimpleQueryGetRecPointers for 'select *' queries";
    if (refusal == nullptr)
        return m_Store->RSSimpleQueryGetRecPtrs(query, status, m_StoreKeepsROMP);
    ZEL_REPORT(E_RCBadArgument, refusal);
    return nullptr;
}

EZelStoreErrorStatus CZelStoreMgr::RSMDbEntityExists(CZelDbEntity *entity) const {
    if (entity == nullptr || entity->RDEDbNameAtom() == nullptr)
        return E_RSENoMatch;
    const CZelDatabase *database = m_Store->RSDatabase(entity->RDEDbNameAtom());
    if (database == nullptr)
        return E_RSENoDatabase;
    const CZelAtom *table = entity->RDETblNameAtom();
    return table == nullptr || database->RDTableNamed(*table) != nullptr ? E_RSEOk : E_RSENoTable;
}

EZelStoreErrorStatus CZelStoreMgr::RSMAddDbCallback(CZelDbEntity *database, CZelDbCallback *callback) {
    return m_Store->RSAddDbCallback(database, callback, E_RBTrue);
}

EZelStoreErrorStatus CZelStoreMgr::RSMAddActive(CZelDbEntity *table, CZelTblCallback *callback, int argument) {
    const EZelStoreErrorStatus exists = RSMDbEntityExists(table);
    if (exists != E_RSEOk)
        return exists;
    if (table->RDETblNameAtom() == nullptr) {
        if (__Zeltronix_Debug_Level > 0)
            std::fprintf(stderr, "Warning : DbEntity does not contain table definition %s %d\n", ZEL_SOURCE_NAME,
                         __LINE__);
        return E_RSENoTable;
    }
    RSMGetTable(table)->RTAddActive(callback, argument);
    return E_RSEOk;
}

int CZelStoreMgr::RSMCopyDatabase(char *source, char *target) {
    CZelAtom name(static_cast<const char *>(target));
    const int status = m_Store->RSCopyDatabase(source, &name, E_RBTrue, E_RBTrue);
    return status == 1 ? 1 : ZEL_FAIL(status, "CZelStoreMgr::RSMCopyDatabase");
}

EZelStoreErrorStatus CZelStoreMgr::RSMCopyTable(const char *database, const char *table, const char *newName,
                                                CZelTblCallback *callback, int argument) {
    return m_Store->RSCopyTable(database, table, newName, callback, argument);
}
