// A set of small numbers, as those of the handles of a cache: one bit each.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

class CZelNumberSet {
public:
    // All numbers are below the limit. Those that were in the set leave it.
    void reset(std::size_t limit) { m_words.assign(limit / BITS + 1, 0); }

    void add(std::size_t number) { m_words[number / BITS] |= bitOf(number); }
    void add(const CZelNumberSet &other) {  // of the same limit
        for (std::size_t i = 0; i < m_words.size(); ++i)
            m_words[i] |= other.m_words[i];
    }
    bool holds(std::size_t number) const { return (m_words[number / BITS] & bitOf(number)) != 0; }

    // In ascending order.
    template <class Visit>
    void visit(Visit visit) const {
        for (std::size_t i = 0; i < m_words.size(); ++i)
            for (std::uint64_t word = m_words[i]; word != 0; word &= word - 1)
                visit(i * BITS + static_cast<std::size_t>(std::countr_zero(word)));
    }

    // Counts, so that placeOf can tell how many smaller numbers are in the set; until the next change.
    void count() {
        m_before.resize(m_words.size());
        std::uint32_t before = 0;
        for (std::size_t i = 0; i < m_words.size(); ++i) {
            m_before[i] = before;
            before += static_cast<std::uint32_t>(std::popcount(m_words[i]));
        }
    }
    std::size_t placeOf(std::size_t number) const {
        const std::size_t word = number / BITS;
        return m_before[word] + static_cast<std::size_t>(std::popcount(m_words[word] & (bitOf(number) - 1)));
    }

private:
    static constexpr std::size_t BITS = 64;
    static std::uint64_t bitOf(std::size_t number) { return std::uint64_t{1} << number % BITS; }

    std::vector<std::uint64_t> m_words;
    std::vector<std::uint32_t> m_before;  // numbers in the words before, once counted
};
