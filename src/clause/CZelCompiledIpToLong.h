// iptolong: a dotted address as a number, 0 when it is none.
#pragma once

#include "clause/CZelCompiledClause.h"

class QUINTOR_API CZelCompiledIpToLong : public CZelCompiledClause {
public:
    explicit CZelCompiledIpToLong(CZelCompiledClause *clause);  // takes over
    ~CZelCompiledIpToLong() override;

    CZelAtom *RCCEvaluateToAtom(CZelCmdCmplr &compiler) const override;
    CZelCompiledClause *RCCClone() const override;

private:
    CZelCompiledClause *m_clause;
};
