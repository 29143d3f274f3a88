#include "foundations/base/CZelBag.h"

#include "foundations/port/ZelCodes.h"

CZelBag::CZelBag(const CZelBag &other) {
    RBAppend(&other);
}

int CZelBag::RBAdd(CZelBag *other) {
    if (other == nullptr || other == this)
        return E_RCBadArgument;
    m_list.RDLTakeFrom(other->m_list);
    delete other;
    return E_RCOk;
}

int CZelBag::RBAppend(const CZelBag *other) {
    return other == nullptr ? E_RCOk : RBAppend(&other->m_list);
}

int CZelBag::RBAppend(const CZelDoubleList *pointers) {
    if (pointers == nullptr)
        return E_RCOk;
    // The list may be this bag's own: then what is appended must not be walked.
    int left = pointers->RDLLength();
    const CZelListable *item = pointers->RDLHead();
    for (; left > 0; --left, item = pointers->RDLGetNext(item))
        RBAdd(static_cast<const CZelPointer *>(item)->RPData());
    return E_RCOk;
}
