// A constant.
#pragma once

#include "clause/CZelCompiledClause.h"

class QUINTOR_API CZelCompiledLiteral : public CZelCompiledClause {
public:
    explicit CZelCompiledLiteral(CZelAtom *atom);  // takes over
    ~CZelCompiledLiteral() override;

    CZelAtom *RCCEvaluateToAtom(CZelCmdCmplr &compiler) const override;
    CZelCompiledClause *RCCClone() const override;
    void RCCEvaluate(CZelCmdCmplr &compiler, CZelClauseValue &value) const override;

    const CZelAtom *RCLAtom() const { return m_atom; }

private:
    CZelAtom *m_atom;
};
