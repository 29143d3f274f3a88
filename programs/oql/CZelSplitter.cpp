#include "programs/oql/CZelSplitter.h"

#include <cctype>
#include <cstring>

#include "foundations/base/ZelEscape.h"

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

int kindOf(char quote) {
    return quote == '"' ? 1 : 0;
}

}  // namespace

void CZelSplitter::Feed(std::string_view text) {
    m_text.erase(0, m_begin);
    m_counted -= m_begin;
    m_start -= m_begin;
    m_position -= m_begin;
    m_opened -= m_begin;
    m_begin = 0;
    m_text += text;
}

void CZelSplitter::Finish() {
    if (!m_text.empty() && m_text.back() != '\n')
        m_text += '\n';
    m_finished = true;
}

void CZelSplitter::Drop() {
    count(m_text.size());
    m_begin = m_start = m_position = m_opened = m_text.size();
    m_state = GAP;
    m_quote = '\0';
    m_inComment = m_ended = false;
}

bool CZelSplitter::Next(SZelPiece &piece) {
    while (!m_ended && step()) {
    }
    if (!m_ended && !(m_finished && m_state != GAP))
        return false;
    give(piece, m_position);
    return true;
}

// Goes on by one token, or by what there is of it. False when that needs more text.
bool CZelSplitter::step() {
    if (m_quote != '\0' && (m_finished || m_position < m_text.size()))
        return stepString();
    if (m_position >= m_text.size())
        return false;
    if (m_inComment)
        return stepComment();
    if (m_state == COMMAND)
        return stepCommand();
    char c = m_text[m_position];
    bool mayBeTwo = c == '-' || c == '/';
    if (mayBeTwo && m_position + 1 == m_text.size() && !m_finished)
        return false;
    if (mayBeTwo && commentBegins()) {
        m_inComment = true;
        return true;
    }
    if (m_state == GAP && !isBlank(c) && !begin())
        return false;
    if (c == '\'' || c == '"') {
        m_quote = c;
        m_opened = m_position;
    }
    m_ended = c == ';';
    ++m_position;
    return true;
}

bool CZelSplitter::commentBegins() const {
    return m_position + 1 < m_text.size() && m_text[m_position] == m_text[m_position + 1];
}

// A statement or a command begins here. False when the next character has to be known for that.
bool CZelSplitter::begin() {
    bool point = m_text[m_position] == '.';
    if (point && m_position + 1 == m_text.size() && !m_finished)
        return false;
    bool letter = m_position + 1 < m_text.size() && std::isalpha(static_cast<unsigned char>(m_text[m_position + 1]));
    m_state = point && letter ? COMMAND : STATEMENT;
    m_start = m_position;
    return true;
}

// The line's end is left to be read as a blank.
bool CZelSplitter::stepComment() {
    std::size_t end = m_text.find('\n', m_position);
    m_inComment = end == std::string::npos;
    m_position = m_inComment ? m_text.size() : end;
    return !m_inComment;
}

bool CZelSplitter::stepCommand() {
    std::size_t end = m_text.find('\n', m_position);
    m_ended = end != std::string::npos;
    m_position = m_ended ? end : m_text.size();
    return m_ended;
}

bool CZelSplitter::stepString() {
    bool escape = ZelEscapeIsOn();
    auto &unclosed = m_unclosed[kindOf(m_quote)];
    bool hopeless = m_finished && unclosed.m_known && unclosed.m_escape == escape;
    while (!hopeless && m_position < m_text.size()) {
        std::size_t found = m_text.find(m_quote, m_position);
        m_position = found == std::string::npos ? m_text.size() : found + 1;
        if (found == std::string::npos)
            continue;
        if (isClosing(found)) {
            m_quote = '\0';
            return true;
        }
        m_opened = found;  // if none closes the string, this quote is the one left open
    }
    if (!m_finished)
        return false;
    unclosed = {true, escape};
    m_quote = '\0';
    m_position = m_text.find('\n', m_opened);
    return true;
}

bool CZelSplitter::isClosing(std::size_t position) const {
    return !ZelEscapeIsOn() || m_text[position - 1] != '\\';
}

void CZelSplitter::give(SZelPiece &piece, std::size_t end) {
    piece.m_kind = m_state == COMMAND ? SZelPiece::COMMAND : SZelPiece::STATEMENT;
    piece.m_lead = std::string_view(m_text).substr(m_begin, m_start - m_begin);
    piece.m_text = std::string_view(m_text).substr(m_start, end - m_start);
    count(m_start);
    piece.m_line = m_line;
    piece.m_column = m_column;
    count(end);
    m_begin = end;
    m_state = GAP;
    m_ended = false;
}

void CZelSplitter::count(std::size_t end) {
    const char *text = m_text.data();
    for (; m_counted < end; ++m_counted) {
        bool newLine = text[m_counted] == '\n';
        m_line += newLine ? 1 : 0;
        m_column = newLine ? 1 : m_column + 1;
    }
}
