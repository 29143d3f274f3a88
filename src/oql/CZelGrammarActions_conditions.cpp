// Conditions and the folding of constants.
#include <cstdio>
#include <memory>

#include "foundations/base/CZelAtomVector.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/ZelDebug.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "oql/CZelGrammarActionsImpl.h"
#include "oql/CZelQuery.h"
#include "store/CZelBoolean.h"
#include "store/CZelFilter.h"

namespace {

void reportNoValue(const char *where, const char *trace) {
    ZEL_REPORT(E_RCNull, where);
    if (__Zeltronix_Debug_Level >= 4)
        std::puts(trace);
}

// Adds the value of a constant; other bounds add nothing. False, reported, for a constant without a value.
bool addBound(CZelAtomVector &bounds, const CZelExpr &bound) {
    if (bound.REType() != E_RETAtom)
        return true;
    const CZelAtom *value = bound.REHeadAtomVal();
    if (value == nullptr) {
        reportNoValue("A bound of a between is NULL.", "Warning. Expression evaluated to NULL.");
        return false;
    }
    bounds.RAVAddToEnd(new CZelAtom(*value));
    return true;
}

// Owns both sides until they are known to be there.
template <class Right>
CZelBoolean *comparison(CZelExpr *left, EZelOper op, Right *right) {
    std::unique_ptr<CZelExpr> leftGuard(left);
    std::unique_ptr<Right> rightGuard(right);
    if (left == nullptr || right == nullptr)
        return nullptr;
    return new CZelBoolean(leftGuard.release(), rightGuard.release(), op);
}

}  // namespace

CZelExpr *CZelGrammarActions::AtomValue(CZelAtom *atom) {
    return new CZelExpr(&atom);
}

CZelExpr *CZelGrammarActions::Signed(CZelExpr *value, bool isNegative) {
    if (value == nullptr || value->REType() != E_RETAtom)
        return value;
    if (isNegative)
        value->RENegativise();
    else
        value->REPositivise();
    return value;
}

CZelExpr *CZelGrammarActions::Fold(CZelExpr *left, void (CZelExpr::*operation)(const CZelAtom *), CZelExpr *right) {
    const std::unique_ptr<CZelExpr> rightGuard(right);
    if (left == nullptr || right == nullptr)
        return left;
    const CZelAtom *value = right->REHeadAtomVal();
    if (value == nullptr)
        reportNoValue("The right side of an operator has no value.", "Warning. Scalar expression evaluated to NULL.");
    else if (right->REType() == E_RETAtom)
        (left->*operation)(value);
    return left;
}

CZelFilter *CZelGrammarActions::Join(CZelFilter *left, EZelAlgebraic joiner, CZelFilter *right) {
    CZelFilter *filter = new CZelFilter();
    filter->RFAddRight(right);
    filter->RFAddLeft(left);
    filter->RFSetOp(joiner);
    return filter;
}

CZelFilter *CZelGrammarActions::Kernel(CZelBoolean *comparison) {
    return comparison != nullptr ? new CZelFilter(comparison) : nullptr;
}

CZelBoolean *CZelGrammarActions::Compare(CZelExpr *left, EZelOper op, CZelExpr *right) {
    return comparison(left, op, right);
}

CZelBoolean *CZelGrammarActions::Compare(CZelExpr *left, EZelOper op, CZelQuery *right) {
    return comparison(left, op, right);
}

CZelBoolean *CZelGrammarActions::TestForNull(CZelDbEntity *column, EZelOper op) {
    return Compare(EntityValue(column), op, AtomValue(nullptr));
}

CZelBoolean *CZelGrammarActions::Exists(CZelQuery *query) {
    return Compare(AtomValue(nullptr), E_ROExists, query);
}

CZelBoolean *CZelGrammarActions::LikeAtom(CZelExpr *left, EZelOper op, CZelAtom *pattern, CZelAtom *escape) {
    delete escape;
    return Compare(left, op, pattern != nullptr ? AtomValue(pattern) : nullptr);
}

CZelBoolean *CZelGrammarActions::InAtoms(CZelExpr *left, EZelOper op, CZelAtomVector *atoms) {
    return Compare(left, op, AtomValue(ListAtom(atoms)));
}

CZelBoolean *CZelGrammarActions::Between(CZelExpr *left, EZelOper op, CZelExpr *low, CZelExpr *high) {
    std::unique_ptr<CZelExpr> leftGuard(left);
    const std::unique_ptr<CZelExpr> lowGuard(low), highGuard(high);
    if (left == nullptr || low == nullptr || high == nullptr)
        return nullptr;
    auto bounds = std::make_unique<CZelAtomVector>(0);
    if (!addBound(*bounds, *low) || !addBound(*bounds, *high))
        return nullptr;
    return InAtoms(leftGuard.release(), op, bounds.release());
}
