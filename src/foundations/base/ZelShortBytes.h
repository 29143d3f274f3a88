// Copying, comparing and searching runs of bytes that are mostly short, as names and values are: for them a call of
// the C library costs more than its work. Words that overlap cover any length without a loop, and nothing outside of
// the run is read or written. Longer runs go to the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

template <class Word>
Word ZelLoadWord(const void *place) {
    Word word;
    std::memcpy(&word, place, sizeof(word));
    return word;
}

namespace ZelShortBytes {

constexpr std::size_t WORD = sizeof(std::uint64_t), HALF = sizeof(std::uint32_t);

// The first and last `Size` bytes, which overlap or meet.
template <std::size_t Size>
void CopyEnds(char *place, const char *bytes, std::size_t length) {
    char first[Size], last[Size];
    std::memcpy(first, bytes, Size);
    std::memcpy(last, bytes + length - Size, Size);
    std::memcpy(place, first, Size);
    std::memcpy(place + length - Size, last, Size);
}

template <class Word>
bool SameEnds(const char *left, const char *right, std::size_t length) {
    const std::size_t last = length - sizeof(Word);
    return ((ZelLoadWord<Word>(left) ^ ZelLoadWord<Word>(right)) |
            (ZelLoadWord<Word>(left + last) ^ ZelLoadWord<Word>(right + last))) == 0;
}

// Not zero when a byte of the word is.
template <class Word>
Word ZeroByte(Word word) {
    constexpr Word ONES = static_cast<Word>(0x0101010101010101U);
    return (word - ONES) & ~word & static_cast<Word>(ONES << 7);
}

template <class Word>
bool HoldsNulAtEnds(const char *bytes, std::size_t length) {
    return (ZeroByte(ZelLoadWord<Word>(bytes)) | ZeroByte(ZelLoadWord<Word>(bytes + length - sizeof(Word)))) != 0;
}

}  // namespace ZelShortBytes

inline void ZelCopyBytes(void *place, const void *source, std::size_t length) {
    using namespace ZelShortBytes;
    char *to = static_cast<char *>(place);
    const char *from = static_cast<const char *>(source);
    if (length > 4 * WORD)
        std::memcpy(to, from, length);
    else if (length >= 2 * WORD)
        CopyEnds<2 * WORD>(to, from, length);
    else if (length >= WORD)
        CopyEnds<WORD>(to, from, length);
    else if (length >= HALF)
        CopyEnds<HALF>(to, from, length);
    else
        for (std::size_t i = 0; i < length; ++i)
            to[i] = from[i];
}

inline bool ZelSameBytes(const char *left, const char *right, std::size_t length) {
    using namespace ZelShortBytes;
    if (length > 2 * WORD)
        return std::memcmp(left, right, length) == 0;
    if (length >= WORD)
        return SameEnds<std::uint64_t>(left, right, length);
    if (length >= HALF)
        return SameEnds<std::uint32_t>(left, right, length);
    for (std::size_t i = 0; i < length; ++i)
        if (left[i] != right[i])
            return false;
    return true;
}

inline bool ZelHoldsNul(const char *bytes, std::size_t length) {
    using namespace ZelShortBytes;
    if (length > 4 * WORD)
        return std::memchr(bytes, 0, length) != nullptr;
    if (length > 2 * WORD)
        return HoldsNulAtEnds<std::uint64_t>(bytes, 2 * WORD) ||
               HoldsNulAtEnds<std::uint64_t>(bytes + length - 2 * WORD, 2 * WORD);
    if (length >= WORD)
        return HoldsNulAtEnds<std::uint64_t>(bytes, length);
    if (length >= HALF)
        return HoldsNulAtEnds<std::uint32_t>(bytes, length);
    for (std::size_t i = 0; i < length; ++i)
        if (bytes[i] == '\0')
            return true;
    return false;
}
