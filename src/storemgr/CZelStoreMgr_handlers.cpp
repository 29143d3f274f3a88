#include <cstdio>
#include <cstdlib>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBag.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/ZelDebug.h"
#include "oql/CZelDelete.h"
#include "oql/CZelDropIndex.h"
#include "oql/CZelDropObject.h"
#include "oql/CZelExit.h"
#include "oql/CZelIndex.h"
#include "oql/CZelInsert.h"
#include "oql/CZelQryInsert.h"
#include "oql/CZelQuery.h"
#include "oql/CZelUpdate.h"
#include "store/CZelDatabase.h"
#include "store/CZelStore.h"
#include "store/CZelStoreWholeOperation.h"
#include "store/CZelTable.h"
#include "storemgr/CZelStoreMgr.h"

namespace {

void clearStatus(EZelStoreErrorStatus *status) {
    if (status != nullptr)
        *status = E_RSEOk;
}

// Reports what the statement did and why it failed; gives the code back.
int failed(CZelDbObject *statement, int code, EZelStoreErrorStatus *status) {
    std::string text;
    CZelStoreMgr::RSMBuildErrorString(statement, code, status, text);
    return ZEL_FAIL(code, text.c_str());
}

constexpr const char *SENTENCES[] = {
    " permission was denied to the store.",
    " the database you attempted to access didn't exist.",
    " the table you attempted to access didn't exist.",
    " the clm you attempted to access didn't exist.",
    " the index you attempted to access didn't exist.",
    " the type of data you attempted to use was incompatible.",
    " the row was incomplete.",
    " the search of the database failed to retrieve anything",
    " the attempt to create the table failed (database not present or table already present ?).",
    " the attempt to create the database failed (database already present? ).",
    " the attempt to create the index failed (index with that name already present ?).",
    " a record with the same key already exists.",
    " the update failed.",
};

}  // namespace

const char *CZelStoreMgr::RSMStatusSentence(EZelStoreErrorStatus status) {
    const bool known = status >= E_RSEPermission && status <= E_RSEUpdateFailed;
    return known ? SENTENCES[status - E_RSEPermission] : " of an unknown problem.";
}

void CZelStoreMgr::RSMBuildErrorString(CZelDbObject *statement, int /*code*/, EZelStoreErrorStatus *status,
                                       std::string &out) {
    if (statement != nullptr) {
        out += "The database action \n";
        char *text = statement->RDOAsString();
        out += text != nullptr ? text : "";
        std::free(text);
    } else {
        out += "The NULL database action ";
    }
    if (status == nullptr) {
        out += " failed.";
        return;
    }
    out += " caused the error because ";
    out += RSMStatusSentence(*status);
}

int CZelStoreMgr::dispatchAction(CZelDbObject *statement, EZelStoreErrorStatus *status) {
    switch (statement->RDOType()) {
        case E_DODatabase:
            return RSMDoDbase(static_cast<CZelDatabase *>(statement), status);
        case E_DOTable:
            return RSMDoTable(static_cast<CZelTable *>(statement), status);
        case E_DOInsert:
            return RSMDoInsert(static_cast<CZelInsert *>(statement), status);
        case E_DODelete:
            return RSMDoDelete(static_cast<CZelDelete *>(statement), status);
        case E_DOUpdate:
            return RSMDoUpdate(static_cast<CZelUpdate *>(statement), status);
        case E_DOQryInsert:
            return RSMDoQryIns(static_cast<CZelQryInsert *>(statement), status);
        case E_DODropObject:
            return RSMDoDropObj(static_cast<CZelDropObject *>(statement), status);
        case E_DOIndex:
            return RSMDoIndex(static_cast<CZelIndex *>(statement), status);
        case E_DODropIndex:
            return RSMDoDropIdx(static_cast<CZelDropIndex *>(statement), status);
        default:
            return E_RCBadArgument;
    }
}

int CZelStoreMgr::RSMDoTable(CZelTable *table, EZelStoreErrorStatus *status) {
    clearStatus(status);
    const CZelStoreWholeOperation operation(*m_Store);
    const int added = m_Store->RSAddTbl(table, E_RBFalse);
    if (added == 1 && table->RTGetStoreErrorStatus() == E_RSEOk) {
        const int live = table->RDOInitialise(m_Store);
        return live == 1 ? 1 : ZEL_FAIL(live, "CZelStoreMgr::RSMDoTable");
    }
    EZelStoreErrorStatus refused = table->RTGetStoreErrorStatus();
    if (status != nullptr)
        *status = refused;
    if (added != 1 && added != E_RCNotInitialised && added != E_RCDuplicateTable)
        failed(table, added, &refused);
    return 1;
}

int CZelStoreMgr::RSMDoDbase(CZelDatabase *database, EZelStoreErrorStatus *status) {
    clearStatus(status);
    const CZelStoreWholeOperation operation(*m_Store);
    const int added = m_Store->RSAddDb(database);
    if (added == 1 && database->RDGetStoreErrorStatus() == E_RSEOk) {
        const int live = database->RDOInitialise(m_Store);
        return live == 1 ? 1 : ZEL_FAIL(live, "CZelStoreMgr::RSMDoDbase");
    }
    EZelStoreErrorStatus refused = database->RDGetStoreErrorStatus();
    if (status != nullptr)
        *status = refused;
    if (added != 1)
        failed(database, added, &refused);
    return 1;
}

int CZelStoreMgr::RSMDoInsert(CZelInsert *insert, EZelStoreErrorStatus *status) {
    const int code = m_Store->RSInsert(insert, status, E_RBTrue);
    return code == 1 ? 1 : failed(insert, code, status);
}

int CZelStoreMgr::RSMDoDelete(CZelDelete *statement, EZelStoreErrorStatus *status) {
    const int code = m_Store->RSDelete(statement, status);
    return code == 1 ? 1 : failed(statement, code, status);
}

int CZelStoreMgr::RSMDoUpdate(CZelUpdate *update, EZelStoreErrorStatus *status) {
    const int code = m_Store->RSUpdate(update, status);
    return code == 1 || code == E_RCNotFound ? code : failed(update, code, status);
}

int CZelStoreMgr::RSMDoQryIns(CZelQryInsert *statement, EZelStoreErrorStatus *status) {
    const int code = m_Store->RSQueryInsert(statement, status, m_StoreKeepsROMP, E_RBTrue);
    return code == 1 ? 1 : ZEL_FAIL(code, "CZelStoreMgr::RSMDoQryIns");
}

int CZelStoreMgr::RSMDoDropObj(CZelDropObject *statement, EZelStoreErrorStatus *status) {
    const int code = m_Store->RSDropObject(statement, status);
    if (code == 1)
        return 1;
    if (code != E_RCNotFound)
        return failed(statement, code, status);
    if (__Zeltronix_Debug_Level >= 4)
        std::puts("Object to drop was not found");
    return 1;
}

int CZelStoreMgr::RSMDoIndex(CZelIndex *index, EZelStoreErrorStatus *status) {
    clearStatus(status);
    const int code = m_Store->RSAddIndex(index, status);
    return code == 1 ? 1 : failed(index, code, nullptr);
}

int CZelStoreMgr::RSMDoDropIdx(CZelDropIndex *statement, EZelStoreErrorStatus *status) {
    clearStatus(status);
    const int code = m_Store->RSDropIndex(statement, status);
    return code == 1 ? 1 : failed(statement, code, nullptr);
}

CZelBag *CZelStoreMgr::RSMDoQuery(CZelQuery *query, EZelStoreErrorStatus *status) {
    return m_Store->RSQuery(query, status, m_StoreKeepsROMP);
}

CZelBag *CZelStoreMgr::RSMDoQueryGetRecs(CZelQuery *query, EZelStoreErrorStatus *status) {
    return m_Store->RSQueryGetRecs(query, status, m_StoreKeepsROMP);
}

int CZelStoreMgr::RSMDoExit(CZelExit * /*statement*/, EZelStoreErrorStatus * /*status*/, CZelQryInfo * /*request*/) {
    m_ExitRequested = E_RBTrue;
    return 1;
}
