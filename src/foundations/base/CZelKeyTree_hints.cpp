// Hints: where a new key belongs in its leaf, mostly without a look at any other key. They are made anew, on a scale
// that fits the leaf, when it is about to split and many of its keys share theirs; the halves, and leaves that give to
// each other, keep the scale.
//
// Keys between two texts that begin alike begin as these do. So what the scale of a leaf leaves out is sure to stand in
// a new key as long as both keys beside the leaf in its parent share it, and in a key from a neighbour when it stands
// in that key and in one of the leaf; otherwise the leaf first gets another scale.
#include "foundations/base/CZelKeyTree.h"
#include "foundations/base/CZelKeyTree_nodes.h"

namespace {

std::size_t commonBytes(const CZelAtom &left, const CZelAtom &right) {
    if (left.RAType() != E_RDTText || right.RAType() != E_RDTText)
        return 0;
    const std::string_view low = left.RATextView();
    const std::string_view high = right.RATextView();
    const std::size_t most = std::min(low.size(), high.size());
    std::size_t common = 0;
    while (common < most && low[common] == high[common])
        ++common;
    return common;
}

}  // namespace

std::uint16_t CZelKeyTree::hintOf(const Scale &scale, const CZelAtom &key) {
    return scale.skipped == 0 ? scale.hintOf(headOf(key)) : hintOfText(scale, key.RATextView());
}

// With how many bytes every key begins that belongs into the leaf at the end of the way.
std::size_t CZelKeyTree::sharedBytes(const Way &way) const {
    const CZelAtom *low = nullptr;
    const CZelAtom *high = nullptr;
    for (unsigned int level = m_depth; level > 0 && (low == nullptr || high == nullptr); --level) {
        const Node *node = way.nodes[level - 1];
        const unsigned int own = way.indexes[level - 1];
        if (low == nullptr && own > 0)
            low = &node->keys()[own];
        if (high == nullptr && own + 1U < node->count)
            high = &node->keys()[own + 1];
    }
    return low != nullptr && high != nullptr ? commonBytes(*low, *high) : 0;
}

// Makes sure that a key may come to this leaf from a neighbour: that of an item of the leaf tells.
void CZelKeyTree::admit(Node *leaf, unsigned int neighbour, const CZelAtom &key) {
    if (leaf->scale.skipped == 0)
        return;
    const std::size_t common = commonBytes(leaf->keys()[neighbour], key);
    if (leaf->scale.skipped > common)
        rescale(leaf, common);
}

// Before the leaf at the end of the way splits.
void CZelKeyTree::sharpen(const Way &way) {
    Node *leaf = way.nodes[m_depth];
    if (isBlunt(leaf))
        rescale(leaf, std::min<std::size_t>(sharedBytes(way), UINT8_MAX));
}

// Do many of its keys share a hint?
bool CZelKeyTree::isBlunt(const Node *leaf) {
    unsigned int shared = 0;
    for (unsigned int i = 1; i < leaf->count; ++i)
        shared += leaf->hints()[i] == leaf->hints()[i - 1] ? 1 : 0;
    return shared > leaf->count / 8U;
}

// Spreads the keys over more than half of the hints. What is left is for keys that are to come, on both sides.
void CZelKeyTree::rescale(Node *leaf, std::size_t skipped) {
    for (unsigned int i = 0; i < leaf->count; ++i)
        leaf->keys()[i].RAPrefetch();
    const auto headOfItem = [leaf, skipped](unsigned int index) {
        const CZelAtom &key = leaf->keys()[index];
        return skipped == 0 ? headOf(key) : headOfText(key.RATextView().substr(skipped));
    };
    constexpr int BITS = 16;
    const std::uint64_t least = headOfItem(0);
    const std::uint64_t range = headOfItem(leaf->count - 1U) - least;
    int shift = std::max(0, static_cast<int>(std::bit_width(range)) - BITS);
    if (range >> shift > UINT16_MAX / 4 * 3)
        ++shift;
    const std::uint64_t room = ((UINT16_MAX - (range >> shift)) / 2) << shift;
    leaf->scale = {least > room ? least - room : 0, static_cast<std::uint8_t>(shift),
                   static_cast<std::uint8_t>(skipped)};
    for (unsigned int i = 0; i < leaf->count; ++i)
        leaf->hints()[i] = leaf->scale.hintOf(headOfItem(i));
}

// For a leaf that is still to be filled: all of its keys will have the least hint, which nobody has to work out.
void CZelKeyTree::makeBlunt(Node *leaf) {
    leaf->scale.base = UINT64_MAX;
    std::fill_n(leaf->hints(), leaf->capacity, Node::Hint{0});
}
