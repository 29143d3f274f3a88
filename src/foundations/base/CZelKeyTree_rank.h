// The pairs that a tree is to be filled with, in the order of their keys; those of equal keys in the order in which
// they came.
//
// Refers to the pairs, which stay as they are while it works.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "foundations/base/CZelKeyTree.h"
#include "foundations/base/CZelKeyTree_nodes.h"

struct CZelKeyTree::Ranked {
    std::uint64_t head;   // of what the step at hand sorts by
    std::uint32_t place;  // among the pairs
    Node::Print print;
    bool isTwin = false;  // has the key of the one before
};

class CZelKeyTree::Ranking {
public:
    explicit Ranking(const CZelArray<SZelKeyedObject> &pairs);

    const CZelArray<Ranked> &ranked() const { return m_ranked; }
    bool hasTwins() const;  // of other keys than the null key
    std::size_t keys() const;

private:
    using Part = std::span<Ranked>;

    const CZelAtom &keyOf(const Ranked &one) const { return m_pairs[one.place].m_key; }
    void sortType(Part part);
    void sortNumbers(Part part);
    void sortTexts(Part part, std::size_t known, unsigned int level);
    std::size_t alikeIn(Part part, std::size_t known, std::size_t step) const;
    std::size_t takeHeads(Part part, std::size_t known, std::size_t common) const;
    void sortByHead(Part part);
    void sortByDigits(Part part, unsigned int low, unsigned int top, std::uint64_t varying);
    static void sortFew(Part part);
    void sortByComparing(Part part) const;
    template <class Visitor>
    static void forEachHead(Part part, unsigned int bit, Visitor visit);

    const CZelArray<SZelKeyedObject> &m_pairs;
    CZelArray<Ranked> m_ranked;
    CZelArray<Ranked> m_spare;  // room for as many, itself empty
};
