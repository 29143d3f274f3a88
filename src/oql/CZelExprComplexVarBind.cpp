#include "oql/CZelExprComplexVarBind.h"

#include <cstdlib>
#include <utility>

#include "oql/CZelExprComplex.h"

CZelExprComplexVarBind::CZelExprComplexVarBind(char *name, CZelExprComplex *value)
    : m_name(CZelAtom::RAName(name)), m_value(value) {
    std::free(name);
}

CZelExprComplexVarBind::CZelExprComplexVarBind(CZelAtom &&name, CZelExprComplex *value)
    : m_name(std::move(name)), m_value(value) {}

CZelExprComplexVarBind::CZelExprComplexVarBind(const CZelExprComplexVarBind &other)
    : CZelListable(other),
      m_name(other.m_name),
      m_value(other.m_value != nullptr ? new CZelExprComplex(*other.m_value) : nullptr) {}

CZelExprComplexVarBind::~CZelExprComplexVarBind() {
    delete m_value;
}

CZelListable *CZelExprComplexVarBind::RLTargetDeepCopy(const CZelListable *source) const {
    return new CZelExprComplexVarBind(*static_cast<const CZelExprComplexVarBind *>(source));
}
