// timestamp: seconds since the epoch as local date and time.
#pragma once

#include <string>

#include "clause/CZelCompiledClause.h"

class QUINTOR_API CZelCompiledTimestamp : public CZelCompiledClause {
public:
    // Takes the clause over, copies the format; null or empty is "%Y-%m-%d %H:%M:%S".
    CZelCompiledTimestamp(CZelCompiledClause *clause, const char *format);
    ~CZelCompiledTimestamp() override;

    CZelAtom *RCCEvaluateToAtom(CZelCmdCmplr &compiler) const override;
    CZelCompiledClause *RCCClone() const override;

private:
    CZelCompiledClause *m_clause;
    std::string m_format;
};
