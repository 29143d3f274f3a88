#include "clause/CZelCompiledCat.h"

#include "clause/CZelClauseValue.h"
#include "clause/CZelCmdCmplr.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelString.h"

namespace {

const CZelAtom *valueOf(const CZelCompiledClause &part, CZelCmdCmplr &compiler, CZelClauseValue &computed) {
    if (part.RCCIsPlain())
        return part.RCCPlainValue(compiler.RCCRecords());
    part.RCCEvaluate(compiler, computed);
    return computed.Get();
}

}  // namespace

CZelCompiledCat::CZelCompiledCat(CZelBag *parts) : m_parts(parts) {
    requireOperand(parts);
}

CZelCompiledCat::~CZelCompiledCat() {
    deleteClauseBag(m_parts);
}

CZelAtom *CZelCompiledCat::RCCEvaluateToAtom(CZelCmdCmplr &compiler) const {
    return newAtom(compiler);
}

void CZelCompiledCat::RCCEvaluate(CZelCmdCmplr &compiler, CZelClauseValue &value) const {
    value.Clear();
    if (m_parts == nullptr || m_parts->RBLength() == 0)
        return;
    CZelString text;
    CZelClauseValue part;
    for (CZelPointer *node = m_parts->RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        CZelCmdCmplr::RCCCatPart(text,
                                 valueOf(*static_cast<const CZelCompiledClause *>(node->RPData()), compiler, part));
    value.Set(CZelAtom(text.RSTakeString()));
}

CZelCompiledClause *CZelCompiledCat::RCCClone() const {
    return new CZelCompiledCat(RCCCopyClauseBag(m_parts));
}
