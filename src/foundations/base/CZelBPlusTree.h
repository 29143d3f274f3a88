// The index tree of a table column: from value to objects, which it does not own.
//
// A unique tree holds one object per key, a degenerate one any number. A null key (null pointer or an
// undefined atom) means no value in that column and takes any number of objects in a tree of either kind.
// The tree is a set of (key, object): adding a pair that is there changes nothing. Keys are compared as
// RALex orders them and copied once per distinct key. Everything is found and removed by descent, an object
// under a crowded key without a walk.
//
// Threads: no lock; several readers may query while nobody changes.
#pragma once

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBTreeNode.h"

class CZelAtomVector;
class CZelBag;

class QUINTOR_API CZelBPlusTree {
public:
    explicit CZelBPlusTree(bool degenerate);
    CZelBPlusTree(const CZelBPlusTree &) = delete;
    CZelBPlusTree &operator=(const CZelBPlusTree &) = delete;
    ~CZelBPlusTree();

    // 1, or E_RCKeyExists when a unique tree has another object under this non-null key. `flag` has no effect.
    int RBPTAddObjectToTree(const CZelAtom *key, void *object, bool flag);

    // Removes exactly this object under this key; 1 or E_RCNotInTree.
    int RBPTLiteralDeleteObjectInTree(const CZelAtom *key, void *object);

    CZelBTreeNode *RBPTGetNodeForKey(const CZelAtom *key) const;  // null when the key is absent

    // A new bag of the objects whose key stands in relation `op` to `key`, in key order and, under one key,
    // in the order in which they were added; null when nothing matches. `= null` gives the objects under the
    // null key, `<> value` includes them (first), ranges never do. Only the six relational operators.
    CZelBag *RBPTComputeQueryOp(const CZelAtom *key, EZelOper op) const;

    CZelAtomVector *RBPTTreeKeysToAtomVector() const;  // new, in order; the null key is an undefined atom
    __boolean RBPTIsDegenerate() const { return ZelBool(m_degenerate); }
    __boolean RBPTIsEmpty() const;

private:
    struct Impl;
    bool m_degenerate;
    Impl *m_impl;
};
