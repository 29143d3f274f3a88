#include "foundations/base/CZelAtom_like.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

namespace {

constexpr std::size_t NOWHERE = std::string_view::npos;

// Does the part match the text's first bytes? Requires: the text is at least as long.
bool startsWith(const char *text, std::string_view part) {
    for (std::size_t i = 0; i < part.size(); ++i) {
        if (part[i] != '_' && part[i] != text[i])
            return false;
    }
    return true;
}

std::size_t findPlain(std::string_view text, std::string_view part) {
    const void *found = memmem(text.data(), text.size(), part.data(), part.size());
    return found == nullptr ? NOWHERE : static_cast<std::size_t>(static_cast<const char *>(found) - text.data());
}

// Holds a bit per byte of the part: bit i is set while the last i + 1 bytes read match its first i + 1.
class BitSearch {
public:
    explicit BitSearch(std::string_view part)
        : m_words(part.size() / 64 + 1), m_last(part.size() - 1), m_accepts(256 * m_words), m_state(m_words) {
        for (std::size_t i = 0; i < part.size(); ++i)
            accept(part[i], i);
    }

    std::size_t Find(std::string_view text) {
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (step(static_cast<unsigned char>(text[i])))
                return i - m_last;
        }
        return NOWHERE;
    }

private:
    void accept(char wanted, std::size_t position) {
        for (std::size_t byte = 0; byte < 256; ++byte) {
            if (wanted == '_' || byte == static_cast<unsigned char>(wanted))
                m_accepts[byte * m_words + position / 64] |= std::uint64_t{1} << position % 64;
        }
    }

    bool step(std::size_t byte) {
        std::uint64_t carry = 1;
        for (std::size_t word = 0; word < m_words; ++word) {
            std::uint64_t next = m_state[word] >> 63;
            m_state[word] = (m_state[word] << 1 | carry) & m_accepts[byte * m_words + word];
            carry = next;
        }
        return (m_state[m_last / 64] >> m_last % 64 & 1U) != 0;
    }

    std::size_t m_words;
    std::size_t m_last;
    std::vector<std::uint64_t> m_accepts;  // m_words for each byte
    std::vector<std::uint64_t> m_state;
};

// Tries place by place, which is quick for real texts, and changes to the search that can't be made slow when
// the places cost more than a few steps each.
std::size_t findWild(std::string_view text, std::string_view part) {
    std::size_t patience = 4 * text.size() + 64;
    for (std::size_t start = 0; start + part.size() <= text.size(); ++start) {
        std::size_t matched = 0;
        while (matched < part.size() && (part[matched] == '_' || part[matched] == text[start + matched]))
            ++matched;
        if (matched == part.size())
            return start;
        if (matched >= patience) {
            std::size_t found = BitSearch(part).Find(text.substr(start));
            return found == NOWHERE ? NOWHERE : start + found;
        }
        patience -= matched;
    }
    return NOWHERE;
}

std::size_t find(std::string_view text, std::string_view part) {
    if (part.size() > text.size())
        return NOWHERE;
    bool wild = part.find('_') != NOWHERE;
    return wild ? findWild(text, part) : findPlain(text, part);
}

// Finds the parts between '%' one behind the other. The earliest place of each is as good as any.
bool holdsInOrder(std::string_view text, std::string_view parts) {
    while (!parts.empty()) {
        std::size_t end = std::min(parts.find('%'), parts.size());
        std::string_view part = parts.substr(0, end);
        std::size_t place = find(text, part);
        if (place == NOWHERE)
            return false;
        text.remove_prefix(place + part.size());
        parts.remove_prefix(std::min(end + 1, parts.size()));
    }
    return true;
}

}  // namespace

bool ZelLike(std::string_view text, std::string_view pattern) {
    std::size_t first = pattern.find('%');
    if (first == NOWHERE)
        return text.size() == pattern.size() && startsWith(text.data(), pattern);
    std::size_t last = pattern.rfind('%');
    std::string_view front = pattern.substr(0, first);
    std::string_view back = pattern.substr(last + 1);
    if (text.size() < front.size() + back.size() || !startsWith(text.data(), front))
        return false;
    text.remove_prefix(front.size());
    if (!startsWith(text.data() + text.size() - back.size(), back))
        return false;
    text.remove_suffix(back.size());
    return first == last || holdsInOrder(text, pattern.substr(first + 1, last - first - 1));
}
