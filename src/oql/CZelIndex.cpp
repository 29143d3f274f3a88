#include "oql/CZelIndex.h"

#include <cstdio>
#include <cstdlib>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "oql/ZelStatementTextImpl.h"

CZelIndex::CZelIndex(char *name, CZelDbEntity *table, CZelAtomVector *columns)
    : CZelIndex(name != nullptr ? new CZelExpr(CZelAtom(name)) : nullptr, table, columns) {}

CZelIndex::CZelIndex(CZelExpr *name, CZelDbEntity *table, CZelAtomVector *columns)
    : CZelDbObject(E_DOIndex), m_name(name), m_table(table), m_columns(columns) {}

CZelIndex::CZelIndex(const CZelIndex &other)
    : CZelDbObject(other),
      m_name(other.m_name != nullptr ? new CZelExpr(*other.m_name) : nullptr),
      m_table(other.m_table != nullptr ? new CZelDbEntity(*other.m_table) : nullptr),
      m_columns(other.m_columns != nullptr ? new CZelAtomVector(*other.m_columns) : nullptr) {
    keepName(other);
}

CZelIndex::~CZelIndex() {
    delete m_compilables;
    delete m_columns;
    delete m_table;
    delete m_name;
}

// A computed name is copied as the value that it had.
void CZelIndex::keepName(const CZelIndex &other) {
    const CZelAtom *name = other.RIName();
    if (name == nullptr || RIName() != nullptr)
        return;
    delete m_name;
    m_name = new CZelExpr(name);
}

int CZelIndex::RDODestroy() {
    return 1;
}

int CZelIndex::RDOInitialise(CZelStore * /*store*/) {
    return 1;
}

CZelBag *CZelIndex::RDOCompilables() {
    if (m_compilables == nullptr || m_table != nullptr)
        RIResetExprPtrs();
    return m_compilables;
}

void CZelIndex::RIResetExprPtrs() {
    delete m_compilables;
    m_compilables = new CZelBag();
    if (m_table != nullptr)
        m_compilables->RBAppend(m_table->RDEClauses());
    if (m_name != nullptr)
        m_compilables->RBAdd(static_cast<void *>(m_name));
}

const CZelAtom *CZelIndex::RIName() const {
    return m_name != nullptr ? m_name->REHeadAtomVal() : nullptr;
}

char *CZelIndex::RDOAsString() {
    if (RIName() == nullptr || m_table == nullptr || m_columns == nullptr) {
        ZEL_REPORT(E_RCNull, "CZelIndex::RDOAsString: no name, table or columns");
        return nullptr;
    }
    CZelString text("create index ");
    bool isWritten = ZelAppendName(text, *RIName());
    text.RSStrCat(" on ");
    isWritten = isWritten && ZelAppendEntity(text, m_table);
    text.RSStrCat(" ( ");
    isWritten = isWritten && ZelAppendNames(text, *m_columns, " , ");
    text.RSStrCat(" );\n");
    return isWritten ? text.RSTakeString() : nullptr;
}

char *CZelIndex::RIPrint() {
    return RDOAsString();
}

void CZelIndex::RIDump() {
    const CZelMallocText text(RIPrint());
    std::printf("%s", text != nullptr ? text.get() : "NULL\n");
}
