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

// CRC32C (Castagnoli), by the processor's instruction where there is one.
std::uint32_t RompCheck(const unsigned char *data, std::size_t length);

// The head of a body: its length, its check and a check of these two.
void RompStoreHead(unsigned char *place, std::uint32_t bodyLength, std::uint32_t bodyCheck);

// Reads a head; false when it is damaged.
bool RompLoadHead(const unsigned char *place, std::uint32_t *bodyLength, std::uint32_t *bodyCheck);
