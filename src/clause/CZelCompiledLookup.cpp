#include "clause/CZelCompiledLookup.h"

#include <memory>
#include "clause/CZelCmdCmplr.h"
#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"

CZelCompiledLookup::CZelCompiledLookup(CZelCompiledClause *key, CZelCompiledClause *name, CZelCompiledClause *fallback)
    : m_key(key), m_name(name), m_default(fallback) {
    requireOperand(key);
    requireOperand(name);
}

CZelCompiledLookup::~CZelCompiledLookup() {
    delete m_key;
    delete m_name;
    delete m_default;
}

CZelAtom *CZelCompiledLookup::find(CZelCmdCmplr &compiler) const {
    CZelAtom *key = m_key != nullptr ? m_key->RCCEvaluateToAtom(compiler) : nullptr;
    if (key == nullptr)
        return nullptr;
    CZelAtomVector path(2);
    path.RAVAddToEnd(key);
    const std::unique_ptr<CZelAtom> name(m_name != nullptr ? m_name->RCCEvaluateToAtom(compiler) : nullptr);
    return name != nullptr ? compiler.RCCEvaluateAmpersand(name.get(), path) : nullptr;
}

CZelAtom *CZelCompiledLookup::RCCEvaluateToAtom(CZelCmdCmplr &compiler) const {
    CZelAtom *found = find(compiler);
    if (!CZelAtom::RAIsNull(found))
        return found;
    if (m_default == nullptr)
        return found != nullptr ? found : new CZelAtom();
    delete found;
    return m_default->RCCEvaluateToAtom(compiler);
}

CZelCompiledClause *CZelCompiledLookup::RCCClone() const {
    return new CZelCompiledLookup(cloneOf(m_key), cloneOf(m_name), cloneOf(m_default));
}
