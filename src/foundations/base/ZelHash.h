// Hash values of the base layer's tables. A table of 2^n places uses the top n bits.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundations/port/ZelExport.h"

// Spreads a number or an address over all bits.
inline std::uint64_t ZelHashWord(std::uint64_t word) {
    constexpr std::uint64_t GOLDEN_RATIO = 0x9E3779B97F4A7C15U;
    return (word ^ word >> 32) * GOLDEN_RATIO;
}

// Differs from process to process, so that nobody can make texts up that all fall on one place.
QUINTOR_API std::uint64_t ZelHashText(const char *text, std::size_t length);
