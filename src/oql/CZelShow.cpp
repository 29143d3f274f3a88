#include "oql/CZelShow.h"

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelString.h"
#include "foundations/port/CZelError.h"
#include "oql/ZelStatementTextImpl.h"

namespace {

CZelAtom *takeName(char *name) {
    return name != nullptr ? new CZelAtom(name) : nullptr;
}

CZelAtom *copyOf(const CZelAtom *name) {
    return name != nullptr ? new CZelAtom(*name) : nullptr;
}

bool appendNames(CZelString &text, const CZelAtom &database, const CZelAtom *table) {
    text.RSStrCat(table != nullptr ? "table " : "tables from ");
    if (!ZelAppendName(text, database))
        return false;
    if (table == nullptr)
        return true;
    text.RSStrCat('.');
    return ZelAppendName(text, *table);
}

}  // namespace

CZelShow::CZelShow(char *database, char *table)
    : CZelDbObject(E_DOShow), m_database(takeName(database)), m_table(takeName(table)) {}

CZelShow::CZelShow(const CZelShow &other)
    : CZelDbObject(other), m_database(copyOf(other.m_database)), m_table(copyOf(other.m_table)) {}

CZelShow::~CZelShow() {
    delete m_database;
    delete m_table;
}

int CZelShow::RDODestroy() {
    return 1;
}

int CZelShow::RDOInitialise(CZelStore * /*store*/) {
    return 1;
}

CZelBag *CZelShow::RDOCompilables() {
    return nullptr;
}

char *CZelShow::RDOAsString() {
    if (m_database == nullptr && m_table != nullptr) {
        ZEL_REPORT(E_RCNoText, "CZelShow::RDOAsString: a table without its database");
        return nullptr;
    }
    CZelString text("show ");
    if (m_database == nullptr)
        text.RSStrCat("databases ");
    else if (!appendNames(text, *m_database, m_table))
        return nullptr;
    text.RSStrCat(" ;\n");
    return text.RSTakeString();
}
