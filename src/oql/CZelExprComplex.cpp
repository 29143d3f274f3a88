#include "oql/CZelExprComplex.h"

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelVBList.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelExpr.h"
#include "oql/CZelExprComplexVarBind.h"

namespace {

// The value of a member of a list or object.
CZelExprComplex *memberValue(CZelListable *member, EZelExprComplexType type) {
    return type == E_RECTList ? static_cast<CZelExprComplex *>(member)
                              : static_cast<CZelExprComplexVarBind *>(member)->RECVValue();
}

}  // namespace

CZelExprComplex::CZelExprComplex(CZelExpr *value) : m_type(E_RECTSimple), m_value(value) {}

CZelExprComplex::CZelExprComplex(CZelDoubleList *members, EZelExprComplexType type)
    : m_type(E_RECTSimple), m_value(nullptr) {
    if (members == nullptr) {
        ZEL_REPORT(E_RCNullList, "CZelExprComplex::CZelExprComplex");
    } else if (type != E_RECTList && type != E_RECTObject) {
        ZEL_REPORT(E_RCBadState, "Attempt to construct CZelExprComplex of incorrect type");
        delete members;
    } else {
        m_type = type;
        m_members = members;
    }
}

CZelExprComplex::CZelExprComplex(const CZelExprComplex &other)
    : CZelListable(other), m_type(other.m_type), m_value(nullptr) {
    if (m_type != E_RECTSimple)
        m_members = new CZelDoubleList(*other.m_members);
    else if (other.m_value != nullptr)
        m_value = new CZelExpr(*other.m_value);
}

CZelExprComplex::~CZelExprComplex() {
    if (m_type == E_RECTSimple)
        delete m_value;
    else
        delete m_members;
    delete m_last;
}

CZelListable *CZelExprComplex::RLTargetDeepCopy(const CZelListable *source) const {
    return new CZelExprComplex(*static_cast<const CZelExprComplex *>(source));
}

CZelBag *CZelExprComplex::RECBagVal() {
    if (m_type == E_RECTSimple)
        return m_value != nullptr ? m_value->REBagVal() : nullptr;
    auto *bag = new CZelBag();
    bag->RBAdd(static_cast<void *>(RECAtomVal()));
    return bag;
}

int CZelExprComplex::RECAppendValues(CZelBag &values) {
    CZelBag *own = RECBagVal();
    if (own == nullptr)
        return ZEL_FAIL(E_RCBadArgument, "CZelExprComplex::RECAppendValues");
    if (own->RBLength() == 0)
        own->RBAdd(static_cast<void *>(nullptr));
    return values.RBAdd(own);
}

CZelBag *CZelExprComplex::RECCompilables() {
    auto *bag = new CZelBag();
    RECAppendCompilables(*bag);
    return bag;
}

void CZelExprComplex::RECAppendCompilables(CZelBag &out) {
    if (m_type == E_RECTSimple) {
        if (m_value != nullptr)
            out.RBAdd(static_cast<void *>(m_value));
        return;
    }
    for (CZelListable *member = m_members->RDLHead(); member != nullptr; member = m_members->RDLGetNext(member))
        if (CZelExprComplex *value = memberValue(member, m_type))
            value->RECAppendCompilables(out);
}

CZelAtom *CZelExprComplex::RECAtomVal() {
    if (m_type != E_RECTSimple) {
        CZelAtom *built = m_type == E_RECTList ? buildList() : buildObject();
        delete m_last;
        m_last = built;
        return built;
    }
    CZelBag *values = m_value != nullptr ? m_value->REBagVal() : nullptr;
    if (values == nullptr)
        return nullptr;
    if (values->RBLength() > 1)
        ZEL_REPORT(E_RCBadState, "Multiple return nested evals not supported");
    auto *first = values->RBLength() > 0 ? static_cast<CZelAtom *>(values->RBFirst()->RPData()) : nullptr;
    delete values;
    return first;
}

CZelAtom *CZelExprComplex::buildList() {
    auto *list = new CZelAtomVector(static_cast<unsigned int>(m_members->RDLLength()));
    for (CZelListable *member = m_members->RDLHead(); member != nullptr; member = m_members->RDLGetNext(member)) {
        const CZelAtom *value = static_cast<CZelExprComplex *>(member)->RECAtomVal();
        list->RAVAddToEnd(value != nullptr ? new CZelAtom(*value) : new CZelAtom());
    }
    return new CZelAtom(list);
}

CZelAtom *CZelExprComplex::buildObject() {
    auto *object = new CZelVBList();
    for (CZelListable *member = m_members->RDLHead(); member != nullptr; member = m_members->RDLGetNext(member)) {
        const auto *pair = static_cast<CZelExprComplexVarBind *>(member);
        const CZelAtom *value = pair->RECVValue() != nullptr ? pair->RECVValue()->RECAtomVal() : nullptr;
        object->RVBLAddToListEnd(new CZelVarBind(pair->RECVName(), value));
    }
    return new CZelAtom(object);
}

void CZelExprComplex::RECDump() {
    CZelBag expressions;
    RECAppendCompilables(expressions);
    for (CZelPointer *node = expressions.RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        static_cast<CZelExpr *>(node->RPData())->REDump();
}
