// An ordered map from key atoms to tree entries: what index trees and dictionaries are made of.
//
// Keys are ordered as RALex orders them and copied in; two keys that it calls equal are one. It is a B+ tree:
// the entries lie in leaves of up to 64, linked in key order, and nodes of the same shape lead down to them.
// A leaf that is full gives to its neighbours before it splits, so that leaves are four fifths full on the average;
// keys that come in rising or falling order fill them wholly, and a node that has become small joins its neighbour. A
// tree of a few keys is one small block.
// A key that is looked for by itself is found in its leaf by a byte of its hash, the place of a new one by hints.
//
// Threads: no lock; several readers may look up and walk while nobody changes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "foundations/base/CZelArrays.h"
#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBTreeNode.h"
#include "foundations/port/ZelExport.h"

struct SZelKeyedObject {
    CZelAtom m_key;  // undefined: the null key
    void *m_object;
};

class QUINTOR_API CZelKeyTree {
    struct Item;
    union Target;
    struct Node;

public:
    // A place among the entries in key order, good until the tree changes. What it gives is not asked for at
    // the end.
    class QUINTOR_API Place {
    public:
        bool isEnd() const { return m_leaf == nullptr; }
        const CZelAtom &key() const;
        CZelBTreeNode &entry() const;
        void next();
        bool operator==(const Place &other) const = default;

    private:
        friend class CZelKeyTree;
        Place(const Node *leaf, unsigned int index) : m_leaf(leaf), m_index(index) {}
        const Node *m_leaf;
        unsigned int m_index;
    };

    CZelKeyTree() = default;
    CZelKeyTree(const CZelKeyTree &) = delete;
    CZelKeyTree &operator=(const CZelKeyTree &) = delete;
    ~CZelKeyTree() { RKTEmpty(); }

    std::size_t RKTLength() const { return m_length; }  // in keys

    // The entry of a key, or null.
    CZelBTreeNode *RKTFind(const CZelAtom &key) const;

    // The same for many keys at once, in less time: their descents go side by side, so that one need not wait for
    // the memory of another.
    void RKTFindMany(const CZelAtom *const *keys, std::size_t count, CZelBTreeNode **entries) const;

    Place RKTFirst() const;
    static Place RKTEnd() { return {nullptr, 0}; }
    Place RKTFrom(const CZelAtom &key) const;    // the first entry whose key is not less
    Place RKTBehind(const CZelAtom &key) const;  // the first entry whose key is greater

    // Where the entries begin and end whose keys can be less or greater than `key`: those of its type, all numbers
    // being of one type.
    Place RKTStartOfType(const CZelAtom &key) const;
    Place RKTEndOfType(const CZelAtom &key) const;

    // All objects of the entries in [from, to): appended to a bag, or counted until there are enough.
    static void RKTAppend(Place from, Place to, CZelBag &bag);
    static std::size_t RKTCount(Place from, Place to, std::size_t enough);

    // The entry of a key, made for `object` alone when there was none.
    Place RKTAdd(const CZelAtom &key, void *object, bool *isNew);

    class Addition;  // the same step by step

    // Fills an empty tree with pairs in any order, as if they were added one by one; takes their keys. False, and the
    // tree stays empty, when `isUnique` and a key that is not null comes twice.
    bool RKTLoad(CZelArray<SZelKeyedObject> &pairs, bool isUnique);

    // Takes the object from the entry of the key, and the entry out when it was the only one; false when it does
    // not stand there.
    bool RKTRemove(const CZelAtom &key, void *object);

    void RKTEmpty();

private:
    struct Scale;
    struct Way;
    union Loose;
    class Wanted;
    class Crowd;

    // Looking up.
    bool find(const Wanted &wanted, Way &way) const;  // to the key, if it is there
    const Node *leafFor(const Wanted &wanted, Way &way) const;
    static void askForTargets(const Node *leaf);
    // In a leaf, from an index on; the count when it is not there.
    static unsigned int placeOf(const Node *leaf, const Wanted &wanted);
    static unsigned int placeOf(const Node *leaf, const Wanted &wanted, std::uint8_t print, unsigned int from);
    static unsigned int placeOfPrint(const Node *leaf, std::uint8_t print, unsigned int from);
    template <class Entry, class Before>
    static unsigned int countBefore(const Entry *items, unsigned int count, Before before);
    static unsigned int branchFor(const Node *node, const Wanted &wanted);
    static std::uint8_t printOf(const CZelAtom &key);
    static constexpr unsigned int HEAD_BITS = 62;  // below the type
    static std::uint64_t headOf(const CZelAtom &key);
    static std::uint64_t headOfText(std::string_view text);
    static std::uint64_t headOfNumber(double number);

    // Places of new keys.
    static bool placeIn(const Node *leaf, const Wanted &wanted, unsigned int *index);
    static std::uint16_t hintOf(const Scale &scale, const CZelAtom &key);
    static std::uint16_t hintOfText(const Scale &scale, std::string_view text);
    std::size_t sharedBytes(const Way &way) const;
    static void admit(Node *leaf, unsigned int neighbour, const CZelAtom &key);
    void sharpen(const Way &way);
    static bool isBlunt(const Node *leaf);
    static void rescale(Node *leaf, std::size_t skipped);
    static void makeBlunt(Node *leaf);

    // Loading.
    struct Ranked;
    class Ranking;
    using RankedPlace = CZelArray<Ranked>::const_iterator;
    std::vector<Node *> makeLeaves(CZelArray<SZelKeyedObject> &pairs, const CZelArray<Ranked> &ranked);
    static RankedPlace addToLeaf(Node *leaf, CZelArray<SZelKeyedObject> &pairs, RankedPlace next, RankedPlace end);
    static std::vector<Node *> makeParents(const std::vector<Node *> &children, bool areLeaves);
    template <class Number>
    static Number loadBigEndian(const char *bytes);
    static CZelBTreeNode *findByAddress(const Node *node, const CZelAtom &name, bool *isDecided);
    template <class Before>
    Place firstNot(Before before) const;

    // Nodes by themselves.
    static unsigned int spaceFor(unsigned int count);
    static Node *makeNode(unsigned int capacity, std::size_t width);
    static std::size_t sizeOf(const Node &node);  // in memory
    static void giveMemory(Node *node);
    static void setMark(Node *node, unsigned int index);
    static Node *resize(Node *node, unsigned int capacity);
    static void moveWithin(Node *node, unsigned int from, unsigned int to, unsigned int count);
    static void makeGap(Node *node, unsigned int index, unsigned int count);
    static void closeGap(Node *node, unsigned int index, unsigned int count);
    static void copyItems(Node *from, unsigned int index, Node *to, unsigned int place, unsigned int count);
    static void copyHints(const Node *from, unsigned int index, Node *to, unsigned int place, unsigned int count);
    static void insertItem(Node *node, unsigned int index, Item &item);
    static void removeItem(Node *node, unsigned int index);
    static void moveItems(Node *from, unsigned int index, Node *to);
    static void linkBehind(Node *node, Node *right);
    static void dropNode(Node *node);
    static void freeNode(Node *node, unsigned int depth);

    // Changes along a way.
    Node *&slot(Way &way, unsigned int level);
    Place insert(Way &way, Item &item);
    Place insertWithNeighbour(Way &way, Item &item);
    static void evenOut(Node *left, Node *right);
    Place put(Way &way, unsigned int level, unsigned int index, Item &item, Node **right);
    Node *split(const Way &way, unsigned int level, unsigned int index) const;
    static CZelAtom separator(const CZelAtom &left, const CZelAtom &right);
    static CZelAtom lowKey(const Node *left, Node *right, bool areLeaves);
    void growRoot(Item &right);
    void tidy(Way &way);
    bool joinNeighbour(Way &way, unsigned int level);
    static void join(Node *parent, unsigned int index, bool areLeaves);
    void shortenRoot();

    Node *m_root = nullptr;
    unsigned int m_depth = 0;  // levels above the leaves
    std::size_t m_length = 0;
};
