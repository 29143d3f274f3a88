// An entry of an index tree: the objects under one key, one or several.
//
// One word: the only object, or a set of objects, marked by the lowest bit. (An object with an odd address has a
// set for itself.) The entry lies in the tree and is good until the tree changes.
//
// Threads: several readers may call everything public while nobody changes the tree.
#pragma once

#include <cstdint>

#include "foundations/base/CZelBag.h"
#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"
#include "foundations/port/ZelPrefetch.h"

class CZelDoubleList;
class CZelObjectSet;

class QUINTOR_API CZelBTreeNode {
public:
    // E_RBTrue: several objects, by RBTNGetDataList. E_RBFalse: one, by RBTNGetData.
    __boolean RBTNNodeHasList() const { return ZelBool(RBTNCount() > 1); }

    // The only object, or null when there are several.
    void *RBTNGetData() const { return hasSet() ? onlyOfSet() : object(); }

    // The objects as CZelPointer, in the order in which they were added; the tree's, good until it changes.
    // Made when first asked for after a change. Null when there is one object.
    CZelDoubleList *RBTNGetDataList() const;

    // For either form: how many objects, the oldest, all of them appended to a bag, is one among them.
    unsigned int RBTNCount() const { return hasSet() ? countOfSet() : 1; }
    void *RBTNOldest() const { return hasSet() ? oldestOfSet() : object(); }
    void RBTNAppendTo(CZelBag &bag) const {
        if (hasSet())
            appendSetTo(bag);
        else
            bag.RBAdd(object());
    }
    bool RBTNHolds(const void *object) const;

    // Asks the memory for the object (or the set), which the caller will need next.
    void RBTNPrefetch() const { ZelPrefetch(reinterpret_cast<const void *>(m_word & ~SET)); }

private:
    friend class CZelBPlusTree;
    friend class CZelHashList;
    friend class CZelKeyTree;
    friend class CZelTreeList;

    enum class Removal { ABSENT, LEFT_SOME, LEFT_NONE };

    // The tables that hold entries move them as plain bytes and call `release` for the last time.
    void set(void *object);        // the first object
    void setMany(unsigned count);  // makes ready for so many more, all different, which addNew then brings
    void addNew(void *object);
    bool add(void *object);  // false when it is there
    void prefetchForAdd(const void *object) const;
    Removal remove(void *object);  // LEFT_NONE: what was the only object is gone, nothing is to be released
    void release();

    bool hasSet() const { return (m_word & SET) != 0; }
    void *object() const { return reinterpret_cast<void *>(m_word); }
    CZelObjectSet *objects() const { return reinterpret_cast<CZelObjectSet *>(m_word & ~SET); }
    void *onlyOfSet() const;
    void *oldestOfSet() const;
    unsigned int countOfSet() const;
    void appendSetTo(CZelBag &bag) const;
    void makeSet(void *object, unsigned capacity);

    static constexpr std::uintptr_t SET = 1;
    std::uintptr_t m_word;
};
