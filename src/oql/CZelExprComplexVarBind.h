// A member of an object value of an insert: a name with a value.
#pragma once

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelListable.h"
#include "foundations/base/CZelPool.h"

class CZelExprComplex;

class QUINTOR_API CZelExprComplexVarBind : public CZelListable {
public:
    ZEL_POOLED

    CZelExprComplexVarBind(char *name, CZelExprComplex *value);       // takes both over
    CZelExprComplexVarBind(CZelAtom &&name, CZelExprComplex *value);  // moves the name in
    CZelExprComplexVarBind(const CZelExprComplexVarBind &other);      // deep
    CZelExprComplexVarBind &operator=(const CZelExprComplexVarBind &) = delete;
    ~CZelExprComplexVarBind() override;
    CZelListable *RLTargetDeepCopy(const CZelListable *source) const override;

    const CZelAtom &RECVName() const { return m_name; }
    CZelExprComplex *RECVValue() const { return m_value; }

private:
    CZelAtom m_name;
    CZelExprComplex *m_value;
};
