// delete: a list field without the first element equal to an item field.
#pragma once

#include "clause/CZelCompiledClause.h"
#include "clause/CZelFieldName.h"

class QUINTOR_API CZelCompiledDelete : public CZelCompiledClause {
public:
    CZelCompiledDelete(char *list, char *item);  // takes over texts from malloc
    ~CZelCompiledDelete() override;

    CZelAtom *RCCEvaluateToAtom(CZelCmdCmplr &compiler) const override;
    CZelCompiledClause *RCCClone() const override;
    void RCCEvaluate(CZelCmdCmplr &compiler, CZelClauseValue &value) const override;

private:
    char *m_list;
    char *m_item;
    CZelFieldName m_listField;
    CZelFieldName m_itemField;
};
