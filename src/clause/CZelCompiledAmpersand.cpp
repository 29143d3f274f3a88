#include "clause/CZelCompiledAmpersand.h"

#include "clause/CZelClauseValue.h"
#include "clause/CZelCmdCmplr.h"
#include "clause/CZelCompiledLiteral.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelBaseRecord.h"

CZelCompiledAmpersand::CZelCompiledAmpersand(CZelCompiledClause *name, CZelBag *path) : m_name(name), m_path(path) {
    requireOperand(name);
    const auto *literal = dynamic_cast<const CZelCompiledLiteral *>(name);
    if (literal != nullptr && literal->RCLAtom() != nullptr)
        m_field = CZelFieldName(literal->RCLAtom()->RAString());
    if (m_field.IsName() && path == nullptr)
        setPlain(m_field);
}

CZelCompiledAmpersand::~CZelCompiledAmpersand() {
    delete m_name;
    deleteClauseBag(m_path);
}

CZelAtom *CZelCompiledAmpersand::RCCEvaluateToAtom(CZelCmdCmplr &compiler) const {
    return newAtom(compiler);
}

void CZelCompiledAmpersand::RCCEvaluate(CZelCmdCmplr &compiler, CZelClauseValue &value) const {
    const CZelAtom *found = m_field.IsName() ? compiler.RCCField(m_field) : computedField(compiler, value);
    value.Refer(m_path != nullptr ? follow(compiler, found) : found);
}

// A name that a constant gives; one that is missing, or no text, names nothing.
const CZelAtom *CZelCompiledAmpersand::computedField(CZelCmdCmplr &compiler, CZelClauseValue &name) const {
    name.Clear();
    if (m_name != nullptr)
        m_name->RCCEvaluate(compiler, name);
    return name.HasValue() ? compiler.RCCField(CZelFieldName(name.Get()->RAString())) : nullptr;
}

const CZelAtom *CZelCompiledAmpersand::follow(CZelCmdCmplr &compiler, const CZelAtom *found) const {
    CZelPointer *step = m_path->RBFirst();
    for (; step != nullptr && found != nullptr; step = CZelBag::RBNext(step)) {
        CZelClauseValue key;
        static_cast<const CZelCompiledClause *>(step->RPData())->RCCEvaluate(compiler, key);
        found = key.HasValue() ? CZelBaseRecord::RRStep(found, *key.Get()) : nullptr;
    }
    return found;
}

CZelCompiledClause *CZelCompiledAmpersand::RCCClone() const {
    return new CZelCompiledAmpersand(cloneOf(m_name), RCCCopyClauseBag(m_path));
}
