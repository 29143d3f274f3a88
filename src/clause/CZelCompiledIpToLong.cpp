#include "clause/CZelCompiledIpToLong.h"

#include <arpa/inet.h>
#include <memory>
#include "foundations/base/CZelAtom.h"
#include "foundations/port/ZelPort.h"

CZelCompiledIpToLong::CZelCompiledIpToLong(CZelCompiledClause *clause) : m_clause(clause) {
    requireOperand(clause);
}

CZelCompiledIpToLong::~CZelCompiledIpToLong() {
    delete m_clause;
}

CZelAtom *CZelCompiledIpToLong::RCCEvaluateToAtom(CZelCmdCmplr &compiler) const {
    const std::unique_ptr<CZelAtom> value(m_clause != nullptr ? m_clause->RCCEvaluateToAtom(compiler) : nullptr);
    in_addr address = {};
    if (value == nullptr || value->RAString() == nullptr || ZelInetAtoN(value->RAString(), &address) == -1)
        return new CZelAtom(0LL);
    return new CZelAtom(static_cast<long long>(ntohl(address.s_addr)));
}

CZelCompiledClause *CZelCompiledIpToLong::RCCClone() const {
    return new CZelCompiledIpToLong(cloneOf(m_clause));
}
