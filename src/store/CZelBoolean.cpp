#include "store/CZelBoolean.h"

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelExpr.h"
#include "oql/CZelQuery.h"

namespace {

enum Side { NO_SIDE, VALUE, COLUMN };

Side sideOf(const CZelExpr *expression) {
    if (expression == nullptr || expression->REType() == E_RETFunction)
        return NO_SIDE;
    return expression->REType() == E_RETEntity ? COLUMN : VALUE;
}

EZelBoolEvalType shapeOf(Side left, Side right) {
    if (left == COLUMN)
        return right == COLUMN ? E_RBEColumnColumn : E_RBEColumnValue;
    return right == COLUMN ? E_RBEValueColumn : E_RBEValueValue;
}

CZelExpr *copyOf(const CZelExpr *expression) {
    return expression != nullptr ? new CZelExpr(*expression) : nullptr;
}

bool isEmpty(const CZelAtomVector *list) {
    return list == nullptr || list->RAVSize() == 0;
}

bool isSelector(EZelListUpdateType kind) {
    return kind == E_RLUAll || kind == E_RLUAny;
}

// A value that is there but compared with null on its left.
bool existsWithoutLeft(const CZelAtom *value, EZelOper op) {
    return op == E_ROExists && (value->RAType() != E_RDTList || !isEmpty(value->RAList()));
}

// Requires: exactly one of the two is null.
bool holdsWithOneNull(const CZelAtom *left, const CZelAtom *right, EZelOper op) {
    switch (op) {
        case E_ROEqual:
        case E_ROLike:
            return false;
        case E_RONotEqual:
        case E_RONotLike:
        case E_ROIsNotNull:
            return true;
        default:
            return CZelAtom::RAIsNull(left) ? existsWithoutLeft(right, op) : op == E_RONotIn;
    }
}

}  // namespace

CZelBoolean::CZelBoolean() = default;

CZelBoolean::CZelBoolean(CZelExpr *left, CZelExpr *right, EZelOper op)
    : m_left(left), m_right(right), m_rvalType(E_RBRExpr), m_operand(op) {
    adoptExpressions();
}

CZelBoolean::CZelBoolean(CZelExpr *left, CZelQuery *right, EZelOper op)
    : m_left(left), m_rvalType(E_RBRQuery), m_operand(op), m_wasQuery(E_RBTrue) {
    m_rightQuery = right;
    adoptExpressions();
}

CZelBoolean::CZelBoolean(const CZelBoolean &other) {
    copyFrom(other);
}

CZelBoolean &CZelBoolean::operator=(const CZelBoolean &other) {
    if (this == &other)
        return *this;
    deleteOperands();
    copyFrom(other);
    return *this;
}

CZelBoolean::~CZelBoolean() {
    deleteOperands();
}

void CZelBoolean::copyFrom(const CZelBoolean &other) {
    m_left = copyOf(other.m_left);
    m_wasQuery = other.m_wasQuery;
    if (m_wasQuery)
        m_rightQuery = other.m_rightQuery != nullptr ? new CZelQuery(*other.m_rightQuery) : nullptr;
    else
        m_right = copyOf(other.m_right);
    m_rvalType = m_wasQuery ? E_RBRQuery : E_RBRExpr;
    m_operand = other.m_operand;
    m_evalType = other.m_evalType;
    m_leftOverride = nullptr;
    m_rightOverride = nullptr;
    if (m_left != nullptr)
        adoptExpressions();
}

void CZelBoolean::deleteOperands() {
    delete m_left;
    if (m_wasQuery)
        delete m_rightQuery;
    else
        delete m_right;
}

void CZelBoolean::adoptExpressions() {
    if (m_left != nullptr)
        m_left->RESetHolder(this);
    if (!m_wasQuery && m_right != nullptr)
        m_right->RESetHolder(this);
    RBEstablishType();
}

CZelExpr *CZelBoolean::RBLeft() {
    return m_leftOverride != nullptr ? *m_leftOverride : m_left;
}

CZelExpr *CZelBoolean::RBRight() {
    if (m_rvalType == E_RBRQuery) {
        const CZelMallocText text(RBPrint());
        ZEL_REPORT(E_RCBadArgument, text.get());
        return nullptr;
    }
    return rightExpression();
}

CZelExpr *CZelBoolean::rightExpression() const {
    if (m_rightOverride != nullptr)
        return *m_rightOverride;
    return m_wasQuery ? nullptr : m_right;
}

void CZelBoolean::RBOverideLeft(CZelExpr **slot) {
    m_leftOverride = slot;
    RBEstablishType();
}

void CZelBoolean::RBOverideRight(CZelExpr **slot) {
    m_rightOverride = slot;
    if (m_wasQuery)
        m_rvalType = slot != nullptr ? E_RBRExpr : E_RBRQuery;
    RBEstablishType();
}

void CZelBoolean::RBEstablishType() {
    const Side left = sideOf(RBLeft());
    if (m_rvalType == E_RBRQuery) {
        m_evalType = left == COLUMN ? E_RBEColumnValue : E_RBEValueValue;
        return;
    }
    const Side right = sideOf(rightExpression());
    if (left == NO_SIDE || right == NO_SIDE)
        ZEL_REPORT(E_RCBadArgument, "CZelBoolean::RBEstablishType: an operand that has no value");
    else
        m_evalType = shapeOf(left, right);
}

__boolean CZelBoolean::RBEvalExpr(const CZelAtom *left, const CZelAtom *right, EZelOper op) {
    const bool leftNull = CZelAtom::RAIsNull(left);
    const bool rightNull = CZelAtom::RAIsNull(right);
    if (!leftNull && !rightNull)
        return right->RAEvalExtOp(left, op);
    if (leftNull && (op == E_ROIsNull || op == E_ROIsNotNull))
        return ZelBool(op == E_ROIsNull);
    if (leftNull && rightNull)
        return ZelBool(op == E_ROEqual);
    return ZelBool(holdsWithOneNull(left, right, op));
}

__boolean CZelBoolean::RBEvalAtomToAtom(const CZelAtom *recordValue, __boolean swapped, const CZelAtom *value) const {
    return swapped == E_RBTrue ? RBEvalExpr(value, recordValue, m_operand) : RBEvalExpr(recordValue, value, m_operand);
}

__boolean CZelBoolean::RBEvalListToAtom(const CZelAtomVector *list, __boolean swapped, const CZelAtom *value,
                                        EZelListUpdateType kind) const {
    if (isEmpty(list) || !isSelector(kind))
        return E_RBFalse;
    const __boolean decisive = ZelBool(kind == E_RLUAny);
    for (unsigned int i = 0; i < list->RAVSize(); ++i) {
        if (RBEvalAtomToAtom(list->RAVGetValue(i), swapped, value) == decisive)
            return decisive;
    }
    return ZelBool(decisive == E_RBFalse);
}

__boolean CZelBoolean::listToList(const CZelAtomVector &left, EZelListUpdateType leftKind, const CZelAtomVector &right,
                                  EZelListUpdateType rightKind) const {
    if (isEmpty(&left) || !isSelector(leftKind))
        return E_RBFalse;
    const __boolean decisive = ZelBool(leftKind == E_RLUAny);
    for (unsigned int i = 0; i < left.RAVSize(); ++i) {
        if (RBEvalListToAtom(&right, E_RBTrue, left.RAVGetValue(i), rightKind) == decisive)
            return decisive;
    }
    return ZelBool(decisive == E_RBFalse);
}

__boolean CZelBoolean::RBEvalComplex(const CZelAtom *leftValue, const CZelAtomVector *leftList,
                                     EZelListUpdateType leftKind, const CZelAtom *rightValue,
                                     const CZelAtomVector *rightList, EZelListUpdateType rightKind) const {
    if (leftList != nullptr && rightList != nullptr)
        return listToList(*leftList, leftKind, *rightList, rightKind);
    if (leftList != nullptr)
        return RBEvalListToAtom(leftList, E_RBFalse, rightValue, leftKind);
    if (rightList != nullptr)
        return RBEvalListToAtom(rightList, E_RBTrue, leftValue, rightKind);
    return RBEvalAtomToAtom(leftValue, E_RBFalse, rightValue);
}

__boolean CZelBoolean::RBIsDeterminate(__boolean *result) {
    if (result != nullptr)
        *result = E_RBTrue;
    if (m_evalType != E_RBEValueValue)
        return E_RBFalse;
    const CZelExpr *left = RBLeft();
    const CZelExpr *right = RBRight();
    const CZelAtom *leftValue = left != nullptr ? left->REHeadAtomVal() : nullptr;
    const CZelAtom *rightValue = right != nullptr ? right->REHeadAtomVal() : nullptr;
    if (leftValue == nullptr || rightValue == nullptr)
        ZEL_REPORT(E_RCBadArgument, "CZelBoolean::RBIsDeterminate: an operand that has no value");
    else if (result != nullptr)
        *result = RBEvalExpr(leftValue, rightValue, m_operand);
    return E_RBTrue;
}
