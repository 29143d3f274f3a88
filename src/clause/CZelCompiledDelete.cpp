#include "clause/CZelCompiledDelete.h"

#include <cstdlib>
#include "clause/CZelClauseValue.h"
#include "clause/CZelCmdCmplr.h"
#include "foundations/base/ZelMalloc.h"

CZelCompiledDelete::CZelCompiledDelete(char *list, char *item)
    : m_list(list), m_item(item), m_listField(list), m_itemField(item) {
    requireOperand(list);
    requireOperand(item);
}

CZelCompiledDelete::~CZelCompiledDelete() {
    std::free(m_list);
    std::free(m_item);
}

CZelAtom *CZelCompiledDelete::RCCEvaluateToAtom(CZelCmdCmplr &compiler) const {
    return newAtom(compiler);
}

void CZelCompiledDelete::RCCEvaluate(CZelCmdCmplr &compiler, CZelClauseValue &value) const {
    value.Clear();
    if (CZelAtomVector *list = compiler.RCCDeleted(m_listField, m_itemField))
        value.Set(CZelAtom(list));
}

CZelCompiledClause *CZelCompiledDelete::RCCClone() const {
    return new CZelCompiledDelete(ZelStrDup(m_list), ZelStrDup(m_item));
}
