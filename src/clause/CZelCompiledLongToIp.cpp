#include "clause/CZelCompiledLongToIp.h"

#include <memory>
#include "foundations/base/CZelAtom.h"
#include "foundations/port/ZelPort.h"

CZelCompiledLongToIp::CZelCompiledLongToIp(CZelCompiledClause *clause) : m_clause(clause) {
    requireOperand(clause);
}

CZelCompiledLongToIp::~CZelCompiledLongToIp() {
    delete m_clause;
}

CZelAtom *CZelCompiledLongToIp::RCCEvaluateToAtom(CZelCmdCmplr &compiler) const {
    const std::unique_ptr<CZelAtom> value(m_clause != nullptr ? m_clause->RCCEvaluateToAtom(compiler) : nullptr);
    const bool counts = value != nullptr && (value->RAType() == E_RDTInt || value->RAType() == E_RDTLong);
    constexpr unsigned long ADDRESS_BITS = 0xFFFFFFFFUL;
    const unsigned long address = counts ? static_cast<unsigned long>(value->RALong()) & ADDRESS_BITS : 0;
    return new CZelAtom(ZelGetIPStr(address));
}

CZelCompiledClause *CZelCompiledLongToIp::RCCClone() const {
    return new CZelCompiledLongToIp(cloneOf(m_clause));
}
