// longtoip: a number as a dotted address.
#pragma once

#include "clause/CZelCompiledClause.h"

class QUINTOR_API CZelCompiledLongToIp : public CZelCompiledClause {
public:
    explicit CZelCompiledLongToIp(CZelCompiledClause *clause);  // takes over; int and long count, others are 0
    ~CZelCompiledLongToIp() override;

    CZelAtom *RCCEvaluateToAtom(CZelCmdCmplr &compiler) const override;
    CZelCompiledClause *RCCClone() const override;

private:
    CZelCompiledClause *m_clause;
};
