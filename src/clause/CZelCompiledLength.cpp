#include "clause/CZelCompiledLength.h"

#include <cstdlib>
#include <memory>
#include "clause/CZelCmdCmplr.h"
#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelVBList.h"
#include "foundations/base/ZelMalloc.h"

CZelCompiledLength::CZelCompiledLength(const char *name) : m_name(ZelStrDup(name)) {
    requireOperand(name);
}

CZelCompiledLength::CZelCompiledLength(CZelCompiledClause *clause) : m_clause(clause) {
    requireOperand(clause);
}

CZelCompiledLength::~CZelCompiledLength() {
    std::free(m_name);
    delete m_clause;
}

CZelAtom *CZelCompiledLength::RCCEvaluateToAtom(CZelCmdCmplr &compiler) const {
    if (m_name != nullptr)
        return compiler.RCCEvaluateLength(m_name);
    const std::unique_ptr<CZelAtom> value(m_clause != nullptr ? m_clause->RCCEvaluateToAtom(compiler) : nullptr);
    if (value != nullptr && value->RAType() == E_RDTText)
        return compiler.RCCEvaluateLength(value.get());
    if (value != nullptr && value->RAList() != nullptr)
        return new CZelAtom(static_cast<int>(value->RAList()->RAVSize()));
    if (value != nullptr && value->RAObject() != nullptr)
        return new CZelAtom(value->RAObject()->RVBLLength());
    return new CZelAtom(0);
}

CZelCompiledClause *CZelCompiledLength::RCCClone() const {
    return m_name != nullptr ? new CZelCompiledLength(m_name) : new CZelCompiledLength(cloneOf(m_clause));
}
