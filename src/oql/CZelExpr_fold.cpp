// Folding of constants.
#include <cstdio>
#include <new>

#include "foundations/port/ZelDebug.h"
#include "oql/CZelExpr.h"
#include "oql/ZelFoldImpl.h"

namespace {

void traceBadExpression() {
    if (__Zeltronix_Debug_Level >= 4)
        std::puts("Attempt to evaluate bad expression");
}

// The atom holds nothing that would have to be freed.
void put(CZelAtom &atom, CZelNumber number) {
    new (static_cast<void *>(&atom)) CZelAtom(number.Atom());
}

}  // namespace

bool ZelCompute(const CZelAtom &left, EZelFold operation, const CZelAtom &right, CZelAtom &result) {
    CZelNumber number(&left);
    const CZelNumber other(&right);
    if (!number.IsNumber() || !other.IsNumber()) {
        traceBadExpression();
        return false;
    }
    if (!number.Compute(operation, other))
        return false;
    put(result, number);
    return true;
}

void ZelNegate(CZelAtom &atom) {
    CZelNumber number(&atom);
    if (!number.IsNumber())
        return traceBadExpression();
    number.Negate();
    put(atom, number);
}

// The constant that an operation changes, or null when this is none.
CZelAtom *CZelExpr::ownConstant() {
    return m_type == E_RETAtom && !m_isOverridden && m_hasAtom ? &m_atom : nullptr;
}

void CZelExpr::REAddVal(const CZelAtom *other) {
    if (CZelAtom *own = other != nullptr ? ownConstant() : nullptr)
        ZelCompute(*own, EZelFold::ADD, *other, *own);
}

void CZelExpr::RESubVal(const CZelAtom *other) {
    if (CZelAtom *own = other != nullptr ? ownConstant() : nullptr)
        ZelCompute(*own, EZelFold::SUBTRACT, *other, *own);
}

void CZelExpr::REMulVal(const CZelAtom *other) {
    if (CZelAtom *own = other != nullptr ? ownConstant() : nullptr)
        ZelCompute(*own, EZelFold::MULTIPLY, *other, *own);
}

void CZelExpr::REDivVal(const CZelAtom *other) {
    if (CZelAtom *own = other != nullptr ? ownConstant() : nullptr)
        ZelCompute(*own, EZelFold::DIVIDE, *other, *own);
}

void CZelExpr::REPositivise() {
    const CZelAtom *own = ownConstant();
    if (own != nullptr && !own->RAIsNumber())
        traceBadExpression();
}

void CZelExpr::RENegativise() {
    if (CZelAtom *own = ownConstant())
        ZelNegate(*own);
}
