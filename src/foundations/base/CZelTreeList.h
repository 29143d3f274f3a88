// A map from atom key to CZelPointer, ordered by RALex: the dictionaries of databases, tables, columns.
//
// Additions, removals and look-ups are logarithmic. The list of nodes in key order is linked as keys come
// and go, so reading it changes nothing and any number of readers may walk it.
#pragma once

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelKeyTree.h"
#include "foundations/base/CZelPointer.h"

class CZelAtomVector;

class QUINTOR_API CZelTreeList {
public:
    explicit CZelTreeList(__boolean flag);  // E_RBFalse everywhere
    CZelTreeList(const CZelTreeList &) = delete;
    CZelTreeList &operator=(const CZelTreeList &) = delete;

    // Adds; 1, E_RCDuplicate when the key is there, or E_RCBadArgument for a null key or node. After a failure
    // nothing has changed and a ready node stays the caller's. The key is copied. The flag is true.
    int RTLAdd(const CZelAtom *key, void *data, bool flag);
    int RTLAdd(const CZelAtom *key, CZelPointer *node, bool flag);
    int RTLAdd(const char *key, void *data);
    int RTLAdd(int key, CZelPointer *node);

    CZelPointer *RTLGet(const CZelAtom *key) const;
    CZelPointer *RTLGet(const char *key) const;
    CZelPointer *RTLGet(int key) const;

    // The data under a key, or null.
    void *RTLData(const CZelAtom *key) const;
    void *RTLData(const char *key) const;

    int RTLDelete(const CZelAtom *key);  // removes key and node, not the data; 1 or E_RCNotInTree

    // The nodes themselves, in key order; the tree's, changed by nobody else.
    CZelDoubleList *RTLIterator() const { return const_cast<CZelDoubleList *>(&m_nodes); }
    CZelAtomVector *RTLGetKeys() const;  // new, key copies
    int RTLLength() const { return m_nodes.RDLLength(); }
    void RTLEmptyTree();

private:
    CZelKeyTree m_tree;  // key -> the node
    CZelDoubleList m_nodes;
};
