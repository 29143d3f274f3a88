// What a scanner tells about a token beside its code: 8 bytes.
#pragma once

#include <cstdint>

// Where the text of a name or of a string without its quotes lies in the scanned text, so that reading a
// token makes nothing. It means something as long as the scanner lives and reads that text.
struct SZelSlice {
    std::uint32_t m_start;
    std::uint32_t m_length : 31;
    std::uint32_t m_isEscaped : 1;  // each backslash stands for itself and the character behind it
};

union UZelScanValue {
    SZelSlice m_slice;     // names and strings
    int m_int;             // integers of 32 bits
    long long m_longLong;  // integers of 64 bits
    double m_double;       // numbers with a point or an exponent
    float m_float;         // those of clauses
};
static_assert(sizeof(UZelScanValue) == 8);
