// Arithmetic on the values of two clauses, or the negation of one.
//
// A text can make sums that are as long as it is, and that lean to the left, or that nest to the right as deep as
// the parser goes. So each node knows the lowest one of its left spine and the one above it on that spine, and
// everything here walks by loops.
#pragma once

#include "clause/CZelCompiledClause.h"

// The operator of an expression.
enum EZelClauseOpr : int { E_RCOPlus = 1, E_RCOMinus = 2, E_RCODivide = 3, E_RCOMultiply = 4 };

class QUINTOR_API CZelCompiledExpr : public CZelCompiledClause {
public:
    CZelCompiledExpr(CZelCompiledClause *left, EZelClauseOpr op, CZelCompiledClause *right);  // takes over
    explicit CZelCompiledExpr(CZelCompiledClause *operand);                                   // its negation
    ~CZelCompiledExpr() override;

    CZelAtom *RCCEvaluateToAtom(CZelCmdCmplr &compiler) const override;  // reported: no value of its own
    CZelCompiledClause *RCCClone() const override;

    // The value; a missing operand of a sum leaves the other one, a missing left one of the rest gives null.
    CZelExpr *RCCEvaluateToExpr(CZelCmdCmplr &compiler) const override;
    void RCCEvaluate(CZelCmdCmplr &compiler, CZelClauseValue &value) const override;

private:
    class Copying;
    class Evaluation;

    template <class Visitor>
    static void walk(const CZelCompiledExpr *root, Visitor &visitor);
    template <class Visitor>
    static void climb(const CZelCompiledExpr *head, Visitor &visitor);

    void combine(CZelClauseValue &left, CZelClauseValue &right) const;
    void RCCEvaluatePlus(CZelClauseValue &left, CZelClauseValue &right) const;
    void RCCEvaluateMinus(CZelClauseValue &left, const CZelClauseValue &right) const;
    void RCCEvaluateDivide(CZelClauseValue &left, const CZelClauseValue &right) const;
    void RCCEvaluateMultiply(CZelClauseValue &left, const CZelClauseValue &right) const;
    CZelCompiledExpr *copyOver(CZelCompiledClause *left, CZelCompiledClause *right) const;

    CZelCompiledClause *m_left;
    EZelClauseOpr m_op = static_cast<EZelClauseOpr>(0);
    CZelCompiledClause *m_right = nullptr;
    bool m_unary;
    bool m_isNested = false;  // has some node of the left spine, down from this, an m_rightExpr?

    const CZelCompiledExpr *m_foot = this;          // the lowest of the left spine
    const CZelCompiledExpr *m_up = nullptr;         // whose left operand this is
    const CZelCompiledExpr *m_rightExpr = nullptr;  // the right operand, where it is one of this class
};
