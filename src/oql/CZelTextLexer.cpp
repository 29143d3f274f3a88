#include "oql/CZelTextLexer.h"

#include <locale.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>

#include "foundations/base/ZelMalloc.h"
#include "oql/CZelTextLexer_scan.h"

namespace {

char unescaped(char behindBackslash) {
    switch (behindBackslash) {
        case 'b':
            return '\b';
        case 'n':
            return '\n';
        case 't':
            return '\t';
        default:
            return behindBackslash;
    }
}

// Writes the text to `out`, which has room for it, and ends it.
void copyUnescaped(std::string_view text, char *out) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size())
            *out++ = unescaped(text[++i]);
        else
            *out++ = text[i];
    }
    *out = '\0';
}

// By the rules of the C locale, whatever the process has set.
double realOutOfRange(std::string_view lexeme) {
    static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
    return strtod_l(std::string(lexeme).c_str(), nullptr, plain);
}

}  // namespace

double ZelScan::realNumber(std::string_view lexeme) {
    const char *start = lexeme.data() + (lexeme.front() == '+' ? 1 : 0);
    double number = 0;
    const auto result = std::from_chars(start, lexeme.data() + lexeme.size(), number);
    return result.ec == std::errc::result_out_of_range ? realOutOfRange(lexeme) : number;
}

void CZelTextLexer::yy_switch_to_buffer(SZelScanBuffer *buffer) {
    saveBuffer();
    m_buffer = buffer;
    loadBuffer();
}

SZelScanBuffer *CZelTextLexer::yy_create_buffer(const char *text, unsigned int length) {
    return new SZelScanBuffer{text, length, text};
}

void CZelTextLexer::yy_delete_buffer(SZelScanBuffer *buffer) {
    if (buffer == m_buffer) {
        m_buffer = nullptr;
        loadBuffer();
    }
    if (buffer != &m_own)
        delete buffer;
}

void CZelTextLexer::yyrestart(const char *text, unsigned int length) {
    if (m_buffer == nullptr)
        m_buffer = &m_own;
    *m_buffer = {text, length, text};
    loadBuffer();
}

void CZelTextLexer::switch_streams(std::ostream *output) {
    if (output != nullptr)
        m_output = output;
}

int CZelTextLexer::LexerInput(char *buffer, int maximum) {
    const int count = static_cast<int>(std::min<std::ptrdiff_t>(maximum, m_end - m_position));
    if (count < 1)
        return count;
    std::memcpy(buffer, m_position, static_cast<std::size_t>(count));
    m_position += count;
    return count;
}

void CZelTextLexer::LexerOutput(const char *buffer, int size) {
    (m_output != nullptr ? *m_output : std::cout).write(buffer, size);
}

void CZelTextLexer::LexerError(const char *message) {
    std::fprintf(stderr, "%s\n", message);
    std::exit(2);
}

void CZelTextLexer::ReinitialiseBuffer() {
    if (m_buffer == nullptr)
        return;
    m_buffer->m_position = m_buffer->m_base;
    loadBuffer();
}

CZelAtom CZelTextLexer::SliceAtom(SZelSlice slice) const {
    if (slice.m_isEscaped != 0)
        return CZelAtom(SliceCopy(slice));
    return CZelAtom(m_base + slice.m_start, slice.m_length);
}

char *CZelTextLexer::SliceCopy(SZelSlice slice) const {
    const std::string_view text = SliceText(slice);
    if (slice.m_isEscaped == 0)
        return ZelStrDup(text.data(), text.size());
    char *copy = static_cast<char *>(ZelMalloc(text.size() + 1));
    copyUnescaped(text, copy);
    return copy;
}

void CZelTextLexer::TokenPlace(int *line, int *column) const {
    const std::string_view before(m_base, static_cast<std::size_t>(m_tokenStart - m_base));
    *line = 1 + static_cast<int>(std::count(before.begin(), before.end(), '\n'));
    const std::size_t newline = before.rfind('\n');  // npos + 1 is 0
    *column = 1 + static_cast<int>(before.size() - (newline + 1));
}

void CZelTextLexer::readText(const char *text, unsigned int length) {
    m_own = {text, length, text};
    yy_switch_to_buffer(&m_own);
}

// Behind the two characters of a comment mark lies a comment if its line ends; the newline stays. Without a
// newline the mark is no comment.
bool CZelTextLexer::skipComment(char mark) {
    if (byteAt(m_position + 1) != mark || !newlineFollows(m_position))
        return false;
    m_position = static_cast<const char *>(std::memchr(m_position, '\n', static_cast<std::size_t>(m_end - m_position)));
    return true;
}

bool CZelTextLexer::newlineFollows(const char *place) {
    if (m_lastNewline == nullptr) {
        const void *found = memrchr(m_base, '\n', static_cast<std::size_t>(m_end - m_base));
        m_lastNewline = found != nullptr ? static_cast<const char *>(found) : m_end;
    }
    return m_lastNewline != m_end && place <= m_lastNewline;
}

void CZelTextLexer::loadBuffer() {
    const SZelScanBuffer state = m_buffer != nullptr ? *m_buffer : SZelScanBuffer();
    m_base = state.m_base;
    m_position = state.m_position;
    m_end = m_base + std::min(state.m_length, MAX_LENGTH);
    m_tokenStart = m_position;
    m_lastNewline = nullptr;
}

void CZelTextLexer::saveBuffer() {
    if (m_buffer != nullptr)
        m_buffer->m_position = m_position;
}
