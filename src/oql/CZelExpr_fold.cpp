// Folding of constants.
#include <cstdint>
#include <cstdio>
#include <new>

#include "foundations/port/ZelDebug.h"
#include "oql/CZelExpr.h"
#include "oql/ZelFoldImpl.h"

namespace {

// The kind of number that an operation computes in; long counts as int.
enum Kind { INT, FLOAT, LONG64, NONE };

Kind kindOf(const CZelAtom &atom) {
    if (atom.RAType() == E_RDTInt || atom.RAType() == E_RDTLong)
        return INT;
    if (atom.RAType() == E_RDTFloat)
        return FLOAT;
    return atom.RAType() == E_RDTLong64 ? LONG64 : NONE;
}

Kind commonKind(Kind left, Kind right) {
    if (left == NONE || right == NONE)
        return NONE;
    if (left == FLOAT || right == FLOAT)
        return FLOAT;
    return left == LONG64 || right == LONG64 ? LONG64 : INT;
}

void traceBadExpression() {
    if (__Zeltronix_Debug_Level >= 4)
        std::puts("Attempt to evaluate bad expression");
}

// As the number is computed with: of a long the low 32 bits count.
bool isZero(const CZelAtom &number) {
    return kindOf(number) == INT ? number.RAInt() == 0 : number.RADouble() == 0;
}

// Whole numbers wrap: they are computed without sign, and the smallest divided by -1 is itself.
template <class Signed, class Unsigned>
Signed computeWhole(EZelFold op, Signed left, Signed right) {
    const auto a = static_cast<Unsigned>(left);
    const auto b = static_cast<Unsigned>(right);
    switch (op) {
        case EZelFold::ADD:
            return static_cast<Signed>(a + b);
        case EZelFold::SUBTRACT:
            return static_cast<Signed>(a - b);
        case EZelFold::MULTIPLY:
            return static_cast<Signed>(a * b);
        case EZelFold::DIVIDE:
            break;
    }
    return right == -1 ? static_cast<Signed>(Unsigned{0} - a) : left / right;
}

float computeFloat(EZelFold op, float left, float right) {
    switch (op) {
        case EZelFold::ADD:
            return left + right;
        case EZelFold::SUBTRACT:
            return left - right;
        case EZelFold::MULTIPLY:
            return left * right;
        case EZelFold::DIVIDE:
            break;
    }
    return left / right;
}

long long wide(const CZelAtom &number) {
    return kindOf(number) == INT ? number.RAInt() : number.RALongLong();
}

// The atom holds nothing that would have to be freed.
template <class Number>
void put(CZelAtom &atom, Number number) {
    new (static_cast<void *>(&atom)) CZelAtom(number);
}

}  // namespace

bool ZelCompute(const CZelAtom &left, EZelFold op, const CZelAtom &right, CZelAtom &result) {
    const Kind kind = commonKind(kindOf(left), kindOf(right));
    if (kind == NONE) {
        traceBadExpression();
        return false;
    }
    if (op == EZelFold::DIVIDE && isZero(right))
        return false;
    if (kind == FLOAT)
        put(result, computeFloat(op, left.RAFloat(), right.RAFloat()));
    else if (kind == LONG64)
        put(result, computeWhole<long long, unsigned long long>(op, wide(left), wide(right)));
    else
        put(result, computeWhole<int, unsigned int>(op, left.RAInt(), right.RAInt()));
    return true;
}

void ZelNegate(CZelAtom &atom) {
    switch (atom.RAType()) {
        case E_RDTInt:
            return atom.RASet(computeWhole<int, unsigned int>(EZelFold::SUBTRACT, 0, atom.RAInt()));
        case E_RDTLong:
            return atom.RASet(computeWhole<long, unsigned long>(EZelFold::SUBTRACT, 0L, atom.RALong()));
        case E_RDTFloat:
            return atom.RASet(-atom.RAFloat());
        case E_RDTLong64:
            return atom.RASet(computeWhole<long long, unsigned long long>(EZelFold::SUBTRACT, 0LL, atom.RALongLong()));
        default:
            return traceBadExpression();
    }
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
    if (own != nullptr && kindOf(*own) == NONE)
        traceBadExpression();
}

void CZelExpr::RENegativise() {
    if (CZelAtom *own = ownConstant())
        ZelNegate(*own);
}
