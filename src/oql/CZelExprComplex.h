// A value of an insert: a single expression, or a list or object whose members are such values again. A text
// can nest them deeper than the stack allows, so everything here goes by loops.
#pragma once

#include <vector>

#include "foundations/base/CZelListable.h"
#include "foundations/base/CZelPool.h"
#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class CZelAtom;
class CZelBag;
class CZelDoubleList;
class CZelExpr;
class CZelExprComplex;

// A value that is still to be copied, and its copy.
struct CZelExprComplexCopy {
    const CZelExprComplex *m_from;
    CZelExprComplex *m_to;
};

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

    // How many values RECBagVal would give, -1 where it gives null. Makes nothing and reports nothing.
    int RECValueCount() const;

    // The value for a row, copied or built into `value`; false, `value` unchanged, when there is none.
    // Nothing is kept here.
    bool RECCopyValue(CZelAtom &value) const;

    CZelBag *RECCompilables();  // a new bag of the expressions inside, the caller's
    void RECAppendCompilables(CZelBag &out);
    void RECDump();

    const CZelAtom *RECAtomValue() { return RECAtomVal(); }

protected:
    // The value as one atom: the expression's first, or the list or object built anew, kept here.
    CZelAtom *RECAtomVal();

private:
    bool isNest() const { return m_type != E_RECTSimple; }
    const CZelAtom *simpleValue() const;
    CZelAtom buildNest() const;
    void copyLevel(const CZelExprComplex &other, std::vector<CZelExprComplexCopy> &nested);
    static CZelExprComplex *valueOf(CZelListable *member, EZelExprComplexType type);
    static void deleteNest(CZelDoubleList *members, EZelExprComplexType type);

    friend class CZelExprComplexLevel;

    EZelExprComplexType m_type;
    union {
        CZelExpr *m_value;
        CZelDoubleList *m_members;
    };
    CZelAtom *m_last = nullptr;
};
