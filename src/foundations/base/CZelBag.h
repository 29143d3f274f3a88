// An ordered bag of raw pointers: the type of every query result and of many work lists.
//
// It never owns what its pointers refer to: whoever holds a bag of atoms or records deletes them first.
// Walking is always the same: RBIterator() gives the list, whose elements are CZelPointer.
#pragma once

#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelPointer.h"
#include "foundations/base/CZelPool.h"

class QUINTOR_API CZelBag {
public:
    ZEL_POOLED

    CZelBag() = default;
    CZelBag(const CZelBag &other);  // own nodes, same pointers
    CZelBag &operator=(const CZelBag &) = delete;

    int RBAdd(void *data) { return m_list.RDLAddToListEnd(new CZelPointer(data)); }  // null included; 1
    int RBAdd(CZelPointer *node) { return m_list.RDLAddToListEnd(node); }            // takes over a ready node
    int RBAdd(CZelBag *other);  // moves all elements of `other` in and deletes it; 1, or E_RCBadArgument
    // Append copies of the pointers; null adds nothing. 1.
    int RBAppend(const CZelBag *other);
    int RBAppend(const CZelDoubleList *pointers);
    void RBEmptyBag() { m_list.RDLEmptyList(); }

    int RBLength() const { return m_list.RDLLength(); }
    CZelDoubleList *RBIterator() { return &m_list; }
    const CZelDoubleList *RBIterator() const { return &m_list; }

    // For walks: the first node and the one behind a node, null at the end.
    CZelPointer *RBFirst() const { return static_cast<CZelPointer *>(m_list.RDLHead()); }
    static CZelPointer *RBNext(const CZelPointer *node) { return static_cast<CZelPointer *>(node->m_next); }

    // Removes one node without a search. A walker takes the next node first.
    void RBFastDelete(CZelPointer *node) { m_list.RDLDeleteListable(node); }

private:
    CZelDoubleList m_list;
};

// Owns a bag, and the objects of type T that its pointers refer to, for a scope.
template <class T>
class CZelBagGuard {
public:
    explicit CZelBagGuard(CZelBag *bag) : m_bag(bag) {}
    CZelBagGuard(const CZelBagGuard &) = delete;
    CZelBagGuard &operator=(const CZelBagGuard &) = delete;
    ~CZelBagGuard() {
        if (m_bag == nullptr)
            return;
        for (CZelPointer *node = m_bag->RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
            delete static_cast<T *>(node->RPData());
        delete m_bag;
    }
    CZelBag *get() const { return m_bag; }
    CZelBag *operator->() const { return m_bag; }
    CZelBag *release() {
        CZelBag *bag = m_bag;
        m_bag = nullptr;
        return bag;
    }

private:
    CZelBag *m_bag;
};
