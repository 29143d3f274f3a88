// The processor's own step of CRC32C, for sources that check runs of bytes.
#pragma once

#include <cstdint>

#if defined(__x86_64__)

// Does this processor have it? Asked once, before main; until then no.
inline const bool g_hasCrc32c = __builtin_cpu_supports("sse4.2") != 0;

// Takes eight more bytes into a check. Written as the instruction itself, so that code for any processor can hold it
// inline; it runs only where g_hasCrc32c is true.
inline std::uint64_t ZelCrc32cStep(std::uint64_t check, std::uint64_t word) {
    __asm__("crc32q %1, %0" : "+r"(check) : "rm"(word));
    return check;
}

inline std::uint64_t ZelCrc32cStep(std::uint64_t check, unsigned char byte) {
    __asm__("crc32b %1, %0" : "+r"(check) : "rm"(byte));
    return check;
}

#else

inline constexpr bool g_hasCrc32c = false;

#endif
