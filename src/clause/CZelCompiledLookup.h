// lookup: one step by a key into a field, with a default for what is not there.
#pragma once

#include "clause/CZelCompiledClause.h"

class QUINTOR_API CZelCompiledLookup : public CZelCompiledClause {
public:
    // Take over; the default may be null.
    CZelCompiledLookup(CZelCompiledClause *key, CZelCompiledClause *name, CZelCompiledClause *fallback);
    ~CZelCompiledLookup() override;

    CZelAtom *RCCEvaluateToAtom(CZelCmdCmplr &compiler) const override;
    CZelCompiledClause *RCCClone() const override;

private:
    CZelAtom *find(CZelCmdCmplr &compiler) const;

    CZelCompiledClause *m_key;
    CZelCompiledClause *m_name;
    CZelCompiledClause *m_default;
};
