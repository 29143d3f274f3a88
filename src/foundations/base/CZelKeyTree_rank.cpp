// The order of the pairs that a tree is filled with. They are parted by the types of their keys; numbers and texts are
// then sorted by heads, digit by digit, the rest by comparing. The heads of texts are taken behind what all of them
// begin with, as keys mostly begin alike; those of one head are sorted by what follows it.
#include "foundations/base/CZelKeyTree_rank.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <string_view>

namespace {

constexpr std::size_t FEW = 256;          // are sorted by comparing
constexpr unsigned int MOST_LEVELS = 16;  // of heads in a text; what is longer is compared
constexpr unsigned int BITS = 11;         // of a digit
constexpr unsigned int DIGITS = (64 + BITS - 1) / BITS;

std::size_t digitOf(std::uint64_t head, unsigned int number) {
    return head >> number * BITS & ((1U << BITS) - 1);
}

// How many of the first bytes are the same, `most` at most.
std::size_t alike(std::string_view left, std::string_view right, std::size_t most) {
    const auto end = static_cast<std::ptrdiff_t>(std::min({left.size(), right.size(), most}));
    return static_cast<std::size_t>(std::mismatch(left.begin(), left.begin() + end, right.begin()).first -
                                    left.begin());
}

}  // namespace

CZelKeyTree::Ranking::Ranking(const CZelArray<SZelKeyedObject> &pairs) : m_pairs(pairs), m_spare(pairs.size()) {
    m_ranked.reserve(pairs.size());
    for (const SZelKeyedObject &pair : pairs) {
        const auto place = static_cast<std::uint32_t>(m_ranked.size());
        m_ranked.push_back({headOf(pair.m_key) >> HEAD_BITS, place, printOf(pair.m_key)});
    }
    sortByHead(m_ranked);
    forEachHead(m_ranked, [this](Part part) { sortType(part); });
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
    forEachHead(part, [this](Part equals) { sortByComparing(equals); });
}

// Requires: the first `known` bytes of all texts are the same.
void CZelKeyTree::Ranking::sortTexts(Part part, std::size_t known, unsigned int level) {
    if (part.size() <= FEW || level == MOST_LEVELS) {
        sortByComparing(part);
        return;
    }
    const std::string_view first = keyOf(part.front()).RATextView();
    std::size_t common = first.size(), longest = 0;
    for (const Ranked &one : part) {
        const std::string_view text = keyOf(one).RATextView();
        common = known + alike(first.substr(known), text.substr(known), common - known);
        longest = std::max(longest, text.size());
    }
    for (Ranked &one : part) {
        one.head = headOfText(keyOf(one).RATextView().substr(common));
        one.isTwin = common == longest && &one != part.data();
    }
    if (common == longest)
        return;
    sortByHead(part);
    forEachHead(part, [&](Part equals) { sortTexts(equals, common, level + 1); });
}

// Least digit first, and each pass keeps the order of what is equal; a digit that is the same in all needs no pass.
void CZelKeyTree::Ranking::sortByHead(Part part) {
    std::uint64_t varying = 0;
    for (const Ranked &one : part)
        varying |= one.head ^ part.front().head;
    Part from = part, to(m_spare.data(), part.size());
    for (unsigned int digit = 0; digit < DIGITS; ++digit) {
        if (digitOf(varying, digit) == 0)
            continue;
        std::array<std::uint32_t, 1U << BITS> places{};
        for (const Ranked &one : from)
            ++places[digitOf(one.head, digit)];
        std::exclusive_scan(places.begin(), places.end(), places.begin(), 0U);
        for (const Ranked &one : from)
            to[places[digitOf(one.head, digit)]++] = one;
        std::swap(from, to);
    }
    if (from.data() != part.data())
        std::copy(from.begin(), from.end(), part.begin());
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

// Visits the parts of several that have one head. (The visitor may change heads in them.)
template <class Visitor>
void CZelKeyTree::Ranking::forEachHead(Part part, Visitor visit) {
    for (std::size_t begin = 0, end = 0; begin < part.size(); begin = end) {
        const std::uint64_t head = part[begin].head;
        for (end = begin + 1; end < part.size() && part[end].head == head;)
            ++end;
        if (end > begin + 1)
            visit(part.subspan(begin, end - begin));
    }
}
