#include "clause/CZelEvalClause.h"

#include <cstdlib>

#include "foundations/base/CZelString.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "store/CZelColDef.h"

CZelEvalClause::CZelEvalClause(CZelColDef *type, char *text) : m_text(text), m_type(type) {}

CZelEvalClause::CZelEvalClause(const CZelEvalClause &other)
    : m_text(ZelStrDup(other.m_text)), m_type(other.m_type != nullptr ? new CZelColDef(*other.m_type) : nullptr) {}

CZelEvalClause::~CZelEvalClause() {
    std::free(m_text);
    delete m_type;
}

char *CZelEvalClause::RECPrint() const {
    CZelString text("eval(");
    text.RSStrCat(CZelMallocText(m_type != nullptr ? m_type->RCDTypeText() : nullptr).get());
    text.RSStrCat(',');
    text.RSStrCatQuoted(m_text != nullptr ? m_text : "");
    text.RSStrCat(')');
    return text.RSTakeString();
}

CZelVarBind *CZelEvalClause::RECEvaluateClause(CZelCmdCmplr & /*compiler*/) {
    RECCompileClause();
    return nullptr;
}

void CZelEvalClause::RECCompileClause() {
    if (m_text == nullptr) {
        ZEL_REPORT(E_RCBadArgument, "CZelEvalClause::RECCompileClause");
        return;
    }
    CZelString text("This build does not evaluate clauses: ");
    text.RSStrCat(m_text);
    ZEL_REPORT(E_RCUnsupported, text.RSString());
}
