// One comparison of a condition: a left expression, an operator, and an expression or subquery.
//
// Both expressions know the boolean as their holder: one that gets an override calls RBEstablishType, since a
// column replaced by a value changes the shape of the comparison.
#pragma once

#include "foundations/base/CZelPool.h"
#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class CZelAtom;
class CZelAtomVector;
class CZelExpr;
class CZelQuery;
class CZelString;

class QUINTOR_API CZelBoolean {
public:
    ZEL_POOLED

    CZelBoolean();                                              // operator None: true of every row
    CZelBoolean(CZelExpr *left, CZelExpr *right, EZelOper op);  // take both over
    CZelBoolean(CZelExpr *left, CZelQuery *right, EZelOper op);
    CZelBoolean(const CZelBoolean &other);  // deep, without overrides
    CZelBoolean &operator=(const CZelBoolean &other);
    virtual ~CZelBoolean();

    CZelExpr *RBLeft();
    CZelExpr *RBRight();  // null for a query, reported (E_RCBadArgument)
    CZelQuery *RBRightQuery() const { return m_wasQuery ? m_rightQuery : nullptr; }
    EZelBoolRvalType RBRvalType() const { return m_rvalType; }
    EZelBoolEvalType RBEvalType() const { return m_evalType; }
    EZelOper RBOperand() const { return m_operand; }

    // The operand is then read through the given slot, which stays the caller's; null takes it away again.
    void RBOverideLeft(CZelExpr **slot);
    void RBOverideRight(CZelExpr **slot);
    void RBEstablishType();

    // The null logic of the language, then RAEvalExtOp for two present operands.
    static __boolean RBEvalExpr(const CZelAtom *left, const CZelAtom *right, EZelOper op);

    // recordValue op value; with `swapped` value op recordValue.
    __boolean RBEvalAtomToAtom(const CZelAtom *recordValue, __boolean swapped, const CZelAtom *value) const;
    __boolean RBEvalListToAtom(const CZelAtomVector *list, __boolean swapped, const CZelAtom *value,
                               EZelListUpdateType kind) const;
    __boolean RBEvalComplex(const CZelAtom *leftValue, const CZelAtomVector *leftList, EZelListUpdateType leftKind,
                            const CZelAtom *rightValue, const CZelAtomVector *rightList,
                            EZelListUpdateType rightKind) const;

    // Has the boolean one answer for all rows? *result, if given, is that answer.
    __boolean RBIsDeterminate(__boolean *result);

    char *RBPrint();          // new from malloc
    char *RBPrintResolved();  // clauses stand as their values; new from malloc
    void RBAppendPrint(CZelString &out, bool resolved);

private:
    void copyFrom(const CZelBoolean &other);
    void deleteOperands();
    void adoptExpressions();
    CZelExpr *rightExpression() const;  // through the override; null for a query
    __boolean listToList(const CZelAtomVector &left, EZelListUpdateType leftKind, const CZelAtomVector &right,
                         EZelListUpdateType rightKind) const;

    CZelExpr *m_left = nullptr;
    union {
        CZelExpr *m_right = nullptr;
        CZelQuery *m_rightQuery;  // when m_wasQuery
    };
    EZelBoolRvalType m_rvalType = E_RBRExpr;
    EZelBoolEvalType m_evalType = E_RBEColumnValue;
    EZelOper m_operand = E_RONone;
    CZelExpr **m_leftOverride = nullptr;
    CZelExpr **m_rightOverride = nullptr;
    __boolean m_wasQuery = E_RBFalse;
};
