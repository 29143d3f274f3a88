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

}  // namespace

std::uint64_t ZelHashText(const char *text, std::size_t length) {
    std::uint64_t hash = processSeed() ^ length * ODD_A;
    while (length != 0) {
        std::uint64_t word = 0;
        std::size_t step = length < sizeof(word) ? length : sizeof(word);
        std::memcpy(&word, text, step);
        hash = fold(hash ^ word ^ ODD_B, ODD_A);
        text += step;
        length -= step;
    }
    return fold(hash ^ ODD_A, ODD_B);
}
