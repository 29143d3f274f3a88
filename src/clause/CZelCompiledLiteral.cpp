#include "clause/CZelCompiledLiteral.h"

#include "clause/CZelClauseValue.h"

CZelCompiledLiteral::CZelCompiledLiteral(CZelAtom *atom) : m_atom(atom) {
    requireOperand(atom);
    setPlain(atom);
}

CZelCompiledLiteral::~CZelCompiledLiteral() {
    delete m_atom;
}

CZelAtom *CZelCompiledLiteral::RCCEvaluateToAtom(CZelCmdCmplr & /*compiler*/) const {
    return m_atom != nullptr ? new CZelAtom(*m_atom) : nullptr;
}

void CZelCompiledLiteral::RCCEvaluate(CZelCmdCmplr & /*compiler*/, CZelClauseValue &value) const {
    value.Refer(m_atom);
}

CZelCompiledClause *CZelCompiledLiteral::RCCClone() const {
    return new CZelCompiledLiteral(m_atom != nullptr ? new CZelAtom(*m_atom) : nullptr);
}
