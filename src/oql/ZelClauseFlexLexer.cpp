#include "oql/ZelClauseFlexLexer.h"

#include <cstdio>
#include <cstring>
#include <string_view>

#include "oql/CZelTextLexer_scan.h"
#include "oql/ZelClause.tab.h"

namespace {

using ZelScan::NO_TOKEN;

// Lines of clauses are not counted.
std::atomic<int> lineCounter{1};

// Where a keyword is the beginning of another one, the longer stands first.
constexpr struct {
    std::string_view m_word;  // in lower case
    int m_token;
} KEYWORDS[] = {
    {"appendunique", __ZEL_C_APPEND_UNIQUE},
    {"append", __ZEL_C_APPEND},
    {"cat", __ZEL_C_CAT},
    {"delete", __ZEL_C_DELETE},
    {"iptolong", __ZEL_C_IPTOLONG},
    {"length", __ZEL_C_LENGTH},
    {"longtoip", __ZEL_C_LONGTOIP},
    {"lookup", __ZEL_C_LOOKUP},
    {"record_names", __ZEL_C_RECORD_NAMES},
    {"record_values", __ZEL_C_RECORD_VALUES},
    {"regexpmatch", __ZEL_C_REGEXPMATCH},
    {"this", __ZEL_C_THIS},
    {"timestamp", __ZEL_C_TIMESTAMP},
};

// The bytes of names, in sets.
enum Set : unsigned char { LETTER = 1, WORD = 2, DOT = 4, AMPERSAND = 8, DOLLAR = 16 };

unsigned char setsOf(char byte) {
    const unsigned char classes = ZelScan::classOf(byte);
    unsigned char sets = (classes & ZelScan::IN_NAME) != 0 ? WORD : 0;
    if ((classes & ZelScan::BEGIN_MASK) == ZelScan::LETTER)
        sets |= LETTER;
    if (byte == '.')
        sets |= DOT;
    if (byte == '&')
        sets |= AMPERSAND;
    if (byte == '$')
        sets |= DOLLAR;
    return sets;
}

bool beginsWith(std::string_view text, std::string_view keyword) {
    if (text.size() < keyword.size())
        return false;
    for (std::size_t i = 0; i < keyword.size(); ++i) {
        const char letter = text[i];
        if ((letter >= 'A' && letter <= 'Z' ? letter | 0x20 : letter) != keyword[i])
            return false;
    }
    return true;
}

}  // namespace

ZelClauseFlexLexer::ZelClauseFlexLexer() : CZelTextLexer(lineCounter) {}

int ZelClauseFlexLexer::yylex(UZelScanValue *value) {
    int token = NO_TOKEN;
    while (token == NO_TOKEN && m_position < m_end) {
        m_tokenStart = m_position;
        switch (*m_position) {
            case '+':
                return take(1, __ZEL_C_PLUS);
            case '/':
                return take(1, __ZEL_C_DIVIDE);
            case '*':
                return take(1, __ZEL_C_TIMES);
            case ',':
                return take(1, __ZEL_C_COMMA);
            case '(':
                return take(1, __ZEL_C_LBRACK);
            case ')':
                return take(1, __ZEL_C_RBRACK);
            case '-':
                return scanMinus(value);
            case '&':
                token = scanAmpersand(value);
                break;
            case '$':
                token = scanDollar(value);
                break;
            case '`':
                token = scanText(value);
                break;
            case '\n':
                LexerOutput("\n", 1);
                token = skip();
                break;
            case '.':
                return scanNumber(value);
            default:
                if (ZelScan::isDigit(*m_position))
                    return scanNumber(value);
                token = scanKeyword();
        }
    }
    if (token != NO_TOKEN)
        return token;
    m_tokenStart = m_end;
    return 0;
}

void ZelClauseFlexLexer::Message(const char *message) {
    std::printf("ZelClause %s\n", message);
}

int ZelClauseFlexLexer::skip() {
    return take(1, NO_TOKEN);
}

// A name of at least two bytes behind `signs` bytes, or none. A name ends where no byte of the set follows.
int ZelClauseFlexLexer::takeName(int signs, unsigned char beginning, unsigned char inside, int token,
                                 UZelScanValue *value) {
    const char *start = m_position + signs;
    if ((setsOf(byteAt(start)) & beginning) == 0)
        return NO_TOKEN;
    const char *end = start + 1;
    while (end < m_end && (setsOf(*end) & inside) != 0)
        ++end;
    if (end - start < 2)
        return NO_TOKEN;
    value->m_slice = slice(start, end);
    m_position = end;
    return token;
}

int ZelClauseFlexLexer::scanAmpersand(UZelScanValue *value) {
    int token = takeName(1, LETTER | AMPERSAND, WORD | DOT | AMPERSAND, __ZEL_C_AMPERSAND, value);
    if (token == NO_TOKEN && byteAt(m_position + 1) == '$')
        token = takeName(2, LETTER, WORD, __ZEL_C_AMPDOLLAR, value);
    return token != NO_TOKEN ? token : skip();
}

int ZelClauseFlexLexer::scanDollar(UZelScanValue *value) {
    const int token = takeName(1, LETTER | DOLLAR, WORD | DOLLAR, __ZEL_C_DOLLAR, value);
    return token != NO_TOKEN ? token : skip();
}

int ZelClauseFlexLexer::scanMinus(UZelScanValue *value) {
    if (byteAt(m_position + 1) != '>')
        return take(1, __ZEL_C_MINUS);
    const int token = takeName(2, LETTER, WORD, __ZEL_C_OBJIDENT, value);
    return token != NO_TOKEN ? token : take(2, __ZEL_C_OBJ_PTR);
}

int ZelClauseFlexLexer::scanKeyword() {
    const std::string_view text(m_position, static_cast<std::size_t>(m_end - m_position));
    for (const auto &keyword : KEYWORDS)
        if (beginsWith(text, keyword.m_word))
            return take(static_cast<int>(keyword.m_word.size()), keyword.m_token);
    return skip();
}

int ZelClauseFlexLexer::scanNumber(UZelScanValue *value) {
    const char *digitsEnd = ZelScan::skipDigits(m_position, m_end);
    const char *end = byteAt(digitsEnd) == '.' ? ZelScan::skipDigits(digitsEnd + 1, m_end) : digitsEnd;
    end = ZelScan::skipExponent(end, m_end);
    const std::string_view lexeme(m_position, static_cast<std::size_t>(end - m_position));
    m_position = end;
    if (end == digitsEnd) {
        value->m_int = ZelScan::wholeInt(lexeme);
        return __ZEL_C_INTNUM;
    }
    value->m_float = static_cast<float>(ZelScan::realNumber(lexeme));
    return __ZEL_C_APPROXNUM;
}

int ZelClauseFlexLexer::scanText(UZelScanValue *value) {
    const char *start = m_position + 1;
    const void *found = std::memchr(start, '`', static_cast<std::size_t>(m_end - start));
    if (found == nullptr)
        return scanUnclosed();
    const char *end = static_cast<const char *>(found);
    value->m_slice = slice(start, end);
    m_position = end + 1;
    return __ZEL_C_ABS_VAL;
}

// What stands up to the end of the line is dropped. On the last line only the quote is.
int ZelClauseFlexLexer::scanUnclosed() {
    if (!newlineFollows(m_position))
        return skip();
    Message("Unterminated string");
    m_position = static_cast<const char *>(std::memchr(m_position, '\n', static_cast<std::size_t>(m_end - m_position)));
    return NO_TOKEN;
}
