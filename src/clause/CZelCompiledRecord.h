// record_names and record_values: the current record as a list.
#pragma once

#include "clause/CZelCompiledClause.h"
#include "foundations/base/ZelEnums.h"

class QUINTOR_API CZelCompiledRecord : public CZelCompiledClause {
public:
    explicit CZelCompiledRecord(__boolean values);  // names when E_RBFalse
    ~CZelCompiledRecord() override;

    CZelAtom *RCCEvaluateToAtom(CZelCmdCmplr &compiler) const override;
    CZelCompiledClause *RCCClone() const override;

    // The whole list, not its first element.
    CZelExpr *RCCEvaluateToExpr(CZelCmdCmplr &compiler) const override;

private:
    __boolean m_values;
};
