// A node of a compiled clause: the shape of an expression and no context, so that one tree serves any number of
// evaluations, from several threads if each has a compiler of its own. A node evaluates its operands and calls
// one operation of the compiler.
//
// RCCEvaluate is the road that nodes take among themselves: what exists already is referred to, not copied. The
// other two give the same value as a new object.
//
// Operands are owned by the node. What an evaluation gives is new and the caller's; null is no value.
#pragma once

#include "clause/CZelFieldName.h"
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

    // Does the value lie there before it is evaluated: in a field of a record, or as a constant?
    bool RCCIsPlain() const { return m_plainField != nullptr || m_plainAtom != nullptr; }
    const CZelAtom *RCCPlainValue(const CZelRecordVector *records) const {  // null: no value, or not plain
        return m_plainField != nullptr ? m_plainField->ValueIn(records) : m_plainAtom;
    }

protected:
    void setPlain(const CZelFieldName &field) { m_plainField = &field; }
    void setPlain(const CZelAtom *constant) { m_plainAtom = constant; }

    // Adds the value of each node of the bag, an undefined atom where there is none. A null bag adds nothing.
    void RCCEvaluateClauseBag(CZelCmdCmplr &compiler, CZelAtomVector &out, CZelBag *clauses) const;
    void RCCEmptyClauseBag(CZelBag *clauses) const;     // deletes the nodes, not the bag
    CZelBag *RCCCopyClauseBag(CZelBag *clauses) const;  // a new bag of clones; null for null

    CZelAtom *newAtom(CZelCmdCmplr &compiler) const;                       // what RCCEvaluate gives, as a new atom
    static CZelCompiledClause *cloneOf(const CZelCompiledClause *clause);  // null for null
    void deleteClauseBag(CZelBag *clauses) const;
    static void requireOperand(const void *operand);  // a missing one is reported

private:
    const CZelFieldName *m_plainField = nullptr;  // of the node, as the atom is
    const CZelAtom *m_plainAtom = nullptr;
};
