#include "clause/CZelCompiledRecord.h"

#include "clause/CZelCmdCmplr.h"
#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelVarBind.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelExpr.h"

CZelCompiledRecord::CZelCompiledRecord(__boolean values) : m_values(values) {}

CZelCompiledRecord::~CZelCompiledRecord() = default;

CZelAtom *CZelCompiledRecord::RCCEvaluateToAtom(CZelCmdCmplr &compiler) const {
    return m_values == E_RBTrue ? compiler.RCCEvaluateRecordValues() : compiler.RCCEvaluateRecordNames();
}

CZelExpr *CZelCompiledRecord::RCCEvaluateToExpr(CZelCmdCmplr &compiler) const {
    CZelAtom *list = RCCEvaluateToAtom(compiler);
    if (CZelAtom::RAIsNull(list)) {
        delete list;
        return nullptr;
    }
    if (list->RAType() != E_RDTList) {
        delete list;
        ZEL_REPORT(E_RCBadType, "CZelCompiledRecord::RCCEvaluateToExpr");
        return nullptr;
    }
    auto *whole = new CZelExpr();
    whole->RESetClauseVal(new CZelVarBind("", &list));
    return whole;
}

CZelCompiledClause *CZelCompiledRecord::RCCClone() const {
    return new CZelCompiledRecord(m_values);
}
