// A node of a compiled clause: the shape of an expression and no context, so that one tree serves any number of
// evaluations, from several threads if each has a compiler of its own. A node evaluates its operands and calls
// one operation of the compiler.
//
// RCCEvaluate is the road that nodes take among themselves: what exists already is referred to, not copied. The
// other two give the same value as a new object.
//
// Operands are owned by the node. What an evaluation gives is new and the caller's; null is no value.
#pragma once

#include "foundations/base/CZelPool.h"
#include "foundations/port/ZelExport.h"

class CZelAtom;
class CZelAtomVector;
class CZelBag;
class CZelClauseValue;
class CZelCmdCmplr;
class CZelExpr;

class QUINTOR_API CZelCompiledClause {
public:
    ZEL_POOLED

    CZelCompiledClause() = default;
    CZelCompiledClause(const CZelCompiledClause &) = delete;
    CZelCompiledClause &operator=(const CZelCompiledClause &) = delete;
    virtual ~CZelCompiledClause();

    virtual CZelExpr *RCCEvaluateToExpr(CZelCmdCmplr &compiler) const;
    virtual CZelAtom *RCCEvaluateToAtom(CZelCmdCmplr &compiler) const = 0;
    virtual CZelCompiledClause *RCCClone() const = 0;  // deep

    // The value into `value`, whatever that held. The base goes by RCCEvaluateToExpr.
    virtual void RCCEvaluate(CZelCmdCmplr &compiler, CZelClauseValue &value) const;

protected:
    // Adds the value of each node of the bag, an undefined atom where there is none. A null bag adds nothing.
    void RCCEvaluateClauseBag(CZelCmdCmplr &compiler, CZelAtomVector &out, CZelBag *clauses) const;
    void RCCEmptyClauseBag(CZelBag *clauses) const;     // deletes the nodes, not the bag
    CZelBag *RCCCopyClauseBag(CZelBag *clauses) const;  // a new bag of clones; null for null

    CZelAtom *newAtom(CZelCmdCmplr &compiler) const;                       // what RCCEvaluate gives, as a new atom
    static CZelCompiledClause *cloneOf(const CZelCompiledClause *clause);  // null for null
    void deleteClauseBag(CZelBag *clauses) const;
    static void requireOperand(const void *operand);  // a missing one is reported
};
