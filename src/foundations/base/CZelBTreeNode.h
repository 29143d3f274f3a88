// An entry of an index tree: the objects under one key, one or several.
#pragma once

#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class CZelBag;
class CZelDoubleList;

class QUINTOR_API CZelBTreeNode {
public:
    // E_RBTrue: several objects, by RBTNGetDataList. E_RBFalse: one, by RBTNGetData.
    __boolean RBTNNodeHasList() const { return ZelBool(m_count > 1); }
    void *RBTNGetData() const;  // the only object, or null when there are several

    // The objects as CZelPointer, in the order in which they were added; the tree's, good until it changes.
    // Built on first asking after a change. Null when there is one object.
    CZelDoubleList *RBTNGetDataList();

    // How many objects, and all of them appended to a bag, for either form.
    unsigned int RBTNCount() const { return m_count; }
    void RBTNAppendTo(CZelBag &bag) const;
    bool RBTNHolds(const void *object) const;

protected:
    CZelBTreeNode() = default;
    ~CZelBTreeNode() = default;
    unsigned int m_count = 0;
};
