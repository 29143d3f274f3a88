#include "clause/CZelCompiledThis.h"

#include <cstdlib>
#include <memory>
#include "clause/CZelCmdCmplr.h"
#include "clause/CZelCompiledLiteral.h"
#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"

CZelCompiledThis::CZelCompiledThis(CZelCompiledClause *first, CZelCompiledClause *second, CZelCompiledClause *third,
                                   char *name, CZelBag *path)
    : m_first(first), m_second(second), m_third(third), m_name(name), m_path(path) {
    requireOperand(first);
    requireOperand(second);
    requireOperand(third);
    requireOperand(name);
}

CZelCompiledThis::CZelCompiledThis(int first, int second, int third, char *name, CZelBag *path)
    : CZelCompiledThis(new CZelCompiledLiteral(new CZelAtom(first)), new CZelCompiledLiteral(new CZelAtom(second)),
                       new CZelCompiledLiteral(new CZelAtom(third)), name, path) {}

CZelCompiledThis::~CZelCompiledThis() {
    delete m_first;
    delete m_second;
    delete m_third;
    std::free(m_name);
    deleteClauseBag(m_path);
}

// The int that a clause gives; 0, reported, when it gives none.
int CZelCompiledThis::number(const CZelCompiledClause *clause, CZelCmdCmplr &compiler) {
    const std::unique_ptr<CZelAtom> value(clause != nullptr ? clause->RCCEvaluateToAtom(compiler) : nullptr);
    if (value != nullptr && value->RAType() == E_RDTInt)
        return value->RAInt();
    ZEL_REPORT(E_RCBadValue, "CZelCompiledThis::RCCEvaluateToAtom: no int");
    return 0;
}

CZelAtom *CZelCompiledThis::RCCEvaluateToAtom(CZelCmdCmplr &compiler) const {
    const int first = number(m_first, compiler);
    const int second = number(m_second, compiler);
    const int third = number(m_third, compiler);
    CZelAtomVector path(0);
    RCCEvaluateClauseBag(compiler, path, m_path);
    CZelAtom *found = compiler.RCCEvaluateThis(first, second, m_name, third, path);
    return found != nullptr ? found : new CZelAtom();
}

CZelCompiledClause *CZelCompiledThis::RCCClone() const {
    return new CZelCompiledThis(cloneOf(m_first), cloneOf(m_second), cloneOf(m_third), ZelStrDup(m_name),
                                RCCCopyClauseBag(m_path));
}
