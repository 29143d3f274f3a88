#include "oql/CZelDbEntity.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelExpr.h"

namespace {

CZelExpr *nameExpr(const char *name) {
    return name != nullptr ? new CZelExpr(CZelAtom::RAName(name)) : nullptr;
}

// A name in an atom, interned where it can be.
CZelExpr *nameExpr(const CZelAtom &name) {
    const char *text = name.RAString();
    if (text == nullptr || name.RAIsInterned())
        return new CZelExpr(&name);
    return new CZelExpr(CZelAtom::RAName(text, name.RATextLength()));
}

CZelExpr *takeName(char *name) {
    CZelExpr *expression = nameExpr(name);
    std::free(name);
    return expression;
}

CZelExpr *copyOf(const CZelExpr *expression) {
    return expression != nullptr ? new CZelExpr(*expression) : nullptr;
}

// The atom that names a part; null for one that is absent or not evaluated.
const CZelAtom *partAtom(const CZelExpr *part, const CZelAtom *(CZelDbEntity::*inner)() const) {
    if (part == nullptr)
        return nullptr;
    switch (part->REType()) {
        case E_RETAtom:
        case E_RETClause:
            return part->REAtomVal();
        case E_RETEntity:
            return (part->REEntityVal()->*inner)();
        case E_RETFunction:
            return nullptr;
    }
    ZEL_REPORT(E_RCBadExprType, "CZelDbEntity: a name of an unknown kind");
    return nullptr;
}

const char *textOf(const CZelAtom *atom) {
    return atom != nullptr ? atom->RAString() : nullptr;
}

bool isUnevaluated(const CZelExpr &part) {
    return part.REType() == E_RETClause && part.REClauseResult() == nullptr;
}

// A part's name, or the clause that will give it.
void appendPart(CZelString &text, CZelExpr *part, const char *name) {
    if (part == nullptr)
        return;
    if (isUnevaluated(*part))
        text.RSStrCat(CZelMallocText(part->REPrint()).get());
    else
        text.RSStrCat(name);
}

void appendIndex(CZelString &text, int index) {
    if (index >= 0) {
        text.RSStrCat('(');
        text.RSStrCat(index);
        text.RSStrCat(')');
    } else if (index == E_RLUAll) {
        text.RSStrCat("(*)");
    } else if (index == E_RLUNext) {
        text.RSStrCat("(next)");
    } else if (index == E_RLUAny) {
        text.RSStrCat("(any)");
    } else {
        ZEL_REPORT(E_RCBadValue, "Unsupported or invalid column selector");
    }
}

void appendKey(CZelString &text, CZelExpr &key) {
    const CZelAtom *atom = key.REAtomVal();
    if (isUnevaluated(key)) {
        text.RSStrCat('(');
        text.RSStrCat(CZelMallocText(key.REPrint()).get());
        text.RSStrCat(')');
    } else if (atom != nullptr && atom->RAType() == E_RDTInt) {
        appendIndex(text, atom->RAInt());
    } else if (atom != nullptr && atom->RAType() == E_RDTText) {
        text.RSStrCat("->");
        text.RSStrCat(atom->RAString());
    } else {
        ZEL_REPORT(E_RCBadValue, "Unsupported or invalid data type");
    }
}

}  // namespace

CZelDbEntity::CZelDbEntity(char *database, char *table, char *column)
    : m_database(takeName(database)), m_table(takeName(table)), m_column(takeName(column)) {}

CZelDbEntity::CZelDbEntity(const char *database, const char *table, const char *column)
    : m_database(nameExpr(database)), m_table(nameExpr(table)), m_column(nameExpr(column)) {}

CZelDbEntity::CZelDbEntity(CZelExpr *database, CZelExpr *table, CZelExpr *column)
    : m_database(database), m_table(table), m_column(column) {}

CZelDbEntity::CZelDbEntity(const char *ident) {
    const char *border = ident != nullptr ? std::strchr(ident, '_') : nullptr;
    if (border == nullptr)
        return;
    m_database = new CZelExpr(CZelAtom::RAName(ident, static_cast<std::size_t>(border - ident)));
    m_table = nameExpr(border + 1);
    m_ident = ZelStrDup(ident);
}

CZelDbEntity::CZelDbEntity(const CZelDbEntity &other)
    : m_database(copyOf(other.m_database)),
      m_table(copyOf(other.m_table)),
      m_column(copyOf(other.m_column)),
      m_colSpec(other.m_colSpec != nullptr ? new CZelDoubleList(*other.m_colSpec) : nullptr) {}

CZelDbEntity::~CZelDbEntity() {
    delete m_clauses;
    delete m_colSpec;
    std::free(m_ident);
    delete m_column;
    delete m_table;
    delete m_database;
}

void CZelDbEntity::RDEMakeIdent() {
    std::free(m_ident);
    m_ident = nullptr;
}

const char *CZelDbEntity::RDEIdent() {
    if (m_ident != nullptr)
        return m_ident;
    const char *database = RDEDbName();
    const char *table = RDETblName();
    if (database == nullptr || table == nullptr)
        return nullptr;
    CZelString ident(database);
    ident.RSStrCat('_');
    ident.RSStrCat(table);
    m_ident = ident.RSTakeString();
    return m_ident;
}

const CZelAtom *CZelDbEntity::RDEDbNameAtom() const {
    return partAtom(m_database, &CZelDbEntity::RDEDbNameAtom);
}

const CZelAtom *CZelDbEntity::RDETblNameAtom() const {
    return partAtom(m_table, &CZelDbEntity::RDETblNameAtom);
}

const CZelAtom *CZelDbEntity::RDEColNameAtom() const {
    return partAtom(m_column, &CZelDbEntity::RDEColNameAtom);
}

const char *CZelDbEntity::RDEDbName() const {
    return textOf(RDEDbNameAtom());
}

const char *CZelDbEntity::RDETblName() const {
    return textOf(RDETblNameAtom());
}

const char *CZelDbEntity::RDEColName() const {
    return textOf(RDEColNameAtom());
}

int CZelDbEntity::RDESetColSpec(CZelDoubleList *colSpec) {
    delete m_colSpec;
    m_colSpec = colSpec;
    RDEResetClauses();
    return 1;
}

int CZelDbEntity::replacePart(CZelExpr *&part, const CZelAtom &name) {
    delete part;
    part = nameExpr(name);
    RDEMakeIdent();
    RDEResetClauses();
    return 1;
}

int CZelDbEntity::RDESetDbName(const CZelAtom &name) {
    return replacePart(m_database, name);
}

int CZelDbEntity::RDESetTblName(const CZelAtom &name) {
    return replacePart(m_table, name);
}

int CZelDbEntity::RDESetColName(const CZelAtom &name) {
    return replacePart(m_column, name);
}

CZelBag *CZelDbEntity::RDEClauses() {
    if (m_clauses != nullptr)
        return m_clauses;
    m_clauses = new CZelBag();
    for (CZelExpr *part : {m_database, m_table, m_column})
        if (part != nullptr)
            m_clauses->RBAdd(static_cast<void *>(part));
    for (CZelListable *key = m_colSpec != nullptr ? m_colSpec->RDLHead() : nullptr; key != nullptr;
         key = m_colSpec->RDLGetNext(key))
        m_clauses->RBAdd(static_cast<void *>(static_cast<CZelExpr *>(key)));
    return m_clauses;
}

void CZelDbEntity::RDEResetClauses() {
    delete m_clauses;
    m_clauses = nullptr;
}

__boolean CZelDbEntity::RDEEvalsInside() const {
    for (const CZelExpr *part : {m_database, m_table, m_column})
        if (part != nullptr && part->REType() == E_RETClause)
            return E_RBTrue;
    return E_RBFalse;
}

__boolean CZelDbEntity::RDEIsColSpecWild(EZelListUpdateType *selector) const {
    const auto *last = m_colSpec != nullptr ? static_cast<const CZelExpr *>(m_colSpec->RDLTail()) : nullptr;
    const CZelAtom *key = last != nullptr ? last->REHeadAtomVal() : nullptr;
    if (key == nullptr || key->RAType() != E_RDTInt || key->RAInt() > E_RLUAll || key->RAInt() < E_RLUAny)
        return E_RBFalse;
    *selector = static_cast<EZelListUpdateType>(key->RAInt());
    return E_RBTrue;
}

char *CZelDbEntity::RDEPrint() {
    CZelString text("");
    appendPart(text, m_database, RDEDbName());
    if (m_database != nullptr && (m_table != nullptr || m_column != nullptr))
        text.RSStrCat('.');
    appendPart(text, m_table, RDETblName());
    if ((m_database != nullptr || m_table != nullptr) && m_column != nullptr)
        text.RSStrCat('.');
    appendPart(text, m_column, RDEColName());
    for (CZelListable *key = m_colSpec != nullptr ? m_colSpec->RDLHead() : nullptr; key != nullptr;
         key = m_colSpec->RDLGetNext(key))
        appendKey(text, *static_cast<CZelExpr *>(key));
    return text.RSTakeString();
}

void CZelDbEntity::RDEDump() {
    const CZelMallocText text(RDEPrint());
    std::printf("%s\n", text.get());
}
