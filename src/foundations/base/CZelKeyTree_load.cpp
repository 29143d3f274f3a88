// Filling a tree at once. The pairs are sorted by the heads of their keys, digit by digit, and within one head by
// comparing; then the nodes are laid out level by level.
#include <algorithm>
#include <array>

#include "foundations/base/CZelKeyTree.h"
#include "foundations/base/CZelKeyTree_nodes.h"

struct CZelKeyTree::Ranked {
    std::uint64_t head;
    std::uint32_t place;  // among the pairs
    bool isTwin = false;  // has the key of the one before
};

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

bool CZelKeyTree::RKTLoad(std::vector<SZelKeyedObject> &pairs, bool isUnique) {
    const std::vector<Ranked> ranked = rank(pairs);
    const bool hasTwins = std::any_of(ranked.begin(), ranked.end(), [&](const Ranked &one) {
        return one.isTwin && !pairs[one.place].m_key.RAIsUndefined();
    });
    if (isUnique && hasTwins)
        return false;
    if (pairs.empty())
        return true;
    std::vector<Node *> level = makeLeaves(pairs, ranked);
    for (m_depth = 0; level.size() > 1; ++m_depth)
        level = makeParents(level, m_depth == 0);
    m_root = level.front();
    return true;
}

std::vector<CZelKeyTree::Ranked> CZelKeyTree::rank(const std::vector<SZelKeyedObject> &pairs) {
    std::vector<Ranked> ranked;
    ranked.reserve(pairs.size());
    for (const SZelKeyedObject &pair : pairs)
        ranked.push_back({headOf(pair.m_key), static_cast<std::uint32_t>(ranked.size())});
    sortByHead(ranked);
    settleTies(ranked, pairs);
    return ranked;
}

// Least digit first, and each pass keeps the order of what is equal; a digit that is the same in all needs no pass.
void CZelKeyTree::sortByHead(std::vector<Ranked> &ranked) {
    std::vector<Ranked> sorted(ranked.size());
    for (unsigned int shift = 0; shift < 64; shift += 8) {
        std::array<std::size_t, 257> begins{};
        for (const Ranked &one : ranked)
            ++begins[(one.head >> shift & 0xFFU) + 1];
        if (std::find(begins.begin(), begins.end(), ranked.size()) != begins.end())
            continue;
        for (std::size_t digit = 1; digit < begins.size(); ++digit)
            begins[digit] += begins[digit - 1];
        for (const Ranked &one : ranked)
            sorted[begins[one.head >> shift & 0xFFU]++] = one;
        ranked.swap(sorted);
    }
}

void CZelKeyTree::settleTies(std::vector<Ranked> &ranked, const std::vector<SZelKeyedObject> &pairs) {
    const auto order = [&pairs](const Ranked &left, const Ranked &right) {
        return pairs[left.place].m_key.RALex(&pairs[right.place].m_key, nullptr);
    };
    for (auto begin = ranked.begin(), end = begin; begin != ranked.end(); begin = end) {
        end = std::find_if(begin, ranked.end(), [head = begin->head](const Ranked &one) { return one.head != head; });
        const auto isLess = [&order](const Ranked &left, const Ranked &right) { return order(left, right) < 0; };
        if (!std::is_sorted(begin, end, isLess))
            std::stable_sort(begin, end, isLess);
        for (auto one = begin; one != end && one + 1 != end; ++one)
            one[1].isTwin = order(one[0], one[1]) == 0;
    }
}

// Twins go into one entry.
std::vector<CZelKeyTree::Node *> CZelKeyTree::makeLeaves(std::vector<SZelKeyedObject> &pairs,
                                                         const std::vector<Ranked> &ranked) {
    m_length = static_cast<std::size_t>(
        std::count_if(ranked.begin(), ranked.end(), [](const Ranked &one) { return !one.isTwin; }));
    const Portions portions(m_length, Node::MOST);
    std::vector<Node *> leaves;
    auto next = ranked.begin();
    for (std::size_t number = 0, key = 0; number < portions.nodes(); ++number) {
        Node *leaf = makeNode(spaceFor(static_cast<unsigned int>(portions.end(number) - key)), sizeof(Node::Print));
        for (; key < portions.end(number); ++key) {
            Loose loose;
            new (&loose.item.key) CZelAtom(std::move(pairs[next->place].m_key));
            loose.item.entry.set(pairs[next->place].m_object);
            for (++next; next != ranked.end() && next->isTwin; ++next)
                loose.item.entry.add(pairs[next->place].m_object);
            insertItem(leaf, leaf->count, loose.item);
        }
        if (!leaves.empty())
            linkBehind(leaves.back(), leaf);
        leaves.push_back(leaf);
    }
    return leaves;
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
            branch.item.child = children[child];
            insertItem(parents.back(), parents.back()->count, branch.item);
        }
    }
    return parents;
}
