// cat: the texts of its parts, joined.
#pragma once

#include "clause/CZelCompiledClause.h"

class QUINTOR_API CZelCompiledCat : public CZelCompiledClause {
public:
    explicit CZelCompiledCat(CZelBag *parts);  // takes over bag and nodes
    ~CZelCompiledCat() override;

    CZelAtom *RCCEvaluateToAtom(CZelCmdCmplr &compiler) const override;
    CZelCompiledClause *RCCClone() const override;
    void RCCEvaluate(CZelCmdCmplr &compiler, CZelClauseValue &value) const override;

private:
    CZelBag *m_parts;
};
