// The keywords of a scanner: found by length and three of their letters in a table without collisions, which
// the compiler makes.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <string_view>

struct SZelKeyword {
    std::string_view m_word;  // in lower case
    int m_token;
};

template <std::size_t COUNT>
class CZelKeywordTable {
public:
    // Requires: words of 2 to 16 letters, fewer than 255.
    consteval explicit CZelKeywordTable(const SZelKeyword (&words)[COUNT]) {
        std::copy(std::begin(words), std::end(words), m_words.begin());
        place();
    }
    template <std::size_t COMMON, std::size_t OWN>
    consteval CZelKeywordTable(const SZelKeyword (&common)[COMMON], const SZelKeyword (&own)[OWN]) {
        std::copy(std::begin(own), std::end(own), std::copy(std::begin(common), std::end(common), m_words.begin()));
        place();
    }

    // The token of a word in any case, 0 for none. Requires: not empty.
    int Find(std::string_view word) const {
        if (word.size() < 2)
            return 0;
        const std::uint8_t index = m_slots[slotOf(word)];
        return index != NONE && isWord(m_words[index].m_word, word) ? m_words[index].m_token : 0;
    }

private:
    static constexpr unsigned int BITS = 10;
    static constexpr std::uint8_t NONE = 255;

    static constexpr std::uint32_t lower(char letter) { return static_cast<unsigned char>(letter) | 0x20U; }

    constexpr std::size_t slotOf(std::string_view word) const {
        const std::uint32_t key = lower(word[0]) | lower(word[1]) << 8 | lower(word.back()) << 16 |
                                  static_cast<std::uint32_t>(word.size()) << 24;
        return key * m_factor >> (32 - BITS);
    }

    static bool isWord(std::string_view keyword, std::string_view word) {
        if (keyword.size() != word.size())
            return false;
        for (std::size_t i = 0; i < word.size(); ++i) {
            if (lower(word[i]) != static_cast<unsigned char>(keyword[i]))
                return false;
        }
        return true;
    }

    constexpr void place() {
        while (!fill())
            m_factor += 2;
    }

    constexpr bool fill() {
        m_slots.fill(NONE);
        for (std::size_t i = 0; i < COUNT; ++i) {
            std::uint8_t &slot = m_slots[slotOf(m_words[i].m_word)];
            if (slot != NONE)
                return false;
            slot = static_cast<std::uint8_t>(i);
        }
        return true;
    }

    std::uint32_t m_factor = 0x9e3779b1;
    std::array<SZelKeyword, COUNT> m_words = {};
    std::array<std::uint8_t, 1U << BITS> m_slots = {};
};

template <std::size_t COMMON, std::size_t OWN>
CZelKeywordTable(const SZelKeyword (&)[COMMON], const SZelKeyword (&)[OWN]) -> CZelKeywordTable<COMMON + OWN>;
