// The parts of the packed form that writer and reader share; the layout is told in CZelROMPer.cpp.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

constexpr std::size_t ROMP_HEAD_SIZE = 12;
constexpr unsigned char ROMP_NO_VALUE = 15;  // type of what isn't there, beside those of EZelDataType

template <class Number>
Number RompOrder(Number number) {
    if constexpr (std::endian::native == std::endian::big)
        return number;
    else if constexpr (sizeof(Number) == 4)
        return __builtin_bswap32(number);
    else
        return __builtin_bswap64(number);
}

template <class Number>
void RompStore(unsigned char *place, Number number) {
    number = RompOrder(number);
    std::memcpy(place, &number, sizeof(number));
}

template <class Number>
Number RompLoad(const unsigned char *place) {
    Number number;
    std::memcpy(&number, place, sizeof(number));
    return RompOrder(number);
}

// The check of a body: CRC32C.
std::uint32_t RompCheck(const unsigned char *data, std::size_t length);

// How many bytes from `data` on are whole entries with good checks. Told for all at once: one loop over heads and
// bodies alone runs several times as fast as a check between the values of each entry.
std::size_t RompIntact(const unsigned char *data, std::size_t length);

// Is this one value, its type in front, that can be decoded? A good check does not say so.
bool RompIsValue(const unsigned char *place, const unsigned char *end);

// Writes the checks into the heads of entries that hold nothing but their lengths yet.
void RompSeal(unsigned char *data, std::size_t length);

// The check of a head, over its two numbers.
inline std::uint32_t RompHeadCheck(std::uint32_t bodyLength, std::uint32_t bodyCheck) {
    constexpr std::uint64_t ODD_A = 0xA0761D6478BD642FU, ODD_B = 0xE7037ED1A0B428DBU;
    std::uint64_t word = ((std::uint64_t{bodyLength} << 32 | bodyCheck) ^ ODD_B) * ODD_A;
    return static_cast<std::uint32_t>((word ^ word >> 32) * ODD_B >> 32);
}

inline void RompStoreHead(unsigned char *place, std::uint32_t bodyLength, std::uint32_t bodyCheck) {
    RompStore(place, std::uint64_t{bodyLength} << 32 | bodyCheck);
    RompStore(place + 8, RompHeadCheck(bodyLength, bodyCheck));
}

// Reads a head; false when it is damaged.
inline bool RompLoadHead(const unsigned char *place, std::uint32_t *bodyLength, std::uint32_t *bodyCheck) {
    const std::uint64_t both = RompLoad<std::uint64_t>(place);
    *bodyLength = static_cast<std::uint32_t>(both >> 32);
    *bodyCheck = static_cast<std::uint32_t>(both);
    return RompLoad<std::uint32_t>(place + 8) == RompHeadCheck(*bodyLength, *bodyCheck);
}
