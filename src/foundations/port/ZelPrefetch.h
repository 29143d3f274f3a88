// Asking the memory for what will be read soon.
#pragma once

#include <cstdint>

// For the cache line of an address; any address will do, also one that is nobody's.
//
// The empty statement is an effect in the compiler's eyes. Without it g++ takes a function that only asks ahead for
// one that does nothing, and leaves out calls of it that it has not expanded in place.
[[gnu::always_inline]] inline void ZelPrefetch(const void *place) {
    __builtin_prefetch(place);
    asm volatile("");
}

// For all cache lines of [from, to).
inline void ZelPrefetchLines(const void *from, const void *to) {
    constexpr std::uintptr_t CACHE_LINE = 64;
    const std::uintptr_t first = reinterpret_cast<std::uintptr_t>(from) / CACHE_LINE * CACHE_LINE;
    for (auto line = first; line < reinterpret_cast<std::uintptr_t>(to); line += CACHE_LINE)
        ZelPrefetch(reinterpret_cast<const void *>(line));
}
