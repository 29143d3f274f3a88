// append and appendunique: a list field with an item field added at its end.
#pragma once

#include "clause/CZelCompiledClause.h"
#include "clause/CZelFieldName.h"
#include "foundations/base/ZelEnums.h"

class QUINTOR_API CZelCompiledAppend : public CZelCompiledClause {
public:
    CZelCompiledAppend(char *list, char *item, __boolean unique);  // takes over texts from malloc
    ~CZelCompiledAppend() override;

    CZelAtom *RCCEvaluateToAtom(CZelCmdCmplr &compiler) const override;
    CZelCompiledClause *RCCClone() const override;
    void RCCEvaluate(CZelCmdCmplr &compiler, CZelClauseValue &value) const override;

private:
    char *m_list;
    char *m_item;
    CZelFieldName m_listField;
    CZelFieldName m_itemField;
    __boolean m_unique;
};
