// Many keys looked up side by side.
#include <algorithm>
#include <optional>

#include "foundations/base/CZelKeyTree.h"
#include "foundations/base/CZelKeyTree_nodes.h"
#include "foundations/port/ZelPrefetch.h"

// Descents that keep in step. Each step of one ends with a demand for the memory that its next step reads, which
// arrives while the others make theirs.
class CZelKeyTree::Crowd {
public:
    static constexpr std::size_t MOST = 32;

    Crowd(const CZelAtom *const *keys, std::size_t count, Node *root) : m_count(count) {
        for (std::size_t i = 0; i < count; ++i) {
            m_ways[i].wanted.emplace(*keys[i]);
            m_ways[i].node = root;
        }
    }

    void stepDown() {
        for (std::size_t i = 0; i < m_count; ++i) {
            Descent &way = m_ways[i];
            way.node = way.node->child(branchFor(way.node, *way.wanted));
            ask(way.node, sizeof(Node) + Node::MOST);
        }
    }

    void finish(CZelBTreeNode **entries) {
        for (std::size_t i = 0; i < m_count; ++i)
            findPrint(m_ways[i]);
        for (std::size_t i = 0; i < m_count; ++i)
            askForKey(m_ways[i]);
        for (std::size_t i = 0; i < m_count; ++i)
            entries[i] = findKey(m_ways[i]);
    }

private:
    struct Descent {
        std::optional<Wanted> wanted;
        Node *node;
        Node::Print print;
        unsigned int index;
    };

    // It may begin in one cache line and end in the next.
    static void ask(const void *memory, std::size_t size) {
        ZelPrefetch(memory);
        ZelPrefetch(static_cast<const char *>(memory) + size - 1);
    }

    static void findPrint(Descent &way) {
        way.print = printOf(way.wanted->key());
        way.index = placeOfPrint(way.node, way.print, 0);
        ZelPrefetch(way.node->hints() + way.index);
        ZelPrefetch(way.node->targets() + way.index);
        ZelPrefetch(way.node->keys() + way.index);
    }

    static void askForKey(const Descent &way) {
        if (way.index == way.node->count)
            return;
        way.node->keys()[way.index].RAPrefetch();
        way.node->entry(way.index).RBTNPrefetch();
    }

    static CZelBTreeNode *findKey(const Descent &way) {
        const unsigned int index = placeOf(way.node, *way.wanted, way.print, way.index);
        return index < way.node->count ? &way.node->entry(index) : nullptr;
    }

    Descent m_ways[MOST];
    std::size_t m_count;
};

void CZelKeyTree::RKTFindMany(const CZelAtom *const *keys, std::size_t count, CZelBTreeNode **entries) const {
    if (m_root == nullptr) {
        std::fill_n(entries, count, nullptr);
        return;
    }
    for (std::size_t from = 0; from < count; from += Crowd::MOST) {
        Crowd crowd(keys + from, std::min(Crowd::MOST, count - from), m_root);
        for (unsigned int level = 0; level < m_depth; ++level)
            crowd.stepDown();
        crowd.finish(entries + from);
    }
}
