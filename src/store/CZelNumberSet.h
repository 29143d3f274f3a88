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

    void add(std::size_t number) { m_words[number / BITS] |= std::uint64_t{1} << number % BITS; }
    bool holds(std::size_t number) const { return (m_words[number / BITS] >> number % BITS & 1U) != 0; }

    // In ascending order.
    template <class Visit>
    void visit(Visit visit) const {
        for (std::size_t i = 0; i < m_words.size(); ++i)
            for (std::uint64_t word = m_words[i]; word != 0; word &= word - 1)
                visit(i * BITS + static_cast<std::size_t>(std::countr_zero(word)));
    }

private:
    static constexpr std::size_t BITS = 64;
    std::vector<std::uint64_t> m_words;
};
