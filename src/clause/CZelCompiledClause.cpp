#include "clause/CZelCompiledClause.h"

#include "clause/CZelClauseValue.h"
#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBag.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelExpr.h"

namespace {

CZelCompiledClause *nodeOf(const CZelPointer *entry) {
    return static_cast<CZelCompiledClause *>(entry->RPData());
}

}  // namespace

CZelCompiledClause::~CZelCompiledClause() = default;

CZelExpr *CZelCompiledClause::RCCEvaluateToExpr(CZelCmdCmplr &compiler) const {
    CZelAtom *value = RCCEvaluateToAtom(compiler);
    return value != nullptr ? new CZelExpr(&value) : nullptr;
}

void CZelCompiledClause::RCCEvaluate(CZelCmdCmplr &compiler, CZelClauseValue &value) const {
    value.Adopt(RCCEvaluateToExpr(compiler));
}

CZelAtom *CZelCompiledClause::newAtom(CZelCmdCmplr &compiler) const {
    CZelClauseValue value;
    RCCEvaluate(compiler, value);
    return value.TakeAtom();
}

void CZelCompiledClause::RCCEvaluateClauseBag(CZelCmdCmplr &compiler, CZelAtomVector &out, CZelBag *clauses) const {
    if (clauses == nullptr)
        return;
    out.RAVMakeSpace(out.RAVSize() + static_cast<unsigned int>(clauses->RBLength()));
    for (CZelPointer *entry = clauses->RBFirst(); entry != nullptr; entry = CZelBag::RBNext(entry)) {
        CZelAtom *value = nodeOf(entry)->RCCEvaluateToAtom(compiler);
        out.RAVAddToEnd(value != nullptr ? value : new CZelAtom());
    }
}

void CZelCompiledClause::RCCEmptyClauseBag(CZelBag *clauses) const {
    if (clauses == nullptr)
        return;
    for (CZelPointer *entry = clauses->RBFirst(); entry != nullptr; entry = CZelBag::RBNext(entry))
        delete nodeOf(entry);
    clauses->RBEmptyBag();
}

CZelBag *CZelCompiledClause::RCCCopyClauseBag(CZelBag *clauses) const {
    if (clauses == nullptr)
        return nullptr;
    auto *copies = new CZelBag();
    for (CZelPointer *entry = clauses->RBFirst(); entry != nullptr; entry = CZelBag::RBNext(entry))
        copies->RBAdd(static_cast<void *>(nodeOf(entry)->RCCClone()));
    return copies;
}

CZelCompiledClause *CZelCompiledClause::cloneOf(const CZelCompiledClause *clause) {
    return clause != nullptr ? clause->RCCClone() : nullptr;
}

void CZelCompiledClause::deleteClauseBag(CZelBag *clauses) const {
    RCCEmptyClauseBag(clauses);
    delete clauses;
}

void CZelCompiledClause::requireOperand(const void *operand) {
    if (operand == nullptr)
        ZEL_REPORT(E_RCBadArgument, "CZelCompiledClause: an operand is missing");
}
