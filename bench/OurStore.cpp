#include "bench/OurStore.h"

#include <cstdio>
#include <cstdlib>

#include "clause/CZelCmdCmplr.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelDelete.h"
#include "oql/CZelExpr.h"
#include "oql/CZelQuery.h"
#include "oql/CZelUpdate.h"
#include "store/CZelBoolean.h"
#include "store/CZelFilter.h"

namespace {

void add(CZelRecord &record, const char *name, CZelAtom *value) {
    record.RRAddValue(name, &value);
}

long countAndFree(CZelBag *rows) {
    const CZelBagGuard<CZelRecord> owner(rows);
    return rows != nullptr ? rows->RBLength() : 0;
}

CZelFilter *filterOf(CZelDbObject *statement) {
    switch (statement->RDOType()) {
        case E_DOQuery:
            return static_cast<CZelQuery *>(statement)->RQFilter();
        case E_DOUpdate:
            return static_cast<CZelUpdate *>(statement)->RUFilter();
        case E_DODelete:
            return static_cast<CZelDelete *>(statement)->RDFilter();
        default:
            return nullptr;
    }
}

}  // namespace

OurStore::OurStore() : m_manager(static_cast<CZelEngine *>(nullptr), nullptr) {
    defineTable();
}

OurStore::OurStore(const char *cacheName, float share)
    : m_manager(static_cast<CZelEngine *>(nullptr), E_RBFalse, 0, E_RBTrue, share, nullptr, cacheName, E_RBTrue) {
    defineTable();
}

void OurStore::defineTable() {
    run("create database b; create table b.t (EntityName text not null primary key, EntityType int, "
        "ObjectId long64 not null unique, IpAddr text, Speed long64, Load float, Status int, Descr text);");
    run("create index ByType on b.t (EntityType);");
}

OurStore::OurStore(const std::vector<BenchRow> &rows) : OurStore() {
    insertAll(rows);
}

void OurStore::run(const std::string &text) {
    const unsigned long before = CZelError::ReportCount();
    EZelStoreErrorStatus status = E_RSEOk;
    m_manager.RSMProcessOQL(text.c_str(), nullptr, &status, nullptr);
    if (CZelError::ReportCount() == before && status == E_RSEOk)
        return;
    std::fprintf(stderr, "quintor: status %d after %s\n", status, text.c_str());
    std::exit(1);
}

void OurStore::insertAll(const std::vector<BenchRow> &rows) {
    CZelDbEntity table("b", "t", static_cast<const char *>(nullptr));
    for (const BenchRow &row : rows) {
        EZelStoreErrorStatus status = E_RSEOk;
        if (m_manager.RSMInsert(recordOf(row), &table, &status, E_RBTrue) != 1 || status != E_RSEOk)
            std::exit(1);
    }
}

long OurStore::select(const std::string &text) {
    CZelBag *rows = nullptr;
    m_manager.RSMProcessOQLGetRecs(text.c_str(), &rows, nullptr, nullptr);
    return countAndFree(rows);
}

long OurStore::select(CZelBag &statements) {
    CZelBag *rows = nullptr;
    m_manager.RSMProcessPrecompiled(&statements, &rows, nullptr, nullptr, E_RBTrue);
    return countAndFree(rows);
}

OurStore &OurStore::loaded() {
    static OurStore store(benchRows());
    return store;
}

CZelRecord *recordOf(const BenchRow &row) {
    auto *record = new CZelRecord();
    record->RRAddValue("EntityName", row.entityName.c_str());
    add(*record, "EntityType", new CZelAtom(row.entityType));
    add(*record, "ObjectId", new CZelAtom(row.objectId));
    record->RRAddValue("IpAddr", row.ipAddr.c_str());
    add(*record, "Speed", new CZelAtom(row.speed));
    add(*record, "Load", new CZelAtom(row.load));
    add(*record, "Status", new CZelAtom(row.status));
    record->RRAddValue("Descr", row.descr.c_str());
    return record;
}

OurStatement::OurStatement(const std::string &text) {
    CZelCmdCmplr::RCCPrecompileOQL(text.c_str(), m_statements);
}

OurStatement::~OurStatement() {
    for (CZelPointer *node = m_statements.RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        delete static_cast<CZelDbObject *>(node->RPData());
}

void OurStatement::setKey(const CZelAtom &key) {
    auto *statement = static_cast<CZelDbObject *>(m_statements.RBFirst()->RPData());
    filterOf(statement)->RFKernel()->RBRight()->RESetHeadAtomVal(&key);
}
