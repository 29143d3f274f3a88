// What a key tree is built of. Items are moved as plain bytes: neither an atom nor an entry points into itself.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "foundations/base/CZelKeyTree.h"
#include "foundations/base/ZelHash.h"

// What a key leads to: in a leaf its entry, above the leaves a child, whose keys are not less. The key of a node's
// first child has no meaning.
union CZelKeyTree::Target {
    CZelBTreeNode entry;
    Node *child;
};

// A key with its target outside of a node.
struct CZelKeyTree::Item {
    CZelAtom key;
    Target target;
};

// Where a leaf's hints come from: eight bytes of a key as a number, from which the base is taken, and of the rest the
// low bits are cut off. What lies outside of the range gets the least or the greatest hint. Keys that are all texts and
// begin alike may leave the bytes out that they share.
struct CZelKeyTree::Scale {
    std::uint64_t base = 0;
    std::uint8_t shift = 48;
    std::uint8_t skipped = 0;  // bytes

    std::uint16_t hintOf(std::uint64_t head) const {
        constexpr std::uint64_t GREATEST = UINT16_MAX;
        return static_cast<std::uint16_t>(head > base ? std::min((head - base) >> shift, GREATEST) : 0);
    }
    bool operator==(const Scale &other) const = default;
};

// Behind the node lie, each kind together, marks of its keys, their targets and the keys. A leaf has for each key a
// print, one byte of the key's hash, so that a key is looked for in a leaf without touching the keys that it is not;
// behind the prints it has hints, numbers that order as the keys do as far as they go, so that also the place of a new
// key is found without touching others; a print that two keys share is mostly told by them too. A node above has heads,
// the same as hints with a common scale for all. The targets are so few lines of memory that they can be asked for with
// the marks: a row is on its way before its key has been looked at.
struct CZelKeyTree::Node {
    using Print = std::uint8_t;
    using Hint = std::uint16_t;
    using Head = std::uint64_t;

    Node *prev;  // the neighbours of a leaf
    Node *next;
    std::uint16_t count;
    std::uint16_t capacity;
    std::uint16_t offset;  // of the targets
    std::uint16_t width;   // bytes of a print or head
    Scale scale;           // of a leaf's hints

    static constexpr unsigned int MOST = 64;
    static constexpr unsigned int FEW = MOST / 4;                       // fewer than these look for a neighbour to join
    static constexpr unsigned int MOST_JOINED = MOST / 4 * 3;           // so that the next few additions don't split
    static constexpr unsigned int MOST_EVENED = MOST + MOST / 16 * 15;  // of two leaves, for the same reason
    static constexpr unsigned int PRINTS_AT_ONCE = sizeof(std::uint64_t);

    static bool IsLeaf(std::size_t width) { return width == sizeof(Print); }
    static std::size_t SizeOfMarks(unsigned int capacity, std::size_t width) {
        return (capacity * width + PRINTS_AT_ONCE - 1) / PRINTS_AT_ONCE * PRINTS_AT_ONCE;
    }
    // Capacities are multiples of four: hints fill whole words.
    static std::uint16_t OffsetFor(unsigned int capacity, std::size_t width) {
        const std::size_t hints = IsLeaf(width) ? capacity * sizeof(Hint) : 0;
        return static_cast<std::uint16_t>(sizeof(Node) + SizeOfMarks(capacity, width) + hints);
    }

    static std::size_t SizeFor(unsigned int capacity, std::size_t width) {
        return OffsetFor(capacity, width) + capacity * (sizeof(Target) + sizeof(CZelAtom));
    }

    bool isLeaf() const { return IsLeaf(width); }
    char *marks() { return reinterpret_cast<char *>(this + 1); }
    char *mark(unsigned int index) { return marks() + std::size_t{index} * width; }
    const Print *prints() const { return reinterpret_cast<const Print *>(this + 1); }
    Hint *hints() { return reinterpret_cast<Hint *>(marks() + SizeOfMarks(capacity, width)); }
    const Hint *hints() const { return const_cast<Node *>(this)->hints(); }
    const Head *heads() const { return reinterpret_cast<const Head *>(this + 1); }
    Target *targets() { return reinterpret_cast<Target *>(reinterpret_cast<char *>(this) + offset); }
    const Target *targets() const { return const_cast<Node *>(this)->targets(); }
    CZelAtom *keys() { return reinterpret_cast<CZelAtom *>(targets() + capacity); }
    const CZelAtom *keys() const { return const_cast<Node *>(this)->keys(); }
    CZelBTreeNode &entry(unsigned int index) const { return const_cast<Node *>(this)->targets()[index].entry; }
    Node *&child(unsigned int index) { return targets()[index].child; }
    Node *child(unsigned int index) const { return targets()[index].child; }
};

inline const CZelAtom &CZelKeyTree::Place::key() const {
    return m_leaf->keys()[m_index];
}

inline CZelBTreeNode &CZelKeyTree::Place::entry() const {
    return m_leaf->entry(m_index);
}

inline void CZelKeyTree::Place::next() {
    if (++m_index == m_leaf->count)
        *this = Place(m_leaf->next, 0);
}

// The nodes from the root to a leaf, and which item leads on in each of them; in the leaf, where the key is or
// would be.
struct CZelKeyTree::Way {
    static constexpr unsigned int LONGEST = 24;  // nodes hold a dozen children on the average at the least
    Node *nodes[LONGEST];
    unsigned int indexes[LONGEST];
};

// An item on its way into a node, which takes it over as bytes: nothing is destroyed here.
union CZelKeyTree::Loose {
    Loose() {}
    ~Loose() {}
    Item item;
};

// The first eight bytes as a number that orders as they do; zeros behind a shorter text.
inline std::uint64_t CZelKeyTree::headOfText(std::string_view text) {
    constexpr std::size_t HEAD = sizeof(std::uint64_t);
    const std::size_t length = text.size();
    if (length >= HEAD)
        return loadBigEndian<std::uint64_t>(text.data());
    if (length >= 4) {  // two halves that overlap
        const std::uint64_t low = loadBigEndian<std::uint32_t>(text.data() + length - 4);
        return std::uint64_t{loadBigEndian<std::uint32_t>(text.data())} << 32 | low << 8 * (HEAD - length);
    }
    std::uint64_t head = 0;
    for (std::size_t i = 0; i < length; ++i)
        head |= std::uint64_t{static_cast<unsigned char>(text[i])} << (56 - 8 * i);
    return head;
}

// The same for a number, NaN being the least. Equal numbers of any type have one head; a number too long for a double
// shares that of its neighbours.
inline std::uint64_t CZelKeyTree::headOfNumber(double number) {
    constexpr std::uint64_t SIGN = std::uint64_t{1} << 63;
    if (std::isnan(number))
        return 0;
    const auto bits = std::bit_cast<std::uint64_t>(number + 0.0);  // one zero
    return (bits & SIGN) != 0 ? ~bits : bits | SIGN;
}

// Of two keys the one with the lesser head is less; one head says nothing. The type is in its two highest bits.
inline std::uint64_t CZelKeyTree::headOf(const CZelAtom &key) {
    constexpr int NUMBER = 1, TEXT = 2, OTHER = 3;
    const auto ranked = [](std::uint64_t rank, std::uint64_t head) { return rank << HEAD_BITS | head >> 2; };
    if (key.RAType() == E_RDTText)
        return ranked(TEXT, headOfText(key.RATextView()));
    if (key.RAIsNumber())
        return ranked(NUMBER, headOfNumber(key.RADouble()));
    return key.RAIsUndefined() ? 0 : ranked(OTHER, 0);
}

// Requires: the text has all that the scale leaves out.
inline std::uint16_t CZelKeyTree::hintOfText(const Scale &scale, std::string_view text) {
    return scale.hintOf(headOfText({text.data() + scale.skipped, text.size() - scale.skipped}));
}

// Equal keys have one print.
inline std::uint8_t CZelKeyTree::printOf(const CZelAtom &key) {
    const std::uint64_t hash =
        key.RAType() == E_RDTText ? ZelHashText(key.RAString(), key.RATextLength()) : ZelHashWord(headOf(key));
    return static_cast<std::uint8_t>(hash >> 56);
}

template <class Number>
Number CZelKeyTree::loadBigEndian(const char *bytes) {
    Number number;
    std::memcpy(&number, bytes, sizeof(number));
    if constexpr (std::endian::native == std::endian::big)
        return number;
    else if constexpr (sizeof(number) == 8)
        return __builtin_bswap64(number);
    else
        return __builtin_bswap32(number);
}

// A key made ready for many comparisons.
class CZelKeyTree::Wanted {
public:
    explicit Wanted(const CZelAtom &key) : m_key(key), m_head(headOf(key)) {
        if (key.RAType() != E_RDTText)
            return;
        m_text = key.RATextView();
        m_textHead = headOfText(m_text);
    }

    const CZelAtom &key() const { return m_key; }
    std::uint64_t head() const { return m_head; }
    Node::Hint hint(const Scale &scale) const {
        return scale.skipped == 0 ? scale.hintOf(m_head) : hintOfText(scale, m_text);
    }

    // False: it is not the key that has this hint in a leaf of that scale.
    bool mayHave(Node::Hint other, const Scale &scale) const {
        return scale.skipped <= m_text.size() && hint(scale) == other;
    }

    // Negative, 0 or positive as this key is less than, equal to or greater than the other.
    int compare(const CZelAtom &other) const {
        if (m_text.data() != nullptr && other.RAType() == E_RDTText)
            return compareText(other.RATextView());
        return m_key.RALex(&other, nullptr);
    }

    bool isEqual(const CZelAtom &other) const {
        return m_text.data() != nullptr ? other.RAType() == E_RDTText && other.RATextView() == m_text
                                        : m_key.RALex(&other, nullptr) == 0;
    }

private:
    int compareText(std::string_view other) const {
        if (other.data() == m_text.data())
            return 0;  // one name
        const std::uint64_t head = headOfText(other);
        if (head != m_textHead)
            return m_textHead < head ? -1 : 1;
        constexpr std::size_t HEAD = sizeof(std::uint64_t);
        if (m_text.size() > HEAD && other.size() > HEAD)
            return m_text.substr(HEAD).compare(other.substr(HEAD));
        return m_text.size() < other.size() ? -1 : m_text.size() > other.size();
    }

    const CZelAtom &m_key;
    std::uint64_t m_head;
    std::string_view m_text;
    std::uint64_t m_textHead = 0;  // with the two bits that the type takes from the head
};

// An addition in three steps, each of which ends with a demand for the memory that the next one reads. The tree must
// not change between them otherwise; what they do to other trees meanwhile makes no difference.
class CZelKeyTree::Addition {
public:
    Addition(CZelKeyTree &tree, const CZelAtom &key) : m_tree(tree), m_wanted(key) {}  // the key stays the caller's

    void seek();                              // to the leaf
    void settle(const void *object);          // to the place in the leaf
    Place finish(void *object, bool *isNew);  // as RKTAdd

private:
    CZelKeyTree &m_tree;
    Wanted m_wanted;
    Way m_way;
    bool m_isThere = false;
};

// How many of the sorted items are `before`. No branch depends on a comparison.
template <class Entry, class Before>
unsigned int CZelKeyTree::countBefore(const Entry *items, unsigned int count, Before before) {
    const Entry *from = items;
    while (count > 0) {
        unsigned int half = (count + 1) / 2;
        from += half & (0U - static_cast<unsigned int>(before(from[half - 1])));
        count -= half;
    }
    return static_cast<unsigned int>(from - items);
}
