// A value of an insert: a single expression, or a list or object whose members are such values again.
#pragma once

#include "foundations/base/CZelListable.h"
#include "foundations/base/CZelPool.h"
#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class CZelAtom;
class CZelBag;
class CZelDoubleList;
class CZelExpr;

class QUINTOR_API CZelExprComplex : public CZelListable {
public:
    ZEL_POOLED

    explicit CZelExprComplex(CZelExpr *value);  // takes over
    // A list of CZelExprComplex or an object of CZelExprComplexVarBind; takes over. Another type reports
    // E_RCBadState, a null list E_RCNullList; the value is then a single one without a value.
    CZelExprComplex(CZelDoubleList *members, EZelExprComplexType type);
    CZelExprComplex(const CZelExprComplex &other);  // deep
    CZelExprComplex &operator=(const CZelExprComplex &) = delete;
    ~CZelExprComplex() override;
    CZelListable *RLTargetDeepCopy(const CZelListable *source) const override;

    EZelExprComplexType RECType() const { return m_type; }
    CZelExpr *RECExpr() const { return m_type == E_RECTSimple ? m_value : nullptr; }

    // The values in a new bag, the caller's; the atoms stay owned here and live until the next call.
    CZelBag *RECBagVal();

    // Appends this value for a row to `values`, as RECBagVal gives it: for callers that gather many.
    int RECAppendValues(CZelBag &values);

    CZelBag *RECCompilables();  // a new bag of the expressions inside, the caller's
    void RECAppendCompilables(CZelBag &out);
    void RECDump();

    const CZelAtom *RECAtomValue() { return RECAtomVal(); }

protected:
    // The value as one atom: the expression's first, or the list or object built anew, kept here.
    CZelAtom *RECAtomVal();

private:
    CZelAtom *buildList();
    CZelAtom *buildObject();

    EZelExprComplexType m_type;
    union {
        CZelExpr *m_value;
        CZelDoubleList *m_members;
    };
    CZelAtom *m_last = nullptr;
};
