// A doubly linked list that owns its elements. Their order is that of insertion unless sorted.
#pragma once

#include "foundations/base/CZelListable.h"
#include "foundations/base/CZelPool.h"

// Negative, 0 or positive.
using ZelListCompare = int (*)(CZelListable *, CZelListable *);

class QUINTOR_API CZelDoubleList {
public:
    ZEL_POOLED

    CZelDoubleList() = default;
    CZelDoubleList(const CZelDoubleList &other);             // deep, by RLTargetDeepCopy
    CZelDoubleList &operator=(const CZelDoubleList &other);  // deletes the old elements
    virtual ~CZelDoubleList() { RDLEmptyList(); }

    CZelListable *RDLHead() const { return m_head; }
    CZelListable *RDLTail() const { return m_tail; }
    CZelListable *RDLGetNext(const CZelListable *item) const { return item->m_next; }
    CZelListable *RDLGetPrev(const CZelListable *item) const { return item->m_prev; }
    int RDLLength() const { return m_length; }

    int RDLAddToListEnd(CZelListable *item) {  // takes over; 1, or E_RCBadArgument for null
        return item == nullptr ? refuseNull() : (linkAtEnd(item), 1);
    }
    // Moves all elements of `other` behind the own ones and deletes `other`. The flag is true. 1, or
    // E_RCBadArgument for null and for the list itself.
    int RDLAddToListEnd(CZelDoubleList *other, bool flag);
    int RDLAddToListHead(CZelListable *item);
    // `before` is linked here; null appends.
    int RDLInsertBefore(CZelListable *item, CZelListable *before);

    void RDLDeleteListable(CZelListable *item);   // unlinks and deletes
    void RDLSpliceAndJoinAt(CZelListable *item);  // unlinks only
    // The same for an element that may stand in no list or another: 1, or E_RCNotFound when it is not linked
    // here. Takes as many steps as there are to the nearer end.
    int RDLAttemptToDeleteListable(CZelListable *item);
    int RDLAttemptToDeleteFromList(CZelListable *item);

    // Makes `head` and what follows it the elements; those ahead of it are forgotten, not deleted. With null
    // the list forgets all.
    void RDLSetHead(CZelListable *head);
    void RDLEmptyList() {  // deletes all elements
        if (m_head != nullptr)
            deleteAll();
    }

    // Moves all elements of `other`, which stays, behind the own ones.
    void RDLTakeFrom(CZelDoubleList &other);

    // Sorts in place, stable, n log n.
    void RDLSortList(ZelListCompare compare);

private:
    static int refuseNull();
    void deleteAll();
    void linkAtEnd(CZelListable *item) {
        item->m_prev = m_tail;
        item->m_next = nullptr;
        (m_tail != nullptr ? m_tail->m_next : m_head) = item;
        m_tail = item;
        ++m_length;
    }
    void linkBehind(CZelListable *place, CZelListable *item) {  // place null: at the head
        item->m_prev = place;
        item->m_next = place != nullptr ? place->m_next : m_head;
        (item->m_prev != nullptr ? item->m_prev->m_next : m_head) = item;
        (item->m_next != nullptr ? item->m_next->m_prev : m_tail) = item;
        ++m_length;
    }
    bool isLinkedHere(const CZelListable *item) const;
    void copyFrom(const CZelDoubleList &other);
    void linkBackwards();

    CZelListable *m_head = nullptr;
    CZelListable *m_tail = nullptr;
    int m_length = 0;
};
