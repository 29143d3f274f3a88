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

#include <atomic>
#include <climits>
#include <vector>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBTreeNode.h"
#include "foundations/base/CZelKeyTree.h"

class CZelAtomVector;
class CZelBag;

class QUINTOR_API CZelBPlusTree {
public:
    // Who fills a tree when it is first asked for anything.
    class QUINTOR_API Filler {
    public:
        virtual ~Filler();
        virtual void fill(const CZelBPlusTree &tree) = 0;    // loads it; several readers may call it at a time
        virtual void forget(const CZelBPlusTree &tree) = 0;  // it needs not be filled any more
    };

    explicit CZelBPlusTree(bool degenerate);
    CZelBPlusTree(const CZelBPlusTree &) = delete;
    CZelBPlusTree &operator=(const CZelBPlusTree &) = delete;
    ~CZelBPlusTree() { RBPTEmpty(); }

    // From here on the tree holds what the filler, which outlives it, will load into it: whatever is asked, found or
    // changed, it is filled first. Requires: it is empty and degenerate.
    void RBPTLeaveTo(Filler &filler) { m_filler.store(&filler, std::memory_order_release); }
    bool RBPTIsLeft() const { return m_filler.load(std::memory_order_acquire) != nullptr; }

    // 1, or E_RCKeyExists when a unique tree has another object under this non-null key. `flag` has no effect.
    int RBPTAddObjectToTree(const CZelAtom *key, void *object, bool flag);

    // Adds an object to several trees, in their order, as if one by one but in less time: the additions wait for memory
    // together. Stops at the first that is refused; *added counts those before it. 1 or E_RCKeyExists.
    struct SAddition {
        CZelBPlusTree *m_tree;
        const CZelAtom *m_key;
    };
    static int RBPTAddToEach(const SAddition *additions, std::size_t count, void *object, std::size_t *added);

    // Fills an empty tree with pairs of different objects, as if they were added one by one; takes their keys.
    // E_RCKeyExists: two of them can't both stand in this tree, which stays empty.
    int RBPTLoad(CZelArray<SZelKeyedObject> &pairs);
    void RBPTEmpty();

    // Removes exactly this object under this key; 1 or E_RCNotInTree.
    int RBPTLiteralDeleteObjectInTree(const CZelAtom *key, void *object);

    // The tree's, good until it changes; null when the key is absent.
    CZelBTreeNode *RBPTGetNodeForKey(const CZelAtom *key) const;
    // The same for many keys, any of them null, in less time than one by one.
    void RBPTGetNodesForKeys(const CZelAtom *const *keys, std::size_t count, CZelBTreeNode **entries) const;

    // A new bag of the objects whose key stands in relation `op` to `key`, in key order and, under one key,
    // in the order in which they were added; null when nothing matches. `= null` gives the objects under the
    // null key, `<> value` includes them (first), ranges never do. A range holds only keys of the value's type,
    // all numbers being of one type. Only the six relational operators.
    CZelBag *RBPTComputeQueryOp(const CZelAtom *key, EZelOper op) const;

    // The same without a bag of its own, or by number alone. RBPTCountQuery builds nothing and takes no time for
    // `=` and `<>`; for a range it walks the result until it has counted `enough`.
    int RBPTAppendQuery(const CZelAtom *key, EZelOper op, CZelBag &bag) const;  // gives how many were appended
    int RBPTCountQuery(const CZelAtom *key, EZelOper op, int enough = INT_MAX) const;

    // Would the query give all objects? Takes no time.
    bool RBPTIsWhole(const CZelAtom *key, EZelOper op) const;

    // Appends the objects whose key lies between two bounds, each inclusive or not, in key order. Bounds that are
    // null or can't be ordered against each other hold nothing between them. Gives how many were appended.
    int RBPTAppendBetween(const CZelAtom &low, bool withLow, const CZelAtom &high, bool withHigh, CZelBag &bag) const;

    // The oldest object under a key, in a unique tree the only one under a non-null key; null when absent.
    void *RBPTFindSingle(const CZelAtom *key) const;
    bool RBPTHasKey(const CZelAtom *key) const { return RBPTGetNodeForKey(key) != nullptr; }

    CZelAtomVector *RBPTTreeKeysToAtomVector() const;  // new, in order; the null key is an undefined atom
    __boolean RBPTIsDegenerate() const { return ZelBool(m_degenerate); }
    __boolean RBPTIsEmpty() const { return ZelBool(RBPTLength() == 0); }
    int RBPTLength() const {  // in objects
        beFilled();
        return m_length;
    }

private:
    struct Stretch;
    struct Answer;
    static constexpr std::size_t TOGETHER = 4;
    static int addTogether(const SAddition *additions, std::size_t count, void *object, std::size_t *added);
    static bool isAmong(const SAddition *additions, std::size_t count, const CZelBPlusTree *tree);
    bool finish(CZelKeyTree::Addition &addition, const CZelAtom *key, void *object);
    Stretch range(const CZelAtom &key, EZelOper op) const;
    Answer answer(const CZelAtom *key, EZelOper op) const;

    void beFilled() const {
        if (Filler *filler = m_filler.load(std::memory_order_acquire)) [[unlikely]]
            filler->fill(*this);
    }
    const CZelKeyTree &tree() const {
        beFilled();
        return m_tree;
    }

    bool m_degenerate;
    int m_length = 0;
    std::atomic<Filler *> m_filler = nullptr;  // until the tree is filled
    CZelKeyTree m_tree;
};
