#include "foundations/base/CZelKeyTree.h"

#include <algorithm>

#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelKeyTree_nodes.h"
#include "foundations/port/ZelPrefetch.h"

namespace {

std::uint64_t loadLittleEndian(const std::uint8_t *bytes) {
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof(word));
    return std::endian::native == std::endian::little ? word : __builtin_bswap64(word);
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

const CZelKeyTree::Node *CZelKeyTree::leafFor(const Wanted &wanted, Way &way) const {
    Node *node = m_root;
    for (unsigned int level = 0; level < m_depth; ++level) {
        way.nodes[level] = node;
        way.indexes[level] = branchFor(node, wanted);
        node = node->child(way.indexes[level]);
        ZelPrefetch(node);
        ZelPrefetch(reinterpret_cast<const char *>(node) + 64);
    }
    way.nodes[m_depth] = node;
    return node;
}

// The last item whose key is not greater. Keys are looked at only where heads don't tell them apart.
unsigned int CZelKeyTree::branchFor(const Node *node, const Wanted &wanted) {
    const Node::Head *heads = node->heads() + 1;
    const Node::Head head = wanted.head();
    const unsigned int count = node->count - 1U;
    const unsigned int less = countBefore(heads, count, [head](Node::Head other) { return other < head; });
    if (less == count || heads[less] != head)
        return less;
    const unsigned int alike =
        countBefore(heads + less, count - less, [head](Node::Head other) { return other == head; });
    return less + countBefore(node->keys() + 1 + less, alike,
                              [&wanted](const CZelAtom &key) { return wanted.compare(key) >= 0; });
}

bool CZelKeyTree::find(const Wanted &wanted, Way &way) const {
    const Node *leaf = leafFor(wanted, way);
    if (m_depth > 0)
        askForTargets(leaf);
    way.indexes[m_depth] = placeOf(leaf, wanted);
    return way.indexes[m_depth] < leaf->count;
}

// For the hints and targets. Requires: the leaf has the capacity of those below other nodes, as its own word for that
// has not arrived yet.
void CZelKeyTree::askForTargets(const Node *leaf) {
    const char *targets = reinterpret_cast<const char *>(leaf) + Node::OffsetFor(Node::MOST, sizeof(Node::Print));
    ZelPrefetchLines(leaf->prints() + Node::MOST, targets + Node::MOST * sizeof(Target));
}

unsigned int CZelKeyTree::placeOf(const Node *leaf, const Wanted &wanted) {
    return placeOf(leaf, wanted, printOf(wanted.key()), 0);
}

unsigned int CZelKeyTree::placeOf(const Node *leaf, const Wanted &wanted, std::uint8_t print, unsigned int from) {
    unsigned int index = placeOfPrint(leaf, print, from);
    for (; index < leaf->count; index = placeOfPrint(leaf, print, index + 1)) {
        if (!wanted.mayHave(leaf->hints()[index], leaf->scale))
            continue;
        leaf->entry(index).RBTNPrefetch();
        if (wanted.isEqual(leaf->keys()[index]))
            break;
    }
    return index;
}

// Eight prints at a time: a word has a zero byte where one of them is the key's. Above the lowest zero byte the trick
// with the borrow may see one that is none; see "Hacker's Delight" (Warren), chapter 6.
unsigned int CZelKeyTree::placeOfPrint(const Node *leaf, std::uint8_t print, unsigned int from) {
    constexpr std::uint64_t ONES = 0x0101010101010101U;
    constexpr std::uint64_t HIGHS = 0x8080808080808080U;
    for (unsigned int base = from - from % Node::PRINTS_AT_ONCE; base < leaf->count; base += Node::PRINTS_AT_ONCE) {
        const std::uint64_t word = loadLittleEndian(leaf->prints() + base) ^ ONES * print;
        for (std::uint64_t zeros = (word - ONES) & ~word & HIGHS; zeros != 0; zeros &= zeros - 1) {
            const unsigned int index = base + static_cast<unsigned int>(std::countr_zero(zeros)) / 8;
            if (index >= from && index < leaf->count && leaf->prints()[index] == print) [[likely]]
                return index;
        }
    }
    return leaf->count;
}

CZelBTreeNode *CZelKeyTree::RKTFind(const CZelAtom &key) const {
    if (m_root == nullptr)
        return nullptr;
    if (m_depth == 0 && key.RAIsInterned()) {
        bool isDecided = false;
        CZelBTreeNode *entry = findByAddress(m_root, key, &isDecided);
        if (isDecided)
            return entry;
    }
    Way way;
    if (!find(Wanted(key), way))
        return nullptr;
    return &way.nodes[m_depth]->entry(way.indexes[m_depth]);
}

// In a small dictionary of names a look at the addresses takes less time than any comparison. Where all names are
// interned it also decides that one is not there.
CZelBTreeNode *CZelKeyTree::findByAddress(const Node *node, const CZelAtom &name, bool *isDecided) {
    constexpr unsigned int SMALL = 32;
    const char *text = name.RAString();
    const CZelAtom *keys = node->keys();
    bool areInterned = node->count <= SMALL;
    for (unsigned int i = 0; node->count <= SMALL && i < node->count; ++i) {
        const bool isInterned = keys[i].RAIsInterned();
        if (isInterned && keys[i].RAString() == text) {
            *isDecided = true;
            return &node->entry(i);
        }
        areInterned = areInterned && isInterned;
    }
    *isDecided = areInterned;
    return nullptr;
}

template <class Before>
CZelKeyTree::Place CZelKeyTree::firstNot(Before before) const {
    const Node *node = m_root;
    if (node == nullptr)
        return RKTEnd();
    for (unsigned int level = 0; level < m_depth; ++level)
        node = node->child(countBefore(node->keys() + 1, node->count - 1U, before));
    unsigned int index = countBefore(node->keys(), node->count, before);
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

std::size_t CZelKeyTree::RKTCount(Place from, Place to, std::size_t enough) {
    std::size_t count = 0;
    for (; from != to && count < enough; from.next())
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
