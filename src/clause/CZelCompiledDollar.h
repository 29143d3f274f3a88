// $name: a built-in value, a constant or an environment variable.
#pragma once

#include "clause/CZelCompiledClause.h"

class QUINTOR_API CZelCompiledDollar : public CZelCompiledClause {
public:
    explicit CZelCompiledDollar(char *name);  // takes over a text from malloc
    ~CZelCompiledDollar() override;

    CZelAtom *RCCEvaluateToAtom(CZelCmdCmplr &compiler) const override;
    CZelCompiledClause *RCCClone() const override;
    void RCCEvaluate(CZelCmdCmplr &compiler, CZelClauseValue &value) const override;

private:
    char *m_name;
};
