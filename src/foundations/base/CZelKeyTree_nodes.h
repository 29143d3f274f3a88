// What a key tree is built of. Items are moved as plain bytes: neither an atom nor an entry points into itself.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "foundations/base/CZelKeyTree.h"
#include "foundations/base/ZelHash.h"

// In a leaf a key and its entry. Above the leaves a child and the least key that it may hold; that of a node's
// first child has no meaning.
struct CZelKeyTree::Item {
    CZelAtom key;
    union {
        CZelBTreeNode entry;
        Node *child;
    };
};

// In the leaves of a tree of texts each item also has a print, one byte of its key's hash. The prints lie together
// behind the node, so that a text is looked for in a leaf without touching the texts that it is not.
struct CZelKeyTree::Node {
    Node *prev;  // the neighbours of a leaf
    Node *next;
    std::uint16_t count;
    std::uint16_t capacity;
    std::uint16_t offset;  // of the items

    static constexpr unsigned int MOST = 64;
    static constexpr unsigned int FEW = MOST / 4;              // fewer than these look for a neighbour to join
    static constexpr unsigned int MOST_JOINED = MOST / 4 * 3;  // so that the next few additions don't split
    static constexpr unsigned int PRINTS_AT_ONCE = sizeof(std::uint64_t);

    static std::uint16_t OffsetFor(unsigned int capacity, bool withPrints) {
        const unsigned int prints = (capacity + PRINTS_AT_ONCE - 1) / PRINTS_AT_ONCE * PRINTS_AT_ONCE;
        return static_cast<std::uint16_t>(sizeof(Node) + (withPrints ? prints : 0));
    }
    bool hasPrints() const { return offset != sizeof(Node); }

    std::uint8_t *prints() { return reinterpret_cast<std::uint8_t *>(this + 1); }
    const std::uint8_t *prints() const { return reinterpret_cast<const std::uint8_t *>(this + 1); }
    Item *items() { return reinterpret_cast<Item *>(reinterpret_cast<char *>(this) + offset); }
    const Item *items() const { return reinterpret_cast<const Item *>(reinterpret_cast<const char *>(this) + offset); }
};

inline std::uint8_t CZelKeyTree::printOf(std::string_view text) {
    return static_cast<std::uint8_t>(ZelHashText(text.data(), text.size()) >> 56);
}

inline const CZelAtom &CZelKeyTree::Place::key() const {
    return m_leaf->items()[m_index].key;
}

inline CZelBTreeNode &CZelKeyTree::Place::entry() const {
    return const_cast<CZelBTreeNode &>(m_leaf->items()[m_index].entry);
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

// A key made ready for many comparisons.
class CZelKeyTree::Wanted {
public:
    explicit Wanted(const CZelAtom &key) : m_key(key) {
        if (key.RAType() == E_RDTText) {
            m_text = key.RATextView();
            m_head = headOf(m_text);
        }
    }

    bool isText() const { return m_text.data() != nullptr; }
    std::string_view text() const { return m_text; }

    // Negative, 0 or positive as this key is less than, equal to or greater than the other.
    int compare(const CZelAtom &other) const {
        if (m_text.data() != nullptr && other.RAType() == E_RDTText)
            return compareText(other.RATextView());
        return m_key.RALex(&other, nullptr);
    }

private:
    int compareText(std::string_view other) const {
        if (other.data() == m_text.data())
            return 0;  // one name
        std::uint64_t head = headOf(other);
        if (head != m_head)
            return m_head < head ? -1 : 1;
        if (m_text.size() > HEAD && other.size() > HEAD)
            return m_text.substr(HEAD).compare(other.substr(HEAD));
        return m_text.size() < other.size() ? -1 : m_text.size() > other.size();
    }

    static constexpr std::size_t HEAD = sizeof(std::uint64_t);

    // The first eight bytes as a number that orders as they do; zeros behind a shorter text.
    static std::uint64_t headOf(std::string_view text) {
        std::size_t length = text.size();
        if (length >= HEAD)
            return load<std::uint64_t>(text.data());
        if (length >= 4) {  // two halves that overlap
            std::uint64_t low = load<std::uint32_t>(text.data() + length - 4);
            return std::uint64_t{load<std::uint32_t>(text.data())} << 32 | low << 8 * (HEAD - length);
        }
        std::uint64_t head = 0;
        for (std::size_t i = 0; i < length; ++i)
            head |= std::uint64_t{static_cast<unsigned char>(text[i])} << (56 - 8 * i);
        return head;
    }

    template <class Number>
    static Number load(const char *bytes) {
        Number number;
        std::memcpy(&number, bytes, sizeof(number));
        if constexpr (std::endian::native == std::endian::big)
            return number;
        else if constexpr (sizeof(number) == 8)
            return __builtin_bswap64(number);
        else
            return __builtin_bswap32(number);
    }

    const CZelAtom &m_key;
    std::string_view m_text;
    std::uint64_t m_head = 0;
};
