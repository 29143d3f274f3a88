#include "foundations/base/ZelCrc32c.h"

#include <array>
#include <cstring>

namespace {

constexpr std::uint32_t POLYNOMIAL = 0x82F63B78U;  // its bits reversed
constexpr std::size_t SLICES = 8;

using Tables = std::array<std::array<std::uint32_t, 256>, SLICES>;

constexpr Tables makeTables() {
    Tables tables{};
    for (std::uint32_t byte = 0; byte < 256; ++byte) {
        std::uint32_t crc = byte;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ ((crc & 1U) != 0 ? POLYNOMIAL : 0U);
        tables[0][byte] = crc;
    }
    for (std::size_t slice = 1; slice < SLICES; ++slice)
        for (std::size_t byte = 0; byte < 256; ++byte)
            tables[slice][byte] = (tables[slice - 1][byte] >> 8) ^ tables[0][tables[slice - 1][byte] & 0xFFU];
    return tables;
}

constexpr Tables TABLES = makeTables();

std::uint32_t oneByte(std::uint32_t crc, unsigned char byte) {
    return (crc >> 8) ^ TABLES[0][(crc ^ byte) & 0xFFU];
}

std::uint32_t eightBytes(std::uint32_t crc, const unsigned char *bytes) {
    std::uint32_t result = 0;
    for (std::size_t i = 0; i < SLICES; ++i) {
        const std::uint32_t old = i < 4 ? (crc >> (8 * i)) & 0xFFU : 0U;
        result ^= TABLES[SLICES - 1 - i][(bytes[i] ^ old) & 0xFFU];
    }
    return result;
}

#if defined(__x86_64__)
__attribute__((target("sse4.2"))) std::uint32_t byInstruction(const unsigned char *bytes, std::size_t length) {
    std::uint64_t crc = 0xFFFFFFFFU;
    for (; length >= 8; bytes += 8, length -= 8) {
        unsigned long long word;
        std::memcpy(&word, bytes, sizeof word);
        crc = __builtin_ia32_crc32di(crc, word);
    }
    auto rest = static_cast<std::uint32_t>(crc);
    for (; length > 0; ++bytes, --length)
        rest = __builtin_ia32_crc32qi(rest, *bytes);
    return ~rest;
}
#endif

}  // namespace

std::uint32_t ZelCrc32cByTable(const void *data, std::size_t length) {
    const auto *bytes = static_cast<const unsigned char *>(data);
    std::uint32_t crc = 0xFFFFFFFFU;
    for (; length >= SLICES; bytes += SLICES, length -= SLICES)
        crc = eightBytes(crc, bytes);
    for (; length > 0; ++bytes, --length)
        crc = oneByte(crc, *bytes);
    return ~crc;
}

std::uint32_t ZelCrc32c(const void *bytes, std::size_t length) {
#if defined(__x86_64__)
    static const bool hasInstruction = __builtin_cpu_supports("sse4.2") != 0;
    if (hasInstruction)
        return byInstruction(static_cast<const unsigned char *>(bytes), length);
#endif
    return ZelCrc32cByTable(bytes, length);
}
