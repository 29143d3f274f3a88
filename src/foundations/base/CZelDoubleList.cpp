#include "foundations/base/CZelDoubleList.h"

#include "foundations/port/ZelCodes.h"

CZelDoubleList::CZelDoubleList(const CZelDoubleList &other) {
    copyFrom(other);
}

CZelDoubleList &CZelDoubleList::operator=(const CZelDoubleList &other) {
    if (this != &other) {
        RDLEmptyList();
        copyFrom(other);
    }
    return *this;
}

void CZelDoubleList::copyFrom(const CZelDoubleList &other) {
    for (const CZelListable *item = other.m_head; item != nullptr; item = item->m_next)
        linkAtEnd(item->RLTargetDeepCopy(item));
}

int CZelDoubleList::refuseNull() {
    return E_RCBadArgument;
}

int CZelDoubleList::RDLAddToListEnd(CZelDoubleList *other, bool) {
    if (other == nullptr || other == this)
        return E_RCBadArgument;
    RDLTakeFrom(*other);
    delete other;
    return E_RCOk;
}

void CZelDoubleList::RDLTakeFrom(CZelDoubleList &other) {
    if (other.m_head == nullptr || &other == this)
        return;
    (m_tail != nullptr ? m_tail->m_next : m_head) = other.m_head;
    other.m_head->m_prev = m_tail;
    m_tail = other.m_tail;
    m_length += other.m_length;
    other.RDLSetHead(nullptr);
}

int CZelDoubleList::RDLAddToListHead(CZelListable *item) {
    if (item == nullptr)
        return refuseNull();
    linkBehind(nullptr, item);
    return E_RCOk;
}

int CZelDoubleList::RDLInsertBefore(CZelListable *item, CZelListable *before) {
    if (item == nullptr)
        return refuseNull();
    linkBehind(before != nullptr ? before->m_prev : m_tail, item);
    return E_RCOk;
}

void CZelDoubleList::RDLDeleteListable(CZelListable *item) {
    RDLSpliceAndJoinAt(item);
    delete item;
}

void CZelDoubleList::RDLSpliceAndJoinAt(CZelListable *item) {
    (item->m_prev != nullptr ? item->m_prev->m_next : m_head) = item->m_next;
    (item->m_next != nullptr ? item->m_next->m_prev : m_tail) = item->m_prev;
    item->m_next = nullptr;
    item->m_prev = nullptr;
    --m_length;
}

int CZelDoubleList::RDLAttemptToDeleteListable(CZelListable *item) {
    int status = RDLAttemptToDeleteFromList(item);
    if (status == E_RCOk)
        delete item;
    return status;
}

int CZelDoubleList::RDLAttemptToDeleteFromList(CZelListable *item) {
    if (item == nullptr || !isLinkedHere(item))
        return E_RCNotFound;
    RDLSpliceAndJoinAt(item);
    return E_RCOk;
}

// An element does not know its list: only the ends tell.
bool CZelDoubleList::isLinkedHere(const CZelListable *item) const {
    const CZelListable *back = item;
    const CZelListable *ahead = item;
    while (back->m_prev != nullptr && ahead->m_next != nullptr) {
        back = back->m_prev;
        ahead = ahead->m_next;
    }
    return back->m_prev == nullptr ? back == m_head : ahead == m_tail;
}

void CZelDoubleList::RDLSetHead(CZelListable *head) {
    m_head = head;
    linkBackwards();
}

// The elements' destructors find the list empty.
void CZelDoubleList::deleteAll() {
    CZelListable *item = m_head;
    m_head = m_tail = nullptr;
    m_length = 0;
    while (item != nullptr) {
        CZelListable *next = item->m_next;
        delete item;
        item = next;
    }
}

// Sets everything else from the head and the forward links.
void CZelDoubleList::linkBackwards() {
    m_tail = nullptr;
    m_length = 0;
    for (CZelListable *item = m_head; item != nullptr; item = item->m_next) {
        item->m_prev = m_tail;
        m_tail = item;
        ++m_length;
    }
}
