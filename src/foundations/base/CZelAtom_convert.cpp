#include <charconv>
#include <cmath>
#include <limits>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtom_number.h"
#include "foundations/port/ZelCodes.h"

namespace {

// The first floats that are out of the range of long long, above and (not included) below.
constexpr float BEYOND_LONG64 = 9223372036854775808.0F;

// Without its fraction, clamped to the range; NaN gives 0.
long long wholeOf(float real) {
    if (std::isnan(real))
        return 0;
    if (real >= BEYOND_LONG64)
        return std::numeric_limits<long long>::max();
    if (real < -BEYOND_LONG64)
        return std::numeric_limits<long long>::min();
    return static_cast<long long>(real);
}

int clampToInt(long long whole) {
    constexpr long long LOWEST = std::numeric_limits<int>::min(), HIGHEST = std::numeric_limits<int>::max();
    return static_cast<int>(whole < LOWEST ? LOWEST : whole > HIGHEST ? HIGHEST : whole);
}

bool fitsInt(long long whole) {
    return whole == clampToInt(whole);
}

bool fitsLong64(float real) {
    return real >= -BEYOND_LONG64 && real < BEYOND_LONG64;
}

// What a number of a text starts with, if it is one of ours: no blank, one sign, no word such as "inf".
bool startsNumber(std::string_view &text) {
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    else if (text.size() > 1 && text.front() == '-')
        return (text[1] >= '0' && text[1] <= '9') || text[1] == '.';
    return !text.empty() && ((text.front() >= '0' && text.front() <= '9') || text.front() == '.');
}

template <class Number>
bool readWholly(std::string_view text, Number *number) {
    if (!startsNumber(text))
        return false;
    const char *end = text.data() + text.size();
    std::from_chars_result result = std::from_chars(text.data(), end, *number);
    return result.ec == std::errc() && result.ptr == end;
}

bool readFloat(std::string_view text, float *number) {
    return readWholly(text, number) && std::isfinite(*number);
}

}  // namespace

int CZelAtom::intOfOther() const {
    return m_heap.type == E_RDTFloat ? clampToInt(wholeOf(m_heap.word.real)) : 0;
}

long long CZelAtom::wholeOfOther() const {
    return m_heap.type == E_RDTFloat ? wholeOf(m_heap.word.real) : 0;
}

int CZelAtom::RACoerce(EZelDataType type) {
    if (m_heap.type == type || RAIsUndefined())
        return E_RCOk;
    if (!RAIsNumber() && m_heap.type != E_RDTText)
        return E_RCBadType;
    bool done = false;
    if (type == E_RDTText)
        done = coerceToText();
    else if (type == E_RDTFloat)
        done = coerceToFloat();
    else if (type == E_RDTInt || type == E_RDTLong || type == E_RDTLong64)
        done = coerceToWhole(type);
    return done ? E_RCOk : E_RCBadType;
}

bool CZelAtom::coerceToText() {
    SZelNumberText text(*this);
    *this = CZelAtom(text.m_bytes, text.m_length);
    return true;
}

bool CZelAtom::coerceToFloat() {
    float value = RAFloat();
    if (m_heap.type == E_RDTText && !readFloat(RATextView(), &value))
        return false;
    *this = CZelAtom(value);
    return true;
}

// An int becomes a long and a long a long64 as it is; every other road checks the target's range.
bool CZelAtom::coerceToWhole(EZelDataType type) {
    long long value = RALongLong();
    if (m_heap.type == E_RDTText && !readWholly(RATextView(), &value))
        return false;
    if (m_heap.type == E_RDTFloat && !fitsLong64(m_heap.word.real))
        return false;
    if (type != E_RDTLong64 && !fitsInt(value))
        return false;
    *this = type == E_RDTInt    ? CZelAtom(static_cast<int>(value))
            : type == E_RDTLong ? CZelAtom(static_cast<long>(value))
                                : CZelAtom(value);
    return true;
}
