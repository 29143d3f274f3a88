#include "clause/CZelCompiledTimestamp.h"

#include <memory>
#include "foundations/base/CZelAtom.h"
#include "foundations/port/ZelPort.h"

namespace {

constexpr const char *DEFAULT_FORMAT = "%Y-%m-%d %H:%M:%S";
constexpr int BUFFER_SIZE = 128;

}  // namespace

CZelCompiledTimestamp::CZelCompiledTimestamp(CZelCompiledClause *clause, const char *format)
    : m_clause(clause), m_format(format != nullptr && format[0] != '\0' ? format : DEFAULT_FORMAT) {
    requireOperand(clause);
}

CZelCompiledTimestamp::~CZelCompiledTimestamp() {
    delete m_clause;
}

CZelAtom *CZelCompiledTimestamp::RCCEvaluateToAtom(CZelCmdCmplr &compiler) const {
    const std::unique_ptr<CZelAtom> value(m_clause != nullptr ? m_clause->RCCEvaluateToAtom(compiler) : nullptr);
    const bool counts = value != nullptr && (value->RAType() == E_RDTInt || value->RAType() == E_RDTLong);
    const long seconds = counts ? value->RALong() : 0;
    char buffer[BUFFER_SIZE] = {};
    const char *text = ZelStrfTime_r(&seconds, m_format.c_str(), buffer, BUFFER_SIZE);
    return new CZelAtom(text != nullptr ? text : "");  // an over-long format has no text
}

CZelCompiledClause *CZelCompiledTimestamp::RCCClone() const {
    return new CZelCompiledTimestamp(cloneOf(m_clause), m_format.c_str());
}
