// Filling a tree at once: the pairs are ranked by their keys, then the nodes are laid out level by level.
#include <algorithm>

#include "foundations/base/CZelKeyTree.h"
#include "foundations/base/CZelKeyTree_nodes.h"
#include "foundations/base/CZelKeyTree_rank.h"
#include "foundations/port/ZelPrefetch.h"

namespace {

// Sizes of the parts when `count` things are dealt out evenly to the fewest nodes of at most `most`.
class Portions {
public:
    Portions(std::size_t count, std::size_t most) : m_nodes((count + most - 1) / most), m_count(count) {}
    std::size_t end(std::size_t node) const { return (node + 1) * m_count / m_nodes; }
    std::size_t nodes() const { return m_nodes; }

private:
    std::size_t m_nodes;
    std::size_t m_count;
};

}  // namespace

bool CZelKeyTree::RKTLoad(CZelArray<SZelKeyedObject> &pairs, bool isUnique) {
    const Ranking ranking(pairs);
    if (isUnique && ranking.hasTwins())
        return false;
    if (pairs.empty())
        return true;
    m_length = ranking.keys();
    std::vector<Node *> level = makeLeaves(pairs, ranking.ranked());
    for (m_depth = 0; level.size() > 1; ++m_depth)
        level = makeParents(level, m_depth == 0);
    m_root = level.front();
    return true;
}

std::vector<CZelKeyTree::Node *> CZelKeyTree::makeLeaves(CZelArray<SZelKeyedObject> &pairs,
                                                         const CZelArray<Ranked> &ranked) {
    const Portions portions(m_length, Node::MOST);
    std::vector<Node *> leaves;
    leaves.reserve(portions.nodes());
    auto next = ranked.begin();
    for (std::size_t number = 0, key = 0; number < portions.nodes(); key = portions.end(number++)) {
        const auto count = static_cast<unsigned int>(portions.end(number) - key);
        Node *leaf = makeNode(spaceFor(count), sizeof(Node::Print));
        makeBlunt(leaf);
        for (unsigned int i = 0; i < count; ++i)
            next = addToLeaf(leaf, pairs, next, ranked.end());
        if (!leaves.empty())
            linkBehind(leaves.back(), leaf);
        leaves.push_back(leaf);
    }
    return leaves;
}

// The next key behind those that a leaf has; twins go into one entry. Gives the place behind them.
CZelKeyTree::RankedPlace CZelKeyTree::addToLeaf(Node *leaf, CZelArray<SZelKeyedObject> &pairs, RankedPlace next,
                                                RankedPlace end) {
    constexpr std::ptrdiff_t AHEAD = 12;
    if (end - next > AHEAD)
        ZelPrefetch(&pairs[next[AHEAD].place]);
    SZelKeyedObject &pair = pairs[next->place];
    new (leaf->keys() + leaf->count) CZelAtom(std::move(pair.m_key));
    *leaf->mark(leaf->count) = static_cast<char>(next->print);
    CZelBTreeNode &entry = leaf->entry(leaf->count++);
    entry.set(pair.m_object);
    const RankedPlace behind = std::find_if(++next, end, [](const Ranked &one) { return !one.isTwin; });
    if (next != behind)
        entry.setMany(static_cast<unsigned int>(behind - next));
    for (; next != behind; ++next)
        entry.addNew(pairs[next->place].m_object);
    return next;
}

// Each child but the first of all brings the key that parts it from the one before, until a level above takes it.
std::vector<CZelKeyTree::Node *> CZelKeyTree::makeParents(const std::vector<Node *> &children, bool areLeaves) {
    const Portions portions(children.size(), Node::MOST);
    std::vector<Node *> parents;
    for (std::size_t number = 0, child = 0; number < portions.nodes(); ++number) {
        parents.push_back(
            makeNode(spaceFor(static_cast<unsigned int>(portions.end(number) - child)), sizeof(Node::Head)));
        for (; child < portions.end(number); ++child) {
            Loose branch;
            new (&branch.item.key)
                CZelAtom(child > 0 ? lowKey(children[child - 1], children[child], areLeaves) : CZelAtom());
            branch.item.target.child = children[child];
            insertItem(parents.back(), parents.back()->count, branch.item);
        }
    }
    return parents;
}
