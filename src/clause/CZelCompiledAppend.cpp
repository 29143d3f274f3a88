#include "clause/CZelCompiledAppend.h"

#include <cstdlib>
#include "clause/CZelClauseValue.h"
#include "clause/CZelCmdCmplr.h"
#include "foundations/base/ZelMalloc.h"

CZelCompiledAppend::CZelCompiledAppend(char *list, char *item, __boolean unique)
    : m_list(list), m_item(item), m_listField(list), m_itemField(item), m_unique(unique) {
    requireOperand(list);
    requireOperand(item);
}

CZelCompiledAppend::~CZelCompiledAppend() {
    std::free(m_list);
    std::free(m_item);
}

CZelAtom *CZelCompiledAppend::RCCEvaluateToAtom(CZelCmdCmplr &compiler) const {
    return newAtom(compiler);
}

void CZelCompiledAppend::RCCEvaluate(CZelCmdCmplr &compiler, CZelClauseValue &value) const {
    value.Clear();
    if (CZelAtomVector *list = compiler.RCCAppended(m_listField, m_itemField, m_unique == E_RBTrue))
        value.Set(CZelAtom(list));
}

CZelCompiledClause *CZelCompiledAppend::RCCClone() const {
    return new CZelCompiledAppend(ZelStrDup(m_list), ZelStrDup(m_item), m_unique);
}
