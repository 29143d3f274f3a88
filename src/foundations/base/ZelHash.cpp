#include "foundations/base/ZelHash.h"

#include <cstring>
#include <random>

namespace {

constexpr std::uint64_t ODD_A = 0xA0761D6478BD642FU;
constexpr std::uint64_t ODD_B = 0xE7037ED1A0B428DBU;

__extension__ using Wide = unsigned __int128;

std::uint64_t fold(std::uint64_t left, std::uint64_t right) {
    Wide product = Wide{left} * right;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

std::uint64_t processSeed() {
    static const std::uint64_t seed = [] {
        std::random_device source;
        return std::uint64_t{source()} << 32 | source();
    }();
    return seed;
}

template <class Word>
std::uint64_t load(const char *text) {
    Word word;
    std::memcpy(&word, text, sizeof(word));
    return word;
}

// Up to eight bytes as one word, by reads that overlap: names are short, and this is most of their cost.
std::uint64_t lastWord(const char *text, std::size_t length) {
    if (length == sizeof(std::uint64_t))
        return load<std::uint64_t>(text);
    if (length >= sizeof(std::uint32_t))
        return load<std::uint32_t>(text) | load<std::uint32_t>(text + length - sizeof(std::uint32_t)) << 32;
    if (length == 0)
        return 0;
    return load<unsigned char>(text) | load<unsigned char>(text + length / 2) << 8 |
           load<unsigned char>(text + length - 1) << 16;
}

}  // namespace

std::uint64_t ZelHashText(const char *text, std::size_t length) {
    std::uint64_t hash = processSeed() ^ length * ODD_A;
    for (; length > sizeof(std::uint64_t); text += sizeof(std::uint64_t), length -= sizeof(std::uint64_t))
        hash = fold(hash ^ load<std::uint64_t>(text) ^ ODD_B, ODD_A);
    return fold(fold(hash ^ lastWord(text, length) ^ ODD_B, ODD_A) ^ ODD_A, ODD_B);
}
