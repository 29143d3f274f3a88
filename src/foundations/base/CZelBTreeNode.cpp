#include "foundations/base/CZelBTreeNode.h"

#include "foundations/base/CZelObjectSet.h"

CZelDoubleList *CZelBTreeNode::RBTNGetDataList() const {
    return RBTNNodeHasList() == E_RBTrue ? objects()->list() : nullptr;
}

bool CZelBTreeNode::RBTNHolds(const void *other) const {
    return hasSet() ? objects()->holds(other) : object() == other;
}

void CZelBTreeNode::set(void *first) {
    m_word = reinterpret_cast<std::uintptr_t>(first);
    if (hasSet())
        makeSet(first, 1);
}

void CZelBTreeNode::setMany(unsigned count) {
    if (!hasSet())
        makeSet(object(), count + 1);
}

void CZelBTreeNode::addNew(void *object) {
    objects()->addNew(object);
}

bool CZelBTreeNode::add(void *more) {
    if (!hasSet()) {
        if (object() == more)
            return false;
        makeSet(object(), 2);
    }
    return objects()->add(more);
}

void CZelBTreeNode::prefetchForAdd(const void *more) const {
    if (hasSet())
        objects()->prefetchPlace(more);
}

CZelBTreeNode::Removal CZelBTreeNode::remove(void *which) {
    if (!hasSet())
        return object() == which ? Removal::LEFT_NONE : Removal::ABSENT;
    if (!objects()->remove(which))
        return Removal::ABSENT;
    if (objects()->length() > 1)
        return Removal::LEFT_SOME;
    bool isEmpty = objects()->length() == 0;
    void *last = oldestOfSet();
    release();
    if (isEmpty)
        return Removal::LEFT_NONE;
    set(last);
    return Removal::LEFT_SOME;
}

void CZelBTreeNode::release() {
    if (hasSet())
        delete objects();
    m_word = 0;
}

void CZelBTreeNode::makeSet(void *object, unsigned capacity) {
    CZelObjectSet *objects = new CZelObjectSet(capacity);
    objects->addNew(object);
    m_word = reinterpret_cast<std::uintptr_t>(objects) | SET;
}

void *CZelBTreeNode::onlyOfSet() const {
    return countOfSet() == 1 ? oldestOfSet() : nullptr;
}

void *CZelBTreeNode::oldestOfSet() const {
    return objects()->first();
}

unsigned int CZelBTreeNode::countOfSet() const {
    return objects()->length();
}

void CZelBTreeNode::appendSetTo(CZelBag &bag) const {
    objects()->appendTo(bag);
}
