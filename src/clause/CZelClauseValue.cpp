#include "clause/CZelClauseValue.h"

#include <memory>

#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelVarBind.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelExpr.h"

void CZelClauseValue::Adopt(CZelAtom *atom) {
    const std::unique_ptr<CZelAtom> owner(atom);
    Clear();
    if (atom != nullptr)
        Set(std::move(*atom));
}

void CZelClauseValue::Adopt(CZelExpr *value) {
    const std::unique_ptr<CZelExpr> owner(value);
    Clear();
    if (value == nullptr)
        return;
    if (value->REType() == E_RETClause) {
        const std::unique_ptr<CZelVarBind> result(value->RETakeClauseVal());
        if (result != nullptr && result->RVBValue() != nullptr)
            SetWhole(std::move(*result->RVBValue()));
    } else if (value->REType() == E_RETAtom) {
        const CZelAtom *atom = value->REHeadAtomVal();
        Set(atom != nullptr ? CZelAtom(*atom) : CZelAtom());
    } else {
        ZEL_REPORT(E_RCBadExprType, "CZelClauseValue: a value of another kind");
    }
}

void CZelClauseValue::Move(CZelClauseValue &from) {
    const bool isWhole = from.m_isWhole;
    if (from.m_atom == &from.m_own)
        Set(std::move(from.m_own));
    else
        Refer(from.m_atom);
    m_isWhole = isWhole;
    from.Clear();
}

const CZelAtom *CZelClauseValue::Head() const {
    if (!m_isWhole || m_atom == nullptr)
        return m_atom;
    const CZelAtomVector *list = m_atom->RAList();
    return list != nullptr ? list->RAVGetValue(0) : nullptr;
}

CZelAtom CZelClauseValue::Take() {
    const CZelAtom *atom = std::exchange(m_atom, nullptr);
    if (atom == &m_own)
        return std::move(m_own);
    return atom != nullptr ? CZelAtom(*atom) : CZelAtom();
}

CZelAtom *CZelClauseValue::TakeAtom() {
    return m_atom != nullptr ? new CZelAtom(Take()) : nullptr;
}

CZelExpr *CZelClauseValue::TakeExpr() {
    const bool isWhole = m_isWhole;
    CZelAtom *atom = TakeAtom();
    if (atom == nullptr || !isWhole)
        return atom != nullptr ? new CZelExpr(&atom) : nullptr;
    auto *whole = new CZelExpr();
    whole->RESetClauseVal(new CZelVarBind("", &atom));
    return whole;
}
