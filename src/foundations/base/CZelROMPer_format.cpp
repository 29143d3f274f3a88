#include "foundations/base/CZelROMPer_format.h"

#include <array>
#include <atomic>

#if defined(__x86_64__)
#include <nmmintrin.h>
#endif

namespace {

constexpr std::uint32_t START = 0xFFFFFFFFU;
constexpr std::uint32_t REVERSED_POLYNOMIAL = 0x82F63B78U;

using Tables = std::array<std::array<std::uint32_t, 256>, 8>;

// Table n gives the effect of a byte that n further bytes follow.
constexpr Tables makeTables() {
    Tables tables{};
    for (std::uint32_t byte = 0; byte < 256; ++byte) {
        std::uint32_t check = byte;
        for (int bit = 0; bit < 8; ++bit)
            check = check >> 1 ^ (check & 1U) * REVERSED_POLYNOMIAL;
        tables[0][byte] = check;
    }
    for (std::size_t n = 1; n < tables.size(); ++n) {
        for (std::size_t byte = 0; byte < 256; ++byte)
            tables[n][byte] = tables[n - 1][byte] >> 8 ^ tables[0][tables[n - 1][byte] & 255U];
    }
    return tables;
}

constexpr Tables TABLES = makeTables();

std::uint32_t stepByte(std::uint32_t check, unsigned char byte) {
    return check >> 8 ^ TABLES[0][(check ^ byte) & 255U];
}

std::uint32_t checkByTables(std::uint32_t check, const unsigned char *data, std::size_t length) {
    for (; length >= 8; data += 8, length -= 8) {
        std::uint32_t next = 0;
        for (std::size_t i = 0; i < 8; ++i) {
            std::uint32_t byte = data[i] ^ (i < 4 ? check >> 8 * i & 255U : 0U);
            next ^= TABLES[7 - i][byte];
        }
        check = next;
    }
    for (; length != 0; ++data, --length)
        check = stepByte(check, *data);
    return check;
}

using Checker = std::uint32_t (*)(std::uint32_t, const unsigned char *, std::size_t);

#if defined(__x86_64__)
__attribute__((target("sse4.2"))) std::uint32_t checkByProcessor(std::uint32_t check, const unsigned char *data,
                                                                 std::size_t length) {
    std::uint64_t wide = check;
    std::uint64_t word;
    for (; length >= sizeof(word); data += sizeof(word), length -= sizeof(word)) {
        std::memcpy(&word, data, sizeof(word));
        wide = _mm_crc32_u64(wide, word);
    }
    check = static_cast<std::uint32_t>(wide);
    std::uint32_t half;
    if (length >= sizeof(half)) {
        std::memcpy(&half, data, sizeof(half));
        check = _mm_crc32_u32(check, half);
        data += sizeof(half);
        length -= sizeof(half);
    }
    for (; length != 0; ++data, --length)
        check = _mm_crc32_u8(check, *data);
    return check;
}

Checker best() {
    __builtin_cpu_init();
    return __builtin_cpu_supports("sse4.2") ? checkByProcessor : checkByTables;
}
#else
Checker best() {
    return checkByTables;
}
#endif

std::uint32_t checkAtFirst(std::uint32_t check, const unsigned char *data, std::size_t length);

std::atomic<Checker> g_checker{checkAtFirst};

std::uint32_t checkAtFirst(std::uint32_t check, const unsigned char *data, std::size_t length) {
    g_checker.store(best(), std::memory_order_relaxed);
    return g_checker.load(std::memory_order_relaxed)(check, data, length);
}

}  // namespace

std::uint32_t RompCheck(const unsigned char *data, std::size_t length) {
    return ~g_checker.load(std::memory_order_relaxed)(START, data, length);
}

std::uint32_t RompCheckByTables(const unsigned char *data, std::size_t length) {
    return ~checkByTables(START, data, length);
}
