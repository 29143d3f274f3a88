// &name with an optional path: a field of the current or an enclosing record.
#pragma once

#include "clause/CZelCompiledClause.h"
#include "clause/CZelFieldName.h"

class QUINTOR_API CZelCompiledAmpersand : public CZelCompiledClause {
public:
    // Take over; the name gives a text atom, each node of the path a key. No path: null.
    CZelCompiledAmpersand(CZelCompiledClause *name, CZelBag *path);
    ~CZelCompiledAmpersand() override;

    CZelAtom *RCCEvaluateToAtom(CZelCmdCmplr &compiler) const override;
    CZelCompiledClause *RCCClone() const override;
    void RCCEvaluate(CZelCmdCmplr &compiler, CZelClauseValue &value) const override;

private:
    const CZelAtom *computedField(CZelCmdCmplr &compiler, CZelClauseValue &name) const;
    const CZelAtom *follow(CZelCmdCmplr &compiler, const CZelAtom *found) const;

    CZelCompiledClause *m_name;
    CZelBag *m_path;
    CZelFieldName m_field;  // none when the name is computed
};
