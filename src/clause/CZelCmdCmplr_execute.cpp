#include <cstdlib>

#include "clause/CZelCmdCmplr.h"
#include "foundations/base/CZelString.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDelete.h"
#include "oql/CZelDropIndex.h"
#include "oql/CZelIndex.h"
#include "oql/CZelInsert.h"
#include "oql/CZelQryInsert.h"
#include "oql/CZelUpdate.h"
#include "store/CZelDatabase.h"
#include "store/CZelStore.h"
#include "store/CZelStoreWholeOperation.h"
#include "store/CZelTable.h"

namespace {

int executeDatabase(CZelStore &store, CZelDatabase &database) {
    const CZelStoreWholeOperation operation(store);
    const int status = store.RSAddDb(&database);
    return status == 1 && database.RDGetStoreErrorStatus() == E_RSEOk ? database.RDOInitialise(&store) : status;
}

int executeTable(CZelStore &store, CZelTable &table) {
    const CZelStoreWholeOperation operation(store);
    const int status = store.RSAddTbl(&table, E_RBFalse);
    return status == 1 && table.RTGetStoreErrorStatus() == E_RSEOk ? table.RDOInitialise(&store) : status;
}

int execute(CZelStore &store, CZelDbObject *action, __boolean flag) {
    EZelStoreErrorStatus status = E_RSEOk;
    switch (action->RDOType()) {
        case E_DODatabase:
            return executeDatabase(store, static_cast<CZelDatabase &>(*action));
        case E_DOTable:
            return executeTable(store, static_cast<CZelTable &>(*action));
        case E_DOInsert:
            return store.RSInsert(static_cast<CZelInsert *>(action), &status, E_RBTrue);
        case E_DODelete:
            return store.RSDelete(static_cast<CZelDelete *>(action), &status);
        case E_DOUpdate:
            return store.RSUpdate(static_cast<CZelUpdate *>(action), &status);
        case E_DOQryInsert:
            return store.RSQueryInsert(static_cast<CZelQryInsert *>(action), &status, flag, E_RBTrue);
        case E_DOIndex:
            return store.RSAddIndex(static_cast<CZelIndex *>(action), &status);
        case E_DODropIndex:
            return store.RSDropIndex(static_cast<CZelDropIndex *>(action), &status);
        default:
            return E_RCBadArgument;
    }
}

// Appends each statement's text; a newline behind every one but the last. Was there any text?
bool appendTexts(CZelBag &statements, CZelString &out) {
    bool any = false;
    for (CZelPointer *node = statements.RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        char *text = static_cast<CZelDbObject *>(node->RPData())->RDOAsString();
        any = any || text != nullptr;
        out.RSStrCat(text);
        std::free(text);
        if (CZelBag::RBNext(node) != nullptr)
            out.RSNewLine();
    }
    return any;
}

}  // namespace

int CZelCmdCmplr::RCCExecuteOQL(CZelStore *store, __boolean flag) {
    for (CZelPointer *node = m_Actions.RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        const int status = execute(*store, static_cast<CZelDbObject *>(node->RPData()), flag);
        if (status != 1)
            ZEL_REPORT(status, "CZelCmdCmplr::RCCExecuteOQL");
    }
    return 1;
}

char *CZelCmdCmplr::RCCCompileOQLToString(const char *text) {
    RCCCompileOQL(text);
    return RCCCompileOQLToString();
}

char *CZelCmdCmplr::RCCCompileOQLToString(CZelBag *statements) {
    RCCCompileOQL(statements, false);
    char *text = RCCCompileOQLToString();
    RCCPurge(E_RBFalse);
    return text;
}

char *CZelCmdCmplr::RCCCompileOQLToString() {
    RCCCompileClauses();
    CZelString text;
    const bool anyAction = appendTexts(m_Actions, text);
    const bool anyQuery = appendTexts(m_Queries, text);
    return anyAction || anyQuery ? text.RSTakeString() : nullptr;
}
