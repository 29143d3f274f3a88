// Arithmetic on the values of two clauses, or the negation of one.
//
// A text can make sums that are as long as it is, and that lean to the left, or that nest to the right as deep as
// the parser goes. So each node knows the lowest one of its left spine and the one above it on that spine, and
// everything here walks by loops. Where all operands are fields and constants, which is known from the start, numbers
// are computed without values in between; nesting to the right is short then, and gone into by recursion.
#pragma once

#include "clause/CZelCompiledClause.h"

class CZelNumber;

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

    // How deep right operands that are expressions too are gone into by recursion.
    static constexpr int MAX_SIMPLE_DEPTH = 16;
    static constexpr int NOT_SIMPLE = MAX_SIMPLE_DEPTH + 1;

    template <class Visitor>
    static void walk(const CZelCompiledExpr *root, Visitor &visitor);
    template <class Visitor>
    static void climb(const CZelCompiledExpr *head, Visitor &visitor);

    int depthOfRight() const;

    // Of plain operands; none when one of them is no number: then the values have to go the long way.
    CZelNumber number(const CZelRecordVector *records) const;
    CZelNumber rightNumber(const CZelRecordVector *records) const;
    void evaluateAny(CZelCmdCmplr &compiler, CZelClauseValue &value) const;

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
    int m_depth = 0;          // of the right operands, down from this; NOT_SIMPLE when some operand is not plain
    bool m_isNested = false;  // has some node of the left spine, down from this, an m_rightExpr?

    const CZelCompiledExpr *m_foot = this;          // the lowest of the left spine
    const CZelCompiledExpr *m_up = nullptr;         // whose left operand this is
    const CZelCompiledExpr *m_rightExpr = nullptr;  // the right operand, where it is one of this class
};
