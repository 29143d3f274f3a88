// length: the number of elements of a list or object field, 0 when there is none.
#pragma once

#include "clause/CZelCompiledClause.h"

class QUINTOR_API CZelCompiledLength : public CZelCompiledClause {
public:
    explicit CZelCompiledLength(const char *name);            // copies: the name of a field
    explicit CZelCompiledLength(CZelCompiledClause *clause);  // takes over: a list, an object, or a field's name
    ~CZelCompiledLength() override;

    CZelAtom *RCCEvaluateToAtom(CZelCmdCmplr &compiler) const override;
    CZelCompiledClause *RCCClone() const override;

private:
    char *m_name = nullptr;
    CZelCompiledClause *m_clause = nullptr;
};
