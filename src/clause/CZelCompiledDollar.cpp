#include "clause/CZelCompiledDollar.h"

#include <cstdlib>
#include "clause/CZelCmdCmplr.h"
#include "foundations/base/ZelMalloc.h"

CZelCompiledDollar::CZelCompiledDollar(char *name) : m_name(name) {
    requireOperand(name);
}

CZelCompiledDollar::~CZelCompiledDollar() {
    std::free(m_name);
}

CZelAtom *CZelCompiledDollar::RCCEvaluateToAtom(CZelCmdCmplr &compiler) const {
    return compiler.RCCEvaluateDollar(m_name);
}

void CZelCompiledDollar::RCCEvaluate(CZelCmdCmplr &compiler, CZelClauseValue &value) const {
    compiler.RCCEvaluateDollar(m_name, value);
}

CZelCompiledClause *CZelCompiledDollar::RCCClone() const {
    return new CZelCompiledDollar(ZelStrDup(m_name));
}
