#include "foundations/base/CZelStack.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelIndex.h"
#include "oql/CZelInsert.h"
#include "oql/CZelSchema.h"
#include "store/CZelDatabase.h"
#include "store/CZelStore.h"
#include "store/CZelTable.h"
#include "storemgr/CZelStoreMgr.h"

namespace {

void reportFailure(CZelDbObject *statement, int code) {
    std::string text;
    CZelStoreMgr::RSMBuildErrorString(statement, code, nullptr, text);
    ZEL_REPORT(code, text.c_str());
}

// Pops the statements of a kind in text order and hands each to `take`, which owns it from then on.
template <class Statement, class Take>
int consume(CZelSchema &schema, __e_dbObj kind, const char *missing, Take take) {
    CZelStack *items = schema.RSGetItems(kind);
    if (items == nullptr)
        return ZEL_FAIL(E_RCNull, missing);
    while (void *item = items->RSPop())
        take(static_cast<Statement *>(static_cast<CZelDbObject *>(item)));
    return 1;
}

}  // namespace

int CZelStoreMgr::RSMReadSchema(CZelSchema &schema) {
    const int status = schema.RSParseSchema();
    if (status != 1)
        return status;
    RSMConsumeSchema(schema);
    return 1;
}

int CZelStoreMgr::RSMConsumeSchema(CZelSchema &schema) {
    RSMDefineStore(schema);
    RSMInitialiseStore();
    RSMConsumeInserts(schema);
    return 1;
}

int CZelStoreMgr::RSMDefineStore(CZelSchema &schema) {
    RSMConsumeDatabases(schema);
    RSMConsumeTables(schema);
    RSMConsumeIndices(schema);
    return 1;
}

int CZelStoreMgr::RSMInitialiseStore() {
    return m_Store->RSInitialise();
}

int CZelStoreMgr::RSMConsumeDatabases(CZelSchema &schema) {
    const char *missing = "Failed to retrieve databases from schema";
    return consume<CZelDatabase>(schema, E_DODatabase, missing, [this](CZelDatabase *database) {
        const int status = m_Store->RSAddDb(database);
        if (status != 1)
            ZEL_REPORT(status, "CZelStoreMgr::RSMConsumeDatabases");
        if (database->RDGetStoreErrorStatus() != E_RSEOk)
            delete database;
    });
}

int CZelStoreMgr::RSMConsumeTables(CZelSchema &schema) {
    const char *missing = "Failed to retrieve tables from schema";
    return consume<CZelTable>(schema, E_DOTable, missing, [this](CZelTable *table) {
        const int status = m_Store->RSAddTbl(table, E_RBTrue);
        if (status != 1 && status != E_RCDuplicateTable)
            ZEL_REPORT(status, "CZelStoreMgr::RSMConsumeTables");
        if (table->RTGetStoreErrorStatus() != E_RSEOk)
            delete table;
    });
}

int CZelStoreMgr::RSMConsumeIndices(CZelSchema &schema) {
    const char *missing = "Failed to retrieve indices from schema";
    return consume<CZelIndex>(schema, E_DOIndex, missing, [this](CZelIndex *index) {
        const int status = m_Store->RSAddIndex(index, nullptr);
        if (status != 1)
            reportFailure(index, status);
        delete index;
    });
}

int CZelStoreMgr::RSMConsumeInserts(CZelSchema &schema) {
    return consume<CZelInsert>(schema, E_DOInsert, nullptr, [this](CZelInsert *insert) {
        const int status = m_Store->RSInsert(insert, nullptr, E_RBTrue);
        if (status != 1)
            reportFailure(insert, status);
        delete insert;
    });
}
