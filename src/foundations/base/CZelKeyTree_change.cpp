// Adding to and removing from a key tree. A full leaf evens itself out with a neighbour that has room. Otherwise a
// full node splits: in the middle, or at its end when it is the last leaf and the new key comes behind all others, so
// that rising keys leave full leaves behind; falling keys likewise. All nodes of a tree of several are of one size,
// so that what one gives back fits the next. The key that tells two leaves apart is cut to the bytes that do so.
#include <algorithm>
#include <cassert>
#include <cstring>
#include <utility>

#include "foundations/base/CZelKeyTree.h"
#include "foundations/base/CZelKeyTree_nodes.h"
#include "foundations/base/CZelLargeBlocks.h"

// Space doubles up to a full node.
unsigned int CZelKeyTree::spaceFor(unsigned int count) {
    constexpr unsigned int FIRST = 4;
    return std::max(std::bit_ceil(count), FIRST);
}

CZelKeyTree::Node *CZelKeyTree::makeNode(unsigned int capacity, std::size_t width) {
    const std::uint16_t offset = Node::OffsetFor(capacity, width);
    void *block = CZelLargeBlocks::RLTake(Node::SizeFor(capacity, width));
    return new (block)
        Node{nullptr, nullptr, 0, static_cast<std::uint16_t>(capacity), offset, static_cast<std::uint16_t>(width), {}};
}

std::size_t CZelKeyTree::sizeOf(const Node &node) {
    return Node::SizeFor(node.capacity, node.width);
}

void CZelKeyTree::giveMemory(Node *node) {
    CZelLargeBlocks::RLGive(node, sizeOf(*node));
}

// Gives the node a greater capacity. It may move: its neighbours learn that here, its parent through the caller.
CZelKeyTree::Node *CZelKeyTree::resize(Node *node, unsigned int capacity) {
    const std::uint16_t offset = Node::OffsetFor(capacity, node->width);
    void *block = CZelLargeBlocks::RLTake(Node::SizeFor(capacity, node->width));
    std::memcpy(block, static_cast<const void *>(node), sizeOf(*node));
    giveMemory(node);
    node = static_cast<Node *>(block);
    const void *keys = node->keys();
    const void *targets = node->targets();
    const void *hints = node->hints();
    node->offset = offset;
    node->capacity = static_cast<std::uint16_t>(capacity);
    std::memmove(static_cast<void *>(node->keys()), keys, node->count * sizeof(CZelAtom));
    std::memmove(static_cast<void *>(node->targets()), targets, node->count * sizeof(Target));
    if (node->isLeaf())
        std::memmove(node->hints(), hints, node->count * sizeof(Node::Hint));
    if (node->prev != nullptr)
        node->prev->next = node;
    if (node->next != nullptr)
        node->next->prev = node;
    return node;
}

// Items with their marks, as bytes: those from `index` on make room for `count` more, or move up over as many that
// are gone; or some are copied into a place of another node of the same kind.
void CZelKeyTree::moveWithin(Node *node, unsigned int from, unsigned int to, unsigned int count) {
    const auto move = [from, to, count](auto *things) {
        std::memmove(static_cast<void *>(things + to), static_cast<void *>(things + from), count * sizeof(*things));
    };
    move(node->keys());
    move(node->targets());
    std::memmove(node->mark(to), node->mark(from), std::size_t{count} * node->width);
    if (node->isLeaf())
        move(node->hints());
}

void CZelKeyTree::makeGap(Node *node, unsigned int index, unsigned int count) {
    moveWithin(node, index, index + count, node->count - index);
}

void CZelKeyTree::closeGap(Node *node, unsigned int index, unsigned int count) {
    node->count = static_cast<std::uint16_t>(node->count - count);
    moveWithin(node, index + count, index, node->count - index);
}

void CZelKeyTree::copyItems(Node *from, unsigned int index, Node *to, unsigned int place, unsigned int count) {
    std::memcpy(static_cast<void *>(to->keys() + place), static_cast<void *>(from->keys() + index),
                count * sizeof(CZelAtom));
    std::memcpy(static_cast<void *>(to->targets() + place), static_cast<void *>(from->targets() + index),
                count * sizeof(Target));
    std::memcpy(to->mark(place), from->mark(index), std::size_t{count} * to->width);
    if (to->isLeaf())
        copyHints(from, index, to, place, count);
}

// Requires: the keys have been admitted to the leaf that they come to.
void CZelKeyTree::copyHints(const Node *from, unsigned int index, Node *to, unsigned int place, unsigned int count) {
    if (from->scale == to->scale) {
        std::memcpy(to->hints() + place, from->hints() + index, count * sizeof(Node::Hint));
        return;
    }
    for (unsigned int i = 0; i < count; ++i)
        to->hints()[place + i] = hintOf(to->scale, from->keys()[index + i]);
}

// Moves the item in: the caller's is no longer an object.
void CZelKeyTree::insertItem(Node *node, unsigned int index, Item &item) {
    makeGap(node, index, 1);
    std::memcpy(static_cast<void *>(node->keys() + index), static_cast<void *>(&item.key), sizeof(CZelAtom));
    node->targets()[index] = item.target;
    setMark(node, index);
    ++node->count;
}

void CZelKeyTree::setMark(Node *node, unsigned int index) {
    const CZelAtom &key = node->keys()[index];
    if (node->isLeaf()) {
        *node->mark(index) = static_cast<char>(printOf(key));
        node->hints()[index] = hintOf(node->scale, key);
        return;
    }
    const Node::Head head = headOf(key);
    std::memcpy(node->mark(index), &head, sizeof head);
}

void CZelKeyTree::removeItem(Node *node, unsigned int index) {
    node->keys()[index].~CZelAtom();
    closeGap(node, index, 1);
}

// Moves the items from `index` on behind those of another node.
void CZelKeyTree::moveItems(Node *from, unsigned int index, Node *to) {
    const unsigned int moved = from->count - index;
    copyItems(from, index, to, to->count, moved);
    to->count = static_cast<std::uint16_t>(to->count + moved);
    from->count = static_cast<std::uint16_t>(index);
}

// A short key that is greater than `left` and not greater than `right`.
CZelAtom CZelKeyTree::separator(const CZelAtom &left, const CZelAtom &right) {
    if (left.RAType() != E_RDTText || right.RAType() != E_RDTText)
        return right;
    std::string_view low = left.RATextView();
    std::string_view high = right.RATextView();
    auto common =
        static_cast<std::size_t>(std::mismatch(low.begin(), low.end(), high.begin(), high.end()).first - low.begin());
    return CZelAtom::RAKey(high.data(), std::min(common + 1, high.size()));
}

// Where the pointer to the way's node of this level lies.
CZelKeyTree::Node *&CZelKeyTree::slot(Way &way, unsigned int level) {
    if (level == 0)
        return m_root;
    return way.nodes[level - 1]->child(way.indexes[level - 1]);
}

// Moves items over the border between two leaves until they hold as many.
void CZelKeyTree::evenOut(Node *left, Node *right) {
    const unsigned int half = (left->count + right->count) / 2U;
    if (left->count > half) {
        const unsigned int moved = left->count - half;
        admit(right, 0, left->keys()[half]);
        makeGap(right, 0, moved);
        copyItems(left, half, right, 0, moved);
        right->count = static_cast<std::uint16_t>(right->count + moved);
        left->count = static_cast<std::uint16_t>(half);
    } else {
        const unsigned int moved = half - left->count;
        admit(left, left->count - 1U, right->keys()[moved - 1]);
        copyItems(right, 0, left, left->count, moved);
        left->count = static_cast<std::uint16_t>(half);
        closeGap(right, 0, moved);
    }
}

// Puts the item into a full leaf or into its neighbour, if that one has room; else gives the end. At the border it
// stays in its own, for whose hints it is known to be fit.
CZelKeyTree::Place CZelKeyTree::insertWithNeighbour(Way &way, Item &item) {
    const unsigned int own = way.indexes[m_depth - 1];
    Node *parent = way.nodes[m_depth - 1];
    for (unsigned int border = std::max(own, 1U); border <= own + 1 && border < parent->count; ++border) {
        Node *left = parent->child(border - 1);
        Node *right = parent->child(border);
        if (left->count + right->count > static_cast<int>(Node::MOST_EVENED))
            continue;
        const unsigned int index = way.indexes[m_depth] + (border == own ? left->count : 0U);
        evenOut(left, right);
        const bool goesRight = border == own ? index >= left->count : index > left->count;
        Node *target = goesRight ? right : left;
        const unsigned int place = goesRight ? index - left->count : index;
        insertItem(target, place, item);
        parent->keys()[border] = separator(left->keys()[left->count - 1], right->keys()[0]);
        setMark(parent, border);
        return {target, place};
    }
    return RKTEnd();
}

// Puts the item where the way ends. While nodes split, their new right parts go into the nodes above.
CZelKeyTree::Place CZelKeyTree::insert(Way &way, Item &item) {
    if (m_depth > 0 && way.nodes[m_depth]->count == Node::MOST) {
        const Place shared = insertWithNeighbour(way, item);
        if (!shared.isEnd())
            return shared;
    }
    if (way.nodes[m_depth]->count == Node::MOST)
        sharpen(way);
    unsigned int level = m_depth;
    Node *right = nullptr;
    Place place = put(way, level, way.indexes[level], item, &right);
    while (right != nullptr) {
        Loose branch;
        new (&branch.item.key) CZelAtom(lowKey(way.nodes[level], right, level == m_depth));
        branch.item.target.child = right;
        right = nullptr;
        if (level == 0)
            growRoot(branch.item);
        else
            put(way, level - 1, way.indexes[level - 1] + 1, branch.item, &right);
        --level;
    }
    return place;
}

// Puts the item at this index of the way's node, which gives a part to *right if it is full.
CZelKeyTree::Place CZelKeyTree::put(Way &way, unsigned int level, unsigned int index, Item &item, Node **right) {
    Node *&node = way.nodes[level];
    if (node->count == Node::MOST)
        *right = split(way, level, index);
    else if (node->count == node->capacity)
        node = slot(way, level) = resize(node, spaceFor(node->count + 1U));
    bool goesRight = *right != nullptr && (index > node->count || index == Node::MOST);
    Node *target = goesRight ? *right : node;
    if (goesRight)
        index -= node->count;
    insertItem(target, index, item);
    return {target, index};
}

// Gives the way's node a new right neighbour, both with room for the item that is to stand at `index`.
CZelKeyTree::Node *CZelKeyTree::split(const Way &way, unsigned int level, unsigned int index) const {
    Node *node = way.nodes[level];
    unsigned int kept = Node::MOST / 2;
    if (index == Node::MOST && node->next == nullptr)
        kept = Node::MOST;
    else if (index == 0 && node->prev == nullptr)
        kept = 0;
    Node *right = makeNode(Node::MOST, node->width);
    right->scale = node->scale;
    moveItems(node, kept, right);
    if (level == m_depth)
        linkBehind(node, right);
    return right;
}

void CZelKeyTree::linkBehind(Node *node, Node *right) {
    right->prev = node;
    right->next = node->next;
    if (right->next != nullptr)
        right->next->prev = right;
    node->next = right;
}

// The key for the parent of a node that has just split. Above the leaves the first key of the right part is of no
// use there any more.
CZelAtom CZelKeyTree::lowKey(const Node *left, Node *right, bool areLeaves) {
    CZelAtom &first = right->keys()[0];
    return areLeaves ? separator(left->keys()[left->count - 1], first) : CZelAtom(std::move(first));
}

void CZelKeyTree::growRoot(Item &right) {
    Loose left;
    new (&left.item.key) CZelAtom();
    left.item.target.child = m_root;
    m_root = makeNode(spaceFor(2), sizeof(Node::Head));
    insertItem(m_root, 0, left.item);
    insertItem(m_root, 1, right);
    ++m_depth;
    assert(m_depth < Way::LONGEST);
}

bool CZelKeyTree::RKTRemove(const CZelAtom &key, void *object) {
    Way way;
    if (m_root == nullptr || !find(Wanted(key), way))
        return false;
    Node *leaf = way.nodes[m_depth];
    unsigned int index = way.indexes[m_depth];
    CZelBTreeNode::Removal removal = leaf->entry(index).remove(object);
    if (removal == CZelBTreeNode::Removal::LEFT_NONE) {
        removeItem(leaf, index);
        --m_length;
        tidy(way);
    }
    return removal != CZelBTreeNode::Removal::ABSENT;
}

// The leaf at the end of the way has lost an item. Frees a node that is empty, joins one that is small, and goes
// on with the parent, which then lost an item too.
void CZelKeyTree::tidy(Way &way) {
    for (unsigned int level = m_depth; level > 0; --level) {
        Node *node = way.nodes[level];
        if (node->count == 0) {
            removeItem(way.nodes[level - 1], way.indexes[level - 1]);
            dropNode(node);
        } else if (node->count >= Node::FEW || !joinNeighbour(way, level)) {
            return;
        }
    }
    shortenRoot();
}

void CZelKeyTree::shortenRoot() {
    while (m_depth > 0 && m_root->count == 1) {
        Node *child = m_root->child(0);
        removeItem(m_root, 0);
        dropNode(m_root);
        m_root = child;
        --m_depth;
    }
    if (m_root->count == 0)
        RKTEmpty();
}

bool CZelKeyTree::joinNeighbour(Way &way, unsigned int level) {
    Node *parent = way.nodes[level - 1];
    unsigned int own = way.indexes[level - 1];
    for (unsigned int right = own == 0 ? 1 : own; right <= own + 1 && right < parent->count; ++right) {
        if (parent->child(right - 1)->count + parent->child(right)->count <= static_cast<int>(Node::MOST_JOINED)) {
            join(parent, right, level == m_depth);
            return true;
        }
    }
    return false;
}

// Moves the items of a child into the one on its left.
void CZelKeyTree::join(Node *parent, unsigned int index, bool areLeaves) {
    Node *&left = parent->child(index - 1);
    Node *right = parent->child(index);
    unsigned int count = left->count + right->count;
    if (left->capacity < count)
        left = resize(left, spaceFor(count));
    if (!areLeaves) {
        right->keys()[0] = std::move(parent->keys()[index]);
        setMark(right, 0);
    } else if (left->count > 0 && right->count > 0) {
        admit(left, left->count - 1U, right->keys()[right->count - 1]);
    }
    moveItems(right, 0, left);
    removeItem(parent, index);
    dropNode(right);
}

// Frees a node without items.
void CZelKeyTree::dropNode(Node *node) {
    if (node->prev != nullptr)
        node->prev->next = node->next;
    if (node->next != nullptr)
        node->next->prev = node->prev;
    giveMemory(node);
}

// Frees a node with all below it.
void CZelKeyTree::freeNode(Node *node, unsigned int depth) {
    for (unsigned int i = 0; i < node->count; ++i) {
        node->keys()[i].~CZelAtom();
        if (depth == 0)
            node->entry(i).release();
        else
            freeNode(node->child(i), depth - 1);
    }
    giveMemory(node);
}
