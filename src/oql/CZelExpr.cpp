#include "oql/CZelExpr.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "clause/CZelEvalClause.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/CZelVarBind.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDbEntity.h"
#include "store/CZelBoolean.h"

CZelExpr::CZelExpr() : m_type(E_RETFunction), m_entity(nullptr) {}

CZelExpr::CZelExpr(const CZelAtom *atom) : m_type(E_RETAtom), m_hasAtom(ZelBool(atom != nullptr)), m_entity(nullptr) {
    if (atom != nullptr)
        m_atom = *atom;
}

CZelExpr::CZelExpr(CZelAtom **atom) : m_type(E_RETAtom), m_hasAtom(ZelBool(*atom != nullptr)), m_entity(nullptr) {
    if (*atom == nullptr)
        return;
    m_atom = std::move(**atom);
    delete *atom;
    *atom = nullptr;
}

CZelExpr::CZelExpr(CZelAtom &&atom)
    : m_type(E_RETAtom), m_hasAtom(E_RBTrue), m_atom(std::move(atom)), m_entity(nullptr) {}

CZelExpr::CZelExpr(CZelDbEntity *entity) : m_type(E_RETEntity), m_entity(entity) {}

CZelExpr::CZelExpr(CZelEvalClause *clause) : m_type(E_RETClause), m_clause(clause) {}

CZelExpr::CZelExpr(const CZelExpr &other)
    : CZelListable(other), m_type(other.m_type), m_hasAtom(other.m_hasAtom), m_atom(other.m_atom), m_entity(nullptr) {
    if (m_type == E_RETEntity && other.m_entity != nullptr)
        m_entity = new CZelDbEntity(*other.m_entity);
    if (m_type == E_RETClause && other.m_clause != nullptr)
        m_clause = new CZelEvalClause(*other.m_clause);
}

CZelExpr::~CZelExpr() {
    clearHeld();
    delete m_clauseValue;
}

void CZelExpr::clearHeld() {
    if (m_type == E_RETEntity)
        delete m_entity;
    else if (m_type == E_RETClause)
        delete m_clause;
    m_entity = nullptr;
}

CZelListable *CZelExpr::RLTargetDeepCopy(const CZelListable *source) const {
    return new CZelExpr(*static_cast<const CZelExpr *>(source));
}

void CZelExpr::RESetOverride(const CZelAtom *atom) {
    clearHeld();
    m_override = atom;
    m_isOverridden = E_RBTrue;
    m_type = E_RETAtom;
    if (m_holder != nullptr)
        m_holder->RBEstablishType();
}

void CZelExpr::RESetClauseVal(CZelVarBind *value) {
    if (m_type == E_RETEntity)
        clearHeld();
    m_type = E_RETClause;
    delete m_clauseValue;
    m_clauseValue = value;
}

CZelVarBind *CZelExpr::RETakeClauseVal() {
    return std::exchange(m_clauseValue, nullptr);
}

int CZelExpr::RESetHeadAtomVal(const CZelAtom *atom) {
    if (m_isOverridden == E_RBTrue) {
        m_override = atom;
        return 1;
    }
    switch (m_type) {
        case E_RETAtom:
            m_hasAtom = ZelBool(atom != nullptr);
            m_atom = atom != nullptr ? *atom : CZelAtom();
            return 1;
        case E_RETClause:
            break;
        default:
            return E_RCBadValue;
    }
    if (m_clauseValue == nullptr || atom == nullptr)
        return ZEL_FAIL(E_RCNull, "CZelExpr::RESetHeadAtomVal");
    const int status = m_clauseValue->RVBAddOrSetListVal(*atom, 0);
    return status == 1 ? 1 : ZEL_FAIL(status, "CZelExpr::RESetHeadAtomVal");
}

// The list of a clause's result; null without one, reported when the result is none.
static const CZelAtomVector *resultList(const CZelVarBind *result) {
    const CZelAtom *value = result != nullptr ? result->RVBValue() : nullptr;
    if (value == nullptr)
        return nullptr;
    if (value->RAType() != E_RDTList)
        ZEL_REPORT(E_RCBadType, "CZelExpr: the result of a clause is no list");
    return value->RAList();
}

const CZelAtom *CZelExpr::REHeadAtomVal() const {
    if (m_isOverridden == E_RBTrue)
        return m_override;
    if (m_type == E_RETAtom)
        return m_hasAtom == E_RBTrue ? &m_atom : nullptr;
    if (m_type != E_RETClause)
        return nullptr;
    const CZelAtomVector *list = resultList(m_clauseValue);
    return list != nullptr ? list->RAVGetValue(0) : nullptr;
}

CZelBag *CZelExpr::REBagVal() {
    const bool single = m_isOverridden == E_RBTrue || m_type == E_RETAtom;
    if (!single && (m_type != E_RETClause || m_clauseValue == nullptr))
        return nullptr;
    auto *bag = new CZelBag();
    if (single) {
        bag->RBAdd(const_cast<void *>(static_cast<const void *>(REHeadAtomVal())));
        return bag;
    }
    CZelAtom *value = m_clauseValue->RVBValue();
    CZelAtomVector *list = value != nullptr ? value->RAList() : nullptr;
    for (unsigned int i = 0; list != nullptr && i < list->RAVSize(); ++i)
        bag->RBAdd(static_cast<void *>(list->RAVGetValue(i)));
    return bag;
}

CZelEvalClause *CZelExpr::RETakeEvalClause() {
    return m_type == E_RETClause ? std::exchange(m_clause, nullptr) : nullptr;
}

char *CZelExpr::REPrint() {
    if (m_type == E_RETEntity && m_entity != nullptr)
        return m_entity->RDEPrint();
    if (m_type == E_RETClause && m_clause != nullptr)
        return m_clause->RECPrint();
    CZelString text("");
    if (m_type == E_RETAtom)
        text.RSStrCatQuoted(REHeadAtomVal());
    return text.RSTakeString();
}

void CZelExpr::REDump() {
    const CZelMallocText text(REPrint());
    std::printf("%s\n", text != nullptr ? text.get() : "NULL");
}

CZelBag *CZelExpr::RECopyAtomBag(CZelBag *atoms) {
    if (atoms == nullptr)
        return nullptr;
    auto *copies = new CZelBag();
    for (CZelPointer *node = atoms->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        const auto *atom = static_cast<const CZelAtom *>(node->RPData());
        if (atom == nullptr)
            ZEL_REPORT(E_RCBadArgument, "CZelExpr::RECopyAtomBag");
        else
            copies->RBAdd(static_cast<void *>(new CZelAtom(*atom)));
    }
    return copies;
}

void CZelExpr::REDeleteAtomBag(CZelBag *atoms) {
    if (atoms == nullptr)
        return;
    for (CZelPointer *node = atoms->RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        delete static_cast<CZelAtom *>(node->RPData());
    atoms->RBEmptyBag();
}

int CZelExpr::RESetInternal(CZelDbEntity *entity) {
    if (m_type != E_RETEntity)
        return E_RCBadType;
    delete m_entity;
    m_entity = entity;
    return 1;
}
