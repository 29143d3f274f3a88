// A doubly linked list that owns its elements. Their order is that of insertion unless sorted.
#pragma once

#include "foundations/base/CZelListable.h"
#include "foundations/base/CZelPool.h"

class QUINTOR_API CZelDoubleList {
public:
    ZEL_POOLED

    CZelDoubleList() = default;
    CZelDoubleList(const CZelDoubleList &other);             // deep, by RLTargetDeepCopy
    CZelDoubleList &operator=(const CZelDoubleList &other);  // deletes the old elements
    virtual ~CZelDoubleList();

    CZelListable *RDLHead() const { return m_head; }
    CZelListable *RDLTail() const { return m_tail; }
    CZelListable *RDLGetNext(const CZelListable *item) const { return item->m_next; }
    CZelListable *RDLGetPrev(const CZelListable *item) const { return item->m_prev; }
    int RDLLength() const { return m_length; }

    int RDLAddToListEnd(CZelListable *item) {  // takes over; 1, or E_RCBadArgument for null
        return item == nullptr ? refuseNull() : (linkBehind(m_tail, item), 1);
    }
    // Moves all elements of `other` behind the own ones and deletes `other`. The flag is true.
    int RDLAddToListEnd(CZelDoubleList *other, bool flag);
    int RDLAddToListHead(CZelListable *item);
    // `before` null appends.
    int RDLInsertBefore(CZelListable *item, CZelListable *before);

    void RDLDeleteListable(CZelListable *item);          // unlinks and deletes
    int RDLAttemptToDeleteListable(CZelListable *item);  // the same; 1, or E_RCNotFound when not linked here
    int RDLAttemptToDeleteFromList(CZelListable *item);  // unlinks only; 1, or E_RCNotFound
    void RDLSpliceAndJoinAt(CZelListable *item);         // unlinks only

    // Replaces the head. With null the list forgets its elements without deleting them.
    void RDLSetHead(CZelListable *head);
    void RDLEmptyList();  // deletes all elements

    // Sorts in place, stable, n log n.
    void RDLSortList(int (*compare)(CZelListable *, CZelListable *));

private:
    static int refuseNull();
    void linkBehind(CZelListable *place, CZelListable *item) {  // place null: at the head
        item->m_prev = place;
        item->m_next = place != nullptr ? place->m_next : m_head;
        (item->m_prev != nullptr ? item->m_prev->m_next : m_head) = item;
        (item->m_next != nullptr ? item->m_next->m_prev : m_tail) = item;
        ++m_length;
    }
    bool isLinkedHere(const CZelListable *item) const;

    CZelListable *m_head = nullptr;
    CZelListable *m_tail = nullptr;
    int m_length = 0;
};
