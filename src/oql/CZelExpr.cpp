#include "oql/CZelExpr.h"

#include <cstdio>
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

namespace {

// Bags hold plain pointers; what is read from them is not changed through them.
void addTo(CZelBag &bag, const CZelAtom *atom) {
    bag.RBAdd(const_cast<void *>(static_cast<const void *>(atom)));
}

}  // namespace

CZelExpr::CZelExpr() : m_type(E_RETFunction), m_entity(nullptr) {}

CZelExpr::CZelExpr(const CZelAtom *atom) : m_type(E_RETAtom), m_hasAtom(atom != nullptr), m_entity(nullptr) {
    if (atom != nullptr)
        m_atom = *atom;
}

CZelExpr::CZelExpr(CZelAtom **atom) : m_type(E_RETAtom), m_entity(nullptr) {
    CZelAtom *owned = atom != nullptr ? std::exchange(*atom, nullptr) : nullptr;
    if (owned == nullptr)
        return;
    m_atom = std::move(*owned);
    m_hasAtom = true;
    delete owned;
}

CZelExpr::CZelExpr(CZelAtom &&atom) : m_type(E_RETAtom), m_hasAtom(true), m_atom(std::move(atom)), m_entity(nullptr) {}

CZelExpr::CZelExpr(CZelDbEntity *entity) : m_type(E_RETEntity), m_entity(entity) {}

CZelExpr::CZelExpr(CZelEvalClause *clause) : m_type(E_RETClause), m_clause(clause) {}

CZelExpr::CZelExpr(const CZelExpr &other)
    : CZelListable(other), m_type(other.m_type), m_hasAtom(other.m_hasAtom), m_atom(other.m_atom), m_entity(nullptr) {
    if (m_type == E_RETEntity && other.m_entity != nullptr)
        m_entity = new CZelDbEntity(*other.m_entity);
    else if (m_type == E_RETClause && other.m_clause != nullptr)
        m_clause = new CZelEvalClause(*other.m_clause);
}

CZelExpr::~CZelExpr() {
    clearHeld();
    delete m_clauseValue;
}

CZelListable *CZelExpr::RLTargetDeepCopy(const CZelListable *source) const {
    return new CZelExpr(*static_cast<const CZelExpr *>(source));
}

void CZelExpr::clearHeld() {
    if (m_type == E_RETEntity)
        delete m_entity;
    else if (m_type == E_RETClause)
        delete m_clause;
    m_entity = nullptr;
}

void CZelExpr::RESetOverride(const CZelAtom *atom) {
    clearHeld();
    m_type = E_RETAtom;
    m_override = atom;
    m_isOverridden = true;
    if (m_holder != nullptr)
        m_holder->RBEstablishType();
}

void CZelExpr::RESetClauseVal(CZelVarBind *value) {
    if (m_type != E_RETClause) {
        clearHeld();
        m_type = E_RETClause;
    }
    if (value != m_clauseValue)
        delete m_clauseValue;
    m_clauseValue = value;
}

CZelVarBind *CZelExpr::RETakeClauseVal() {
    return std::exchange(m_clauseValue, nullptr);
}

int CZelExpr::RESetHeadAtomVal(const CZelAtom *atom) {
    if (m_isOverridden) {
        m_override = atom;
        return 1;
    }
    if (m_type == E_RETAtom && atom != nullptr) {
        m_atom = *atom;
        m_hasAtom = true;
        return 1;
    }
    if (m_type == E_RETClause && (m_clauseValue == nullptr || atom == nullptr))
        return ZEL_FAIL(E_RCNull, "CZelExpr::RESetHeadAtomVal: no result of the clause, or no value for it");
    if (m_type != E_RETAtom || atom != nullptr)
        return RESetHeadAtomVal(atom != nullptr ? CZelAtom(*atom) : CZelAtom());
    m_atom.RASet();
    m_hasAtom = false;
    return 1;
}

int CZelExpr::RESetHeadAtomVal(CZelAtom &&atom) {
    if (m_type == E_RETAtom) {
        m_atom = std::move(atom);
        m_hasAtom = true;
        m_isOverridden = false;
        return 1;
    }
    if (m_type != E_RETClause)
        return E_RCBadValue;
    if (m_clauseValue == nullptr)
        return ZEL_FAIL(E_RCNull, "CZelExpr::RESetHeadAtomVal: the clause has no result");
    const int status = m_clauseValue->RVBAddOrSetListVal(atom, 0);
    return status == 1 ? status : ZEL_FAIL(status, "CZelExpr::RESetHeadAtomVal: the clause's result is no list");
}

const CZelAtomVector *CZelExpr::resultList() const {
    const CZelAtom *result = m_clauseValue != nullptr ? std::as_const(*m_clauseValue).RVBValue() : nullptr;
    return result != nullptr ? result->RAList() : nullptr;
}

const CZelAtom *CZelExpr::REHeadAtomVal() const {
    if (m_isOverridden)
        return m_override;
    if (m_type == E_RETAtom)
        return m_hasAtom ? &m_atom : nullptr;
    if (m_type != E_RETClause || m_clauseValue == nullptr)
        return nullptr;
    const CZelAtomVector *list = resultList();
    if (list == nullptr)
        ZEL_REPORT(E_RCBadType, "CZelExpr::REHeadAtomVal: the clause's result is no list");
    return list != nullptr ? list->RAVGetValue(0) : nullptr;
}

int CZelExpr::REValueCount() const {
    if (m_isOverridden || m_type == E_RETAtom)
        return 1;
    if (m_type != E_RETClause || m_clauseValue == nullptr)
        return -1;
    const CZelAtomVector *list = resultList();
    return list != nullptr ? static_cast<int>(list->RAVSize()) : 0;
}

CZelBag *CZelExpr::REBagVal() {
    const int count = REValueCount();
    if (count < 0)
        return nullptr;
    auto *bag = new CZelBag;
    if (m_isOverridden || m_type == E_RETAtom) {
        addTo(*bag, REHeadAtomVal());
        return bag;
    }
    const CZelAtomVector *list = resultList();
    for (int i = 0; i < count; ++i)
        addTo(*bag, list->RAVGetValue(static_cast<unsigned int>(i)));
    return bag;
}

CZelEvalClause *CZelExpr::RETakeEvalClause() {
    return m_type == E_RETClause ? std::exchange(m_clause, nullptr) : nullptr;
}

bool CZelExpr::REAppendPrint(CZelString &out) const {
    if (m_type == E_RETAtom)
        out.RSStrCatQuoted(REHeadAtomVal());
    else if (m_type == E_RETEntity && m_entity != nullptr)
        return m_entity->RDEAppendPrint(out);
    else if (m_type == E_RETClause && m_clause != nullptr)
        out.RSStrCat(CZelMallocText(m_clause->RECPrint()).get());
    return true;
}

char *CZelExpr::REPrint() {
    CZelString out;
    return REAppendPrint(out) ? out.RSTakeString() : nullptr;
}

void CZelExpr::REDump() {
    const CZelMallocText text(REPrint());
    std::fputs(text != nullptr ? text.get() : "", stdout);
}

CZelBag *CZelExpr::RECopyAtomBag(CZelBag *atoms) {
    if (atoms == nullptr)
        return nullptr;
    auto *copies = new CZelBag;
    for (CZelPointer *node = atoms->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        const auto *atom = static_cast<const CZelAtom *>(node->RPData());
        if (atom != nullptr)
            copies->RBAdd(new CZelAtom(*atom));
        else
            ZEL_REPORT(E_RCBadArgument, "CZelExpr::RECopyAtomBag: a value is null");
    }
    return copies;
}

void CZelExpr::REDeleteAtomBag(CZelBag *atoms) {
    CZelPointer *node = atoms != nullptr ? atoms->RBFirst() : nullptr;
    for (; node != nullptr; node = CZelBag::RBNext(node))
        delete static_cast<CZelAtom *>(node->RPData());
}

int CZelExpr::RESetInternal(CZelDbEntity *entity) {
    if (m_type != E_RETEntity)
        return E_RCBadType;
    if (entity != m_entity)
        delete m_entity;
    m_entity = entity;
    return 1;
}
