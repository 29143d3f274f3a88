// The order of the pairs that a tree is filled with. They are parted by the types of their keys; numbers and texts are
// then sorted by heads, digit by digit, the rest by comparing. The heads of texts are taken behind what all of them
// begin with, as keys mostly begin alike; those of one head are sorted by what follows it.
#include "foundations/base/CZelKeyTree_rank.h"

#include <algorithm>
#include <array>
#include <bit>
#include <numeric>
#include <string_view>

namespace {

constexpr std::size_t FEW = 256;          // are sorted by comparing
constexpr std::size_t FEWER = 24;         // and their heads by insertion
constexpr unsigned int MOST_LEVELS = 16;  // of heads in a text; what is longer is compared
constexpr unsigned int BITS = 11;         // of a digit
constexpr int SPARE_BITS = 8;             // beside those that number the heads
constexpr std::size_t SAMPLE = 16;        // of texts that may begin alike

// How many of the first bytes are the same, `most` at most.
std::size_t alike(std::string_view left, std::string_view right, std::size_t most) {
    const auto end = static_cast<std::ptrdiff_t>(std::min({left.size(), right.size(), most}));
    return static_cast<std::size_t>(std::mismatch(left.begin(), left.begin() + end, right.begin()).first -
                                    left.begin());
}

}  // namespace

CZelKeyTree::Ranking::Ranking(const CZelArray<SZelKeyedObject> &pairs) : m_pairs(pairs) {
    m_ranked.reserve(pairs.size());
    m_spare.reserve(pairs.size());
    for (const SZelKeyedObject &pair : pairs) {
        const auto place = static_cast<std::uint32_t>(m_ranked.size());
        m_ranked.push_back({headOf(pair.m_key) >> HEAD_BITS, place, printOf(pair.m_key)});
    }
    sortByHead(m_ranked);
    forEachHead(m_ranked, 0, [this](Part part) { sortType(part); });
}

bool CZelKeyTree::Ranking::hasTwins() const {
    return std::any_of(m_ranked.begin(), m_ranked.end(),
                       [this](const Ranked &one) { return one.isTwin && !keyOf(one).RAIsUndefined(); });
}

std::size_t CZelKeyTree::Ranking::keys() const {
    return static_cast<std::size_t>(
        std::count_if(m_ranked.begin(), m_ranked.end(), [](const Ranked &one) { return !one.isTwin; }));
}

// The pairs of one type, all numbers being of one.
void CZelKeyTree::Ranking::sortType(Part part) {
    const CZelAtom &key = keyOf(part.front());
    if (key.RAType() == E_RDTText)
        sortTexts(part, 0, 0);
    else if (key.RAIsNumber())
        sortNumbers(part);
    else
        sortByComparing(part);
}

void CZelKeyTree::Ranking::sortNumbers(Part part) {
    for (Ranked &one : part)
        one.head = headOfNumber(keyOf(one).RADouble());
    sortByHead(part);
    forEachHead(part, 0, [this](Part equals) { sortByComparing(equals); });
}

// Requires: the first `known` bytes of all texts are the same.
void CZelKeyTree::Ranking::sortTexts(Part part, std::size_t known, unsigned int level) {
    if (part.size() <= FEW || level == MOST_LEVELS) {
        sortByComparing(part);
        return;
    }
    std::size_t common = alikeIn(part, known, part.size() / SAMPLE), longest = takeHeads(part, known, common);
    if (longest < common) {
        common = alikeIn(part, known, 1);
        longest = takeHeads(part, known, common);
    }
    if (common == longest)
        return;
    sortByHead(part);
    forEachHead(part, 0, [&](Part equals) { sortTexts(equals, common, level + 1); });
}

// How many of their first bytes are the same in every so many texts. Requires: `known` are.
std::size_t CZelKeyTree::Ranking::alikeIn(Part part, std::size_t known, std::size_t step) const {
    const std::string_view first = keyOf(part.front()).RATextView();
    std::size_t common = first.size();
    for (std::size_t i = 0; i < part.size(); i += step)
        common = known + alike(first.substr(known), keyOf(part[i]).RATextView().substr(known), common - known);
    return common;
}

// Of texts whose first `common` bytes are the same; all are twins where none is longer. Gives the longest one's length,
// or 0 when they are not the same. Requires: `known` of them are.
std::size_t CZelKeyTree::Ranking::takeHeads(Part part, std::size_t known, std::size_t common) const {
    const std::string_view front = keyOf(part.front()).RATextView().substr(known, common - known);
    std::size_t longest = 0;
    for (Ranked &one : part) {
        const std::string_view text = keyOf(one).RATextView();
        if (text.substr(known, front.size()) != front)
            return 0;
        one.head = headOfText(text.substr(common));
        longest = std::max(longest, text.size());
    }
    for (std::size_t i = 1; i < part.size(); ++i)
        part[i].isTwin = common == longest;
    return longest;
}

// Heads are sorted by as many of their bits that vary as should tell most of them apart, which is a few more than it
// takes to number them; what these leave together is mostly a few.
void CZelKeyTree::Ranking::sortByHead(Part part) {
    if (part.size() <= FEW)
        return sortFew(part);
    std::uint64_t varying = 0;
    for (const Ranked &one : part)
        varying |= one.head ^ part.front().head;
    const auto top = static_cast<unsigned int>(std::bit_width(varying));
    const int enough = std::bit_width(part.size()) + SPARE_BITS;
    unsigned int low = top;
    do
        low -= std::min(low, BITS);
    while (low > 0 && std::popcount(varying >> low) < enough);
    sortByDigits(part, low, top, varying);
    if (low > 0)
        forEachHead(part, low, [this](Part alike) { sortByHead(alike); });
}

// By the bits [low, top) of the heads: least digit first, and each pass keeps the order of what is equal; a digit that
// is the same in all needs no pass.
void CZelKeyTree::Ranking::sortByDigits(Part part, unsigned int low, unsigned int top, std::uint64_t varying) {
    Part from = part, to(m_spare.data(), part.size());
    for (; low < top; low += BITS) {
        const auto digitOf = [low](std::uint64_t head) { return head >> low & ((1U << BITS) - 1); };
        if (digitOf(varying) == 0)
            continue;
        std::array<std::uint32_t, 1U << BITS> places{};
        for (const Ranked &one : from)
            ++places[digitOf(one.head)];
        std::exclusive_scan(places.begin(), places.end(), places.begin(), 0U);
        for (const Ranked &one : from)
            to[places[digitOf(one.head)]++] = one;
        std::swap(from, to);
    }
    if (from.data() != part.data())
        std::copy(from.begin(), from.end(), part.begin());
}

void CZelKeyTree::Ranking::sortFew(Part part) {
    if (part.size() > FEWER) {
        std::stable_sort(part.begin(), part.end(),
                         [](const Ranked &left, const Ranked &right) { return left.head < right.head; });
        return;
    }
    for (std::size_t i = 1; i < part.size(); ++i) {
        const Ranked one = part[i];
        std::size_t place = i;
        for (; place > 0 && part[place - 1].head > one.head; --place)
            part[place] = part[place - 1];
        part[place] = one;
    }
}

void CZelKeyTree::Ranking::sortByComparing(Part part) const {
    const auto order = [this](const Ranked &left, const Ranked &right) {
        return keyOf(left).RALex(&keyOf(right), nullptr);
    };
    const auto markTwins = [&] {  // as far as the part is sorted
        part.front().isTwin = false;
        std::size_t i = 1;
        for (int last = 0; i < part.size() && (last = order(part[i - 1], part[i])) <= 0; ++i)
            part[i].isTwin = last == 0;
        return i >= part.size();
    };
    if (markTwins())
        return;
    std::stable_sort(part.begin(), part.end(),
                     [&order](const Ranked &left, const Ranked &right) { return order(left, right) < 0; });
    markTwins();
}

// Visits the parts of several whose heads are the same from a bit on. (The visitor may change heads in them.)
template <class Visitor>
void CZelKeyTree::Ranking::forEachHead(Part part, unsigned int bit, Visitor visit) {
    for (std::size_t begin = 0, end = 0; begin < part.size(); begin = end) {
        const std::uint64_t head = part[begin].head >> bit;
        for (end = begin + 1; end < part.size() && part[end].head >> bit == head;)
            ++end;
        if (end > begin + 1)
            visit(part.subspan(begin, end - begin));
    }
}
