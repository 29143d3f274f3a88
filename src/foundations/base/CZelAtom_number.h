// The text of a number: whole numbers in decimal, a float as the shortest text that reads back, always with
// '.' or 'e' so that it reads back as a float. Infinity is 1e999, NaN "nan".
#pragma once

#include <cstddef>

class CZelAtom;

struct SZelNumberText {
    explicit SZelNumberText(const CZelAtom &number);  // Requires: a numeric atom

    char m_bytes[32];  // with NUL
    std::size_t m_length;
};
