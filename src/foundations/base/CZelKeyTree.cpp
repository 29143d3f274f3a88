#include "foundations/base/CZelKeyTree.h"

#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelKeyTree_nodes.h"

namespace {

// How many of the sorted items have a key that is `before`. No branch depends on a comparison.
template <class Item, class Before>
unsigned int countBefore(const Item *items, unsigned int count, Before before) {
    const Item *from = items;
    while (count > 0) {
        unsigned int half = (count + 1) / 2;
        from += before(from[half - 1].key) ? half : 0;
        count -= half;
    }
    return static_cast<unsigned int>(from - items);
}

// The types in their order, all numbers as one.
int rankOf(const CZelAtom &key) {
    switch (key.RAType()) {
        case E_RDTInt:
        case E_RDTLong:
        case E_RDTLong64:
        case E_RDTFloat:
            return 1;
        case E_RDTText:
            return 2;
        case E_RDTData:
            return 3;
        case E_RDTList:
            return 4;
        case E_RDTObject:
            return 5;
        default:
            return 0;
    }
}

}  // namespace

bool CZelKeyTree::descend(const Wanted &wanted, Way &way) const {
    auto notGreater = [&wanted](const CZelAtom &key) { return wanted.compare(key) >= 0; };
    auto less = [&wanted](const CZelAtom &key) { return wanted.compare(key) > 0; };
    Node *node = m_root;
    for (unsigned int level = 0; level < m_depth; ++level) {
        way.nodes[level] = node;
        way.indexes[level] = countBefore(node->items() + 1, node->count - 1U, notGreater);
        node = node->items()[way.indexes[level]].child;
    }
    unsigned int index = countBefore(node->items(), node->count, less);
    way.nodes[m_depth] = node;
    way.indexes[m_depth] = index;
    return index < node->count && wanted.compare(node->items()[index].key) == 0;
}

CZelBTreeNode *CZelKeyTree::RKTFind(const CZelAtom &key) const {
    if (m_root == nullptr)
        return nullptr;
    if (m_depth == 0 && key.RAIsInterned()) {
        const Item *item = findByAddress(m_root, key);
        if (item != nullptr)
            return const_cast<CZelBTreeNode *>(&item->entry);
    }
    Way way;
    if (!descend(Wanted(key), way))
        return nullptr;
    return &way.nodes[m_depth]->items()[way.indexes[m_depth]].entry;
}

// In a small dictionary of names a look at the addresses takes less time than any comparison. Not finding the
// name means nothing: it may have been added from a text that was not interned.
const CZelKeyTree::Item *CZelKeyTree::findByAddress(const Node *node, const CZelAtom &name) {
    constexpr unsigned int SMALL = 32;
    const char *text = name.RAString();
    const Item *items = node->items();
    for (unsigned int i = 0; node->count <= SMALL && i < node->count; ++i) {
        if (items[i].key.RAIsInterned() && items[i].key.RAString() == text)
            return items + i;
    }
    return nullptr;
}

template <class Before>
CZelKeyTree::Place CZelKeyTree::firstNot(Before before) const {
    const Node *node = m_root;
    if (node == nullptr)
        return RKTEnd();
    for (unsigned int level = 0; level < m_depth; ++level)
        node = node->items()[countBefore(node->items() + 1, node->count - 1U, before)].child;
    unsigned int index = countBefore(node->items(), node->count, before);
    return index < node->count ? Place(node, index) : Place(node->next, 0);
}

CZelKeyTree::Place CZelKeyTree::RKTFirst() const {
    return firstNot([](const CZelAtom &) { return false; });
}

CZelKeyTree::Place CZelKeyTree::RKTFrom(const CZelAtom &key) const {
    return firstNot([wanted = Wanted(key)](const CZelAtom &other) { return wanted.compare(other) > 0; });
}

CZelKeyTree::Place CZelKeyTree::RKTBehind(const CZelAtom &key) const {
    return firstNot([wanted = Wanted(key)](const CZelAtom &other) { return wanted.compare(other) >= 0; });
}

CZelKeyTree::Place CZelKeyTree::RKTStartOfType(const CZelAtom &key) const {
    return firstNot([rank = rankOf(key)](const CZelAtom &other) { return rankOf(other) < rank; });
}

CZelKeyTree::Place CZelKeyTree::RKTEndOfType(const CZelAtom &key) const {
    return firstNot([rank = rankOf(key)](const CZelAtom &other) { return rankOf(other) <= rank; });
}

void CZelKeyTree::RKTAppend(Place from, Place to, CZelBag &bag) {
    for (; from != to; from.next())
        from.entry().RBTNAppendTo(bag);
}

std::size_t CZelKeyTree::RKTCount(Place from, Place to) {
    std::size_t count = 0;
    for (; from != to; from.next())
        count += from.entry().RBTNCount();
    return count;
}

void CZelKeyTree::RKTEmpty() {
    if (m_root != nullptr)
        freeNode(m_root, m_depth);
    m_root = nullptr;
    m_depth = 0;
    m_length = 0;
}
