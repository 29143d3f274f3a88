// How CZelTextLexer reads tokens. The longest match wins. A table of rules has
//   IDENT, STRING, APPROXNUM, EQ      token codes
//   HAS_COMPARISONS                   -> <> != < > <= >= are tokens, with codes OBJPOINTER, NEQ, LT, GT, LTE, GTE
//   NAME_SIGNS                        the class of bytes that go on a name
//   Word(name, behind)                the token of a name, NO_TOKEN when the word yields none;
//                                     *behind is moved where more belongs to it
//   Whole(lexeme, value)              the token of an integer
//   Backslash()                       what a backslash means in a string, now
//   Unterminated()                    told of a quote that is never closed, on a line that ends
#pragma once

#include <charconv>
#include <cstring>
#include <limits>

#include "oql/CZelTextLexer.h"

namespace ZelScan {

constexpr int NO_TOKEN = -1;

enum class EBackslash {
    PLAIN,        // nothing
    KEEPS_QUOTE,  // a quote behind it does not close the string; both stay in the value
    ESCAPES       // a quote behind it does not close the string, and escapes are replaced in the value
};

// What a byte can begin, and the sets that it belongs to.
enum Class : unsigned char {
    OTHER = 0,
    BLANK = 1,
    NEWLINE = 2,
    LETTER = 3,
    DIGIT = 4,
    SIGN = 5,
    DOT = 6,
    SLASH = 7,
    QUOTE = 8,
    RELATION = 9,
    BEGIN_MASK = 15,
    IN_NAME = 16,   // letters, digits and _
    AMPERSAND = 32  // & goes on a name in statements and conditions
};

struct SClasses {
    unsigned char m_of[256] = {};
    constexpr SClasses() {
        for (int c = 0; c < 26; ++c)
            m_of['a' + c] = m_of['A' + c] = LETTER | IN_NAME;
        for (int c = '0'; c <= '9'; ++c)
            m_of[c] = DIGIT | IN_NAME;
        set(" \t\r", BLANK);
        set("\n", NEWLINE);
        set("+-", SIGN);
        set(".", DOT);
        set("/", SLASH);
        set("'\"", QUOTE);
        set("=<>!", RELATION);
        set("_", IN_NAME);
        set("&", AMPERSAND);
    }
    constexpr void set(const char *bytes, unsigned char to) {
        for (; *bytes != '\0'; ++bytes)
            m_of[static_cast<unsigned char>(*bytes)] = to;
    }
};
inline constexpr SClasses CLASSES;

inline unsigned char classOf(char byte) {
    return CLASSES.m_of[static_cast<unsigned char>(byte)];
}

inline bool isDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

inline const char *skipDigits(const char *place, const char *end) {
    while (place < end && isDigit(*place))
        ++place;
    return place;
}

// An integer by value; one out of range becomes the nearest one, and *isCut true.
inline long long wholeNumber(std::string_view lexeme, bool *isCut) {
    const char *start = lexeme.data() + (lexeme.front() == '+' ? 1 : 0);
    long long number = 0;
    const auto result = std::from_chars(start, lexeme.data() + lexeme.size(), number);
    *isCut = result.ec == std::errc::result_out_of_range;
    if (!*isCut)
        return number;
    return lexeme.front() == '-' ? std::numeric_limits<long long>::min() : std::numeric_limits<long long>::max();
}

// The low 32 bits of the integer.
inline int wholeInt(std::string_view lexeme) {
    bool isCut = false;
    return static_cast<int>(static_cast<unsigned int>(wholeNumber(lexeme, &isCut)));
}

// A number with a point or an exponent; 0 where no digit precedes the exponent. Too large a one is infinite.
double realNumber(std::string_view lexeme);

// Behind the exponent that stands at `place`, or `place` when none does.
inline const char *skipExponent(const char *place, const char *end) {
    if (place >= end || (*place | 0x20) != 'e')
        return place;
    const char *digits = place + 1;
    if (digits < end && (*digits == '+' || *digits == '-'))
        ++digits;
    const char *behind = skipDigits(digits, end);
    return behind != digits ? behind : place;
}

}  // namespace ZelScan

template <class Rules>
int CZelTextLexer::scan(UZelScanValue *value) {
    while (m_position < m_end) {
        m_tokenStart = m_position;
        const char first = *m_position;
        int token = ZelScan::NO_TOKEN;
        switch (ZelScan::classOf(first) & ZelScan::BEGIN_MASK) {
            case ZelScan::NEWLINE:
                countLine();
                [[fallthrough]];
            case ZelScan::BLANK:
                ++m_position;
                continue;
            case ZelScan::LETTER:
                token = scanWord<Rules>(value);
                break;
            case ZelScan::DIGIT:
                return scanNumber<Rules>(m_position, value);
            case ZelScan::SIGN:
                token = scanSign<Rules>(value);
                break;
            case ZelScan::DOT:
                return scanDot<Rules>(value);
            case ZelScan::SLASH:
                if (skipComment('/'))
                    continue;
                return take(1, '/');
            case ZelScan::QUOTE:
                token = scanString<Rules>(first, value);
                break;
            case ZelScan::RELATION:
                return scanComparison<Rules>(first);
            default:
                return take(1, first != '\0' ? static_cast<unsigned char>(first) : NUL_TOKEN);
        }
        if (token != ZelScan::NO_TOKEN)
            return token;
    }
    m_tokenStart = m_end;
    return 0;
}

template <class Rules>
int CZelTextLexer::scanWord(UZelScanValue *value) {
    const char *start = m_position;
    const char *behind = start + 1;
    while (behind < m_end && (ZelScan::classOf(*behind) & Rules::NAME_SIGNS) != 0)
        ++behind;
    value->m_slice = slice(start, behind);
    const std::string_view name(start, static_cast<std::size_t>(behind - start));
    m_position = behind;
    return Rules::Word(name, &m_position, m_end);
}

// A sign belongs to the number behind it; -- may begin a comment.
template <class Rules>
int CZelTextLexer::scanSign(UZelScanValue *value) {
    const char next = byteAt(m_position + 1);
    if (ZelScan::isDigit(next))
        return scanNumber<Rules>(m_position + 1, value);
    if (next == '.')
        return scanFraction<Rules>(m_position + 2, value);
    if (*m_position == '-' && skipComment('-'))
        return ZelScan::NO_TOKEN;
    if constexpr (Rules::HAS_COMPARISONS) {
        if (*m_position == '-' && next == '>')
            return take(2, Rules::OBJPOINTER);
    }
    return take(1, *m_position);
}

// A point alone is punctuation; with digits or an exponent behind it, a number.
template <class Rules>
int CZelTextLexer::scanDot(UZelScanValue *value) {
    const char *behind = m_position + 1;
    if (!ZelScan::isDigit(byteAt(behind)) && ZelScan::skipExponent(behind, m_end) == behind)
        return take(1, '.');
    return scanFraction<Rules>(behind, value);
}

template <class Rules>
int CZelTextLexer::scanNumber(const char *digits, UZelScanValue *value) {
    const char *behind = ZelScan::skipDigits(digits, m_end);
    if (byteAt(behind) == '.')
        return scanFraction<Rules>(behind + 1, value);
    if (ZelScan::skipExponent(behind, m_end) != behind)
        return scanFraction<Rules>(behind, value);
    const std::string_view lexeme(m_position, static_cast<std::size_t>(behind - m_position));
    m_position = behind;
    return Rules::Whole(lexeme, value);
}

// The rest of a number behind its point, or its exponent.
template <class Rules>
int CZelTextLexer::scanFraction(const char *behind, UZelScanValue *value) {
    behind = ZelScan::skipExponent(ZelScan::skipDigits(behind, m_end), m_end);
    value->m_double = ZelScan::realNumber({m_position, static_cast<std::size_t>(behind - m_position)});
    m_position = behind;
    return Rules::APPROXNUM;
}

// Runs to the next quote of the same kind. Where a backslash keeps a quote, the search goes on from there.
template <class Rules>
int CZelTextLexer::scanString(char quote, UZelScanValue *value) {
    const char *start = m_position + 1;
    const ZelScan::EBackslash backslash = Rules::Backslash();
    for (const char *from = start;; ++from) {
        const void *found = std::memchr(from, quote, static_cast<std::size_t>(m_end - from));
        if (found == nullptr)
            return scanUnclosed<Rules>(quote);
        from = static_cast<const char *>(found);
        if (backslash != ZelScan::EBackslash::PLAIN && from[-1] == '\\') {
            m_position = from;  // if none closes the string, this quote is the one left open
            continue;
        }
        m_position = from + 1;
        value->m_slice = slice(start, from);
        if (backslash == ZelScan::EBackslash::ESCAPES)
            value->m_slice.m_isEscaped =
                std::memchr(start, '\\', static_cast<std::size_t>(from - start)) != nullptr ? 1 : 0;
        return Rules::STRING;
    }
}

// No quote of this kind follows: what stands up to the end of the line is dropped. On the last line the quote
// is a token of its own.
template <class Rules>
int CZelTextLexer::scanUnclosed(char quote) {
    if (!newlineFollows(m_position))
        return take(1, quote);
    Rules::Unterminated();
    m_position = static_cast<const char *>(std::memchr(m_position, '\n', static_cast<std::size_t>(m_end - m_position)));
    return ZelScan::NO_TOKEN;
}

template <class Rules>
int CZelTextLexer::scanComparison(char first) {
    if (first == '=')
        return take(1, Rules::EQ);
    if constexpr (Rules::HAS_COMPARISONS) {
        const char next = byteAt(m_position + 1);
        if (next == '=')
            return take(2, first == '<' ? Rules::LTE : first == '>' ? Rules::GTE : Rules::NEQ);
        if (first == '<' && next == '>')
            return take(2, Rules::NEQ);
        if (first != '!')
            return take(1, first == '<' ? Rules::LT : Rules::GT);
    }
    return take(1, first);
}
