#include "oql/CZelDbEntity.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "clause/CZelEvalClause.h"
#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelExpr.h"
#include "oql/ZelStatementTextImpl.h"
#include "store/CZelColDef.h"

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

// The text of a name atom may lie in the atom, so it is the atom that is handed on.
bool appendName(CZelString &out, const CZelExpr *part, const CZelAtom *name, bool quoted) {
    if (part == nullptr)
        return true;
    if (name == nullptr)
        return part->REAppendPrint(out);  // a clause that is not evaluated yet stands as it was written
    if (!quoted)
        return ZelAppendName(out, *name);
    out.RSStrCatQuoted(name);
    return true;
}

bool isOdd(const CZelAtom *name) {
    return name != nullptr && !ZelIsName(*name);
}

bool appendIndex(CZelString &out, int index) {
    if (index >= 0) {
        out.RSStrCat('(');
        out.RSStrCat(index);
        out.RSStrCat(')');
    } else if (index == E_RLUAll) {
        out.RSStrCat("(*)");
    } else if (index == E_RLUNext) {
        out.RSStrCat("(next)");
    } else if (index == E_RLUAny) {
        out.RSStrCat("(any)");
    } else {
        ZEL_REPORT(E_RCBadValue, "Unsupported or invalid column selector");
        return false;
    }
    return true;
}

// A clause that gives a text names a member, any other selects an element.
bool appendClauseKey(CZelString &out, const CZelExpr &key) {
    const CZelEvalClause *clause = key.REClauseVal();
    const CZelColDef *type = clause != nullptr ? clause->RECColDef() : nullptr;
    const bool isMember = type != nullptr && type->RCDDataType() == E_RDTText;
    out.RSStrCat(isMember ? "->" : "(");
    if (!key.REAppendPrint(out))
        return false;
    out.RSStrCat(isMember ? "" : ")");
    return true;
}

bool appendKey(CZelString &out, const CZelExpr &key) {
    const CZelAtom *value = key.REAtomVal();
    if (value == nullptr && key.REClauseVal() != nullptr)
        return appendClauseKey(out, key);
    if (value != nullptr && value->RAType() == E_RDTInt)
        return appendIndex(out, value->RAInt());
    if (value == nullptr || value->RAType() != E_RDTText) {
        ZEL_REPORT(E_RCBadValue, "Unsupported or invalid data type");
        return false;
    }
    out.RSStrCat("->");
    return ZelAppendName(out, *value);
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
    const CZelAtom *database = RDEDbNameAtom();
    const CZelAtom *table = RDETblNameAtom();
    if (textOf(database) == nullptr || textOf(table) == nullptr)
        return nullptr;
    if (m_ident != nullptr && (RDEEvalsInside() == E_RBFalse || isIdentOf(*database, *table)))
        return m_ident;
    CZelString ident;
    ident.RSStrCat(database->RATextView());
    ident.RSStrCat('_');
    ident.RSStrCat(table->RATextView());
    std::free(m_ident);
    m_ident = ident.RSTakeString();
    return m_ident;
}

// A clause may have got another value since the ident was made.
bool CZelDbEntity::isIdentOf(const CZelAtom &database, const CZelAtom &table) const {
    const std::string_view ident(m_ident);
    const std::string_view first = database.RATextView();
    const std::string_view second = table.RATextView();
    return ident.size() == first.size() + 1 + second.size() && ident.starts_with(first) && ident.ends_with(second) &&
           ident[first.size()] == '_';
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
    if (selector != nullptr)
        *selector = static_cast<EZelListUpdateType>(key->RAInt());
    return E_RBTrue;
}

char *CZelDbEntity::RDEPrint() {
    CZelString out;
    return RDEAppendPrint(out) ? out.RSTakeString() : nullptr;
}

bool CZelDbEntity::RDEAppendPrint(CZelString &out) const {
    if (!appendParts(out))
        return false;
    CZelListable *key = m_colSpec != nullptr ? m_colSpec->RDLHead() : nullptr;
    for (; key != nullptr; key = m_colSpec->RDLGetNext(key))
        if (!appendKey(out, *static_cast<const CZelExpr *>(key)))
            return false;
    return true;
}

bool CZelDbEntity::appendParts(CZelString &out) const {
    const bool quoted = isWrittenQuoted();
    if (!appendName(out, m_database, RDEDbNameAtom(), quoted))
        return false;
    if (m_database != nullptr && (m_table != nullptr || m_column != nullptr))
        out.RSStrCat('.');
    if (!appendName(out, m_table, RDETblNameAtom(), quoted))
        return false;
    if ((m_database != nullptr || m_table != nullptr) && m_column != nullptr)
        out.RSStrCat('.');
    return appendName(out, m_column, RDEColNameAtom(), false);
}

// Only where the grammar has quoted names, both are known and one needs it.
bool CZelDbEntity::isWrittenQuoted() const {
    if (m_database == nullptr || m_column != nullptr || m_colSpec != nullptr)
        return false;
    if (RDEDbNameAtom() == nullptr || (m_table != nullptr && RDETblNameAtom() == nullptr))
        return false;
    return isOdd(RDEDbNameAtom()) || isOdd(RDETblNameAtom());
}

void CZelDbEntity::RDEDump() {
    const CZelMallocText text(RDEPrint());
    std::puts(text != nullptr ? text.get() : "");
}
