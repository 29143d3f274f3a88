#include "foundations/base/ZelCrc32c.h"

#include <array>

#include "foundations/base/ZelCrc32c_instruction.h"
#include "foundations/base/ZelShortBytes.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace {

constexpr std::size_t CRC_PAGE = 512, CRC_HOLE = 40;  // bytes

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

// What a register becomes when a run of zero bytes goes through it, a table for each of its bytes.
using Shift = std::array<std::array<std::uint32_t, 256>, 4>;

constexpr std::uint32_t throughZeros(std::uint32_t crc, std::size_t bytes) {
    for (; bytes > 0; --bytes)
        crc = (crc >> 8) ^ TABLES[0][crc & 0xFFU];
    return crc;
}

// The whole is the sum of what each bit becomes.
constexpr Shift makeShift(std::size_t bytes) {
    Shift shift{};
    for (std::size_t place = 0; place < shift.size(); ++place) {
        for (std::size_t bit = 0; bit < 8; ++bit) {
            const std::uint32_t effect = throughZeros(1U << (8 * place + bit), bytes);
            for (std::size_t byte = 0; byte < 256; ++byte)
                shift[place][byte] ^= (byte >> bit & 1U) != 0 ? effect : 0U;
        }
    }
    return shift;
}

#if defined(__x86_64__)
constexpr std::size_t STREAM = 144;  // bytes; three of them make up most of a page of a cache file
constexpr Shift STREAM_SHIFT = makeShift(STREAM);

std::uint32_t shifted(std::uint64_t crc) {
    return STREAM_SHIFT[0][crc & 0xFFU] ^ STREAM_SHIFT[1][crc >> 8 & 0xFFU] ^ STREAM_SHIFT[2][crc >> 16 & 0xFFU] ^
           STREAM_SHIFT[3][crc >> 24 & 0xFFU];
}

// The instruction takes three cycles but can begin in every one, so three runs side by side keep it busy; see Gopal
// et al., "Fast CRC Computation for iSCSI Polynomial Using CRC32 Instruction", 2011.
std::uint64_t threeStreams(std::uint64_t crc, const unsigned char *bytes) {
    std::uint64_t second = 0, third = 0;
    for (std::size_t i = 0; i < STREAM; i += 8) {
        crc = ZelCrc32cStep(crc, ZelLoadWord<std::uint64_t>(bytes + i));
        second = ZelCrc32cStep(second, ZelLoadWord<std::uint64_t>(bytes + STREAM + i));
        third = ZelCrc32cStep(third, ZelLoadWord<std::uint64_t>(bytes + 2 * STREAM + i));
    }
    return shifted(shifted(crc) ^ second) ^ third;
}

std::uint32_t byInstruction(std::uint64_t crc, const unsigned char *bytes, std::size_t length) {
    for (; length >= 3 * STREAM; bytes += 3 * STREAM, length -= 3 * STREAM)
        crc = threeStreams(crc, bytes);
    for (; length >= 8; bytes += 8, length -= 8)
        crc = ZelCrc32cStep(crc, ZelLoadWord<std::uint64_t>(bytes));
    for (; length > 0; ++bytes, --length)
        crc = ZelCrc32cStep(crc, *bytes);
    return static_cast<std::uint32_t>(crc);
}

// x to the n-th modulo the polynomial.
constexpr int powerOfX(int n) {
    std::uint32_t power = 0x80000000U;
    for (; n > 0; --n)
        power = (power >> 1) ^ ((power & 1U) != 0 ? POLYNOMIAL : 0U);
    return static_cast<int>(power);
}

// What 16 bytes are multiplied with, half by half, to count as if so many zeros came behind them; 0 for nothing.
template <int BYTES>
constexpr int LOW = BYTES != 0 ? powerOfX(8 * BYTES + 31) : 0;
template <int BYTES>
constexpr int HIGH = BYTES != 0 ? powerOfX(8 * BYTES - 33) : 0;

#define QUINTOR_VECTORS __attribute__((target("avx512f,vpclmulqdq,sse4.2")))

// The same for four times 16 bytes, the first ones in the lowest place.
template <int FIRST, int SECOND = FIRST, int THIRD = FIRST, int FOURTH = FIRST>
QUINTOR_VECTORS inline __m512i moved(__m512i bytes) {
    const __m512i by = _mm512_set_epi32(0, HIGH<FOURTH>, 0, LOW<FOURTH>, 0, HIGH<THIRD>, 0, LOW<THIRD>, 0, HIGH<SECOND>,
                                        0, LOW<SECOND>, 0, HIGH<FIRST>, 0, LOW<FIRST>);
    return _mm512_xor_si512(_mm512_clmulepi64_epi128(bytes, by, 0x00), _mm512_clmulepi64_epi128(bytes, by, 0x11));
}

// Four sums side by side, then one, of which each quarter is moved to the end; see Gopal et al., "Fast CRC Computation
// for Generic Polynomials Using PCLMULQDQ Instruction", 2009.
QUINTOR_VECTORS std::uint32_t pageByVectors(const unsigned char *page) {
    constexpr __mmask16 BUT_HOLE = 0xFFFF & ~(1 << CRC_HOLE / 4);
    constexpr int WIDTH = 64;
    const __m512i start = _mm512_zextsi128_si512(_mm_cvtsi32_si128(-1));
    __m512i sums[4] = {_mm512_xor_si512(_mm512_maskz_loadu_epi32(BUT_HOLE, page), start)};
    for (int i = 1; i < 4; ++i)
        sums[i] = _mm512_loadu_si512(page + i * WIDTH);
    for (int i = 0; i < 4; ++i)
        sums[i] = _mm512_xor_si512(moved<4 * WIDTH>(sums[i]), _mm512_loadu_si512(page + (i + 4) * WIDTH));
    const __m512i sum = _mm512_xor_si512(_mm512_xor_si512(moved<3 * WIDTH>(sums[0]), moved<2 * WIDTH>(sums[1])),
                                         _mm512_xor_si512(moved<WIDTH>(sums[2]), sums[3]));
    const __m512i last = _mm512_maskz_mov_epi64(0xC0, sum);
    const __m512i ends = _mm512_xor_si512(moved<48, 32, 16, 0>(sum), last);
    alignas(WIDTH) std::uint64_t words[WIDTH / 8];
    _mm512_store_si512(words, ends);
    const std::uint64_t crc = __builtin_ia32_crc32di(0, words[0] ^ words[2] ^ words[4] ^ words[6]);
    return ~static_cast<std::uint32_t>(__builtin_ia32_crc32di(crc, words[1] ^ words[3] ^ words[5] ^ words[7]));
}

const bool g_hasVectors = __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("vpclmulqdq") != 0;
#endif

std::uint32_t byTable(std::uint32_t crc, const unsigned char *bytes, std::size_t length) {
    for (; length >= SLICES; bytes += SLICES, length -= SLICES)
        crc = eightBytes(crc, bytes);
    for (; length > 0; ++bytes, --length)
        crc = oneByte(crc, *bytes);
    return crc;
}

}  // namespace

std::uint32_t ZelCrc32cByTable(const void *data, std::size_t length) {
    return ~byTable(0xFFFFFFFFU, static_cast<const unsigned char *>(data), length);
}

std::uint32_t ZelCrc32c(const void *bytes, std::size_t length) {
    return ZelCrc32cBehind(0, bytes, length);
}

std::uint32_t ZelCrc32cBehind(std::uint32_t former, const void *data, std::size_t length) {
    const auto *bytes = static_cast<const unsigned char *>(data);
#if defined(__x86_64__)
    if (g_hasCrc32c)
        return ~byInstruction(~former, bytes, length);
#endif
    return ~byTable(~former, bytes, length);
}

std::uint32_t ZelCrc32cOfPage(const unsigned char *page) {
#if defined(__x86_64__)
    if (g_hasVectors)
        return pageByVectors(page);
#endif
    return ZelCrc32cOfPageInParts(page);
}

std::uint32_t ZelCrc32cOfPageInParts(const unsigned char *page) {
    constexpr std::size_t WORD = 8, BEHIND = CRC_HOLE + WORD;
    unsigned char word[WORD] = {};
    std::memcpy(word + WORD / 2, page + CRC_HOLE + WORD / 2, WORD / 2);
    const std::uint32_t before = ZelCrc32cBehind(ZelCrc32c(page, CRC_HOLE), word, sizeof word);
    return ZelCrc32cBehind(before, page + BEHIND, CRC_PAGE - BEHIND);
}
