// Additions step by step, so that those to several trees can wait for their memory together.
#include "foundations/base/CZelKeyTree.h"
#include "foundations/base/CZelKeyTree_nodes.h"
#include "foundations/port/ZelPrefetch.h"

void CZelKeyTree::Addition::seek() {
    if (m_tree.m_root == nullptr)
        m_tree.m_root = makeNode(spaceFor(1), sizeof(Node::Print));
    const auto *leaf = reinterpret_cast<const char *>(m_tree.leafFor(m_wanted, m_way));
    ZelPrefetchLines(leaf, leaf + Node::OffsetFor(Node::MOST, sizeof(Node::Print)));
}

void CZelKeyTree::Addition::settle(const void *object) {
    Node *leaf = m_way.nodes[m_tree.m_depth];
    if (leaf->scale.skipped > 0) {
        const std::size_t shared = m_tree.sharedBytes(m_way);
        if (leaf->scale.skipped > shared)
            rescale(leaf, shared);
    }
    unsigned int &index = m_way.indexes[m_tree.m_depth];
    m_isThere = placeIn(leaf, m_wanted, &index);
    if (m_isThere) {
        leaf->entry(index).prefetchForAdd(object);
    } else {
        ZelPrefetchLines(leaf->targets() + index, leaf->targets() + leaf->count);
        ZelPrefetchLines(leaf->keys() + index, leaf->keys() + leaf->count);
    }
}

CZelKeyTree::Place CZelKeyTree::Addition::finish(void *object, bool *isNew) {
    *isNew = !m_isThere;
    if (m_isThere)
        return {m_way.nodes[m_tree.m_depth], m_way.indexes[m_tree.m_depth]};
    ++m_tree.m_length;
    Loose loose;
    new (&loose.item.key) CZelAtom(CZelAtom::RAKey(m_wanted.key()));
    loose.item.target.entry.set(object);
    return m_tree.insert(m_way, loose.item);
}

bool CZelKeyTree::placeIn(const Node *leaf, const Wanted &wanted, unsigned int *index) {
    const Node::Hint hint = wanted.hint(leaf->scale);
    const Node::Hint *hints = leaf->hints();
    const unsigned int less = countBefore(hints, leaf->count, [hint](Node::Hint other) { return other < hint; });
    const unsigned int alike =
        countBefore(hints + less, leaf->count - less, [hint](Node::Hint other) { return other == hint; });
    *index = less + countBefore(leaf->keys() + less, alike,
                                [&wanted](const CZelAtom &key) { return wanted.compare(key) > 0; });
    return *index < less + alike && wanted.compare(leaf->keys()[*index]) == 0;
}

CZelKeyTree::Place CZelKeyTree::RKTAdd(const CZelAtom &key, void *object, bool *isNew) {
    Addition addition(*this, key);
    addition.seek();
    addition.settle(object);
    return addition.finish(object, isNew);
}
