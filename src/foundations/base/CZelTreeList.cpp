#include "foundations/base/CZelTreeList.h"

#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelKeyTree_nodes.h"
#include "foundations/port/ZelCodes.h"

namespace {

CZelPointer *nodeOf(const CZelBTreeNode *entry) {
    return entry == nullptr ? nullptr : static_cast<CZelPointer *>(entry->RBTNOldest());
}

void *dataOf(const CZelPointer *node) {
    return node == nullptr ? nullptr : node->RPData();
}

}  // namespace

CZelTreeList::CZelTreeList(__boolean) {}

int CZelTreeList::RTLAdd(const CZelAtom *key, void *data, bool flag) {
    CZelPointer *node = new CZelPointer(data);
    int status = RTLAdd(key, node, flag);
    if (status != E_RCOk)
        delete node;
    return status;
}

int CZelTreeList::RTLAdd(const CZelAtom *key, CZelPointer *node, bool) {
    if (CZelAtom::RAIsNull(key) || node == nullptr)
        return E_RCBadArgument;
    bool isNew = false;
    CZelKeyTree::Place place = m_tree.RKTAdd(*key, node, &isNew);
    if (!isNew)
        return E_RCDuplicate;
    place.next();
    return m_nodes.RDLInsertBefore(node, place.isEnd() ? nullptr : nodeOf(&place.entry()));
}

int CZelTreeList::RTLAdd(const char *key, void *data) {
    CZelAtom name(true, key);
    return RTLAdd(&name, data, true);
}

int CZelTreeList::RTLAdd(int key, CZelPointer *node) {
    CZelAtom number(key);
    return RTLAdd(&number, node, true);
}

CZelPointer *CZelTreeList::RTLGet(const CZelAtom *key) const {
    return CZelAtom::RAIsNull(key) ? nullptr : nodeOf(m_tree.RKTFind(*key));
}

CZelPointer *CZelTreeList::RTLGet(const char *key) const {
    CZelAtom name(true, key);
    return RTLGet(&name);
}

CZelPointer *CZelTreeList::RTLGet(int key) const {
    CZelAtom number(key);
    return RTLGet(&number);
}

void *CZelTreeList::RTLData(const CZelAtom *key) const {
    return dataOf(RTLGet(key));
}

void *CZelTreeList::RTLData(const char *key) const {
    return dataOf(RTLGet(key));
}

int CZelTreeList::RTLDelete(const CZelAtom *key) {
    CZelPointer *node = RTLGet(key);
    if (node == nullptr)
        return E_RCNotInTree;
    m_tree.RKTRemove(*key, node);
    m_nodes.RDLDeleteListable(node);
    return E_RCOk;
}

CZelAtomVector *CZelTreeList::RTLGetKeys() const {
    CZelAtomVector *keys = new CZelAtomVector(static_cast<unsigned int>(RTLLength()));
    for (CZelKeyTree::Place place = m_tree.RKTFirst(); !place.isEnd(); place.next())
        keys->RAVAddToEnd(new CZelAtom(place.key()));
    return keys;
}

void CZelTreeList::RTLEmptyTree() {
    m_tree.RKTEmpty();
    m_nodes.RDLEmptyList();
}
