// What the scanners share: buffers, the read position, line counting, and the reading of tokens, which each
// scanner sets up by a table of rules (CZelTextLexer_scan.h).
//
// Reading takes time linear in the text, whatever it holds: the only searches that look ahead are that for a
// closing quote, which fails once per kind of quote, and that for the last newline, which is made once.
#pragma once

#include <atomic>
#include <string_view>

#include "foundations/base/CZelAtom.h"
#include "oql/FlexLexer.h"

class QUINTOR_API CZelTextLexer : public FlexLexer {
public:
    // Texts end before this length, since positions have 31 bits.
    static constexpr unsigned int MAX_LENGTH = 0x7fffffff;

    // The token of a NUL byte, whose own code would read as the end of the text. No rule accepts it.
    static constexpr int NUL_TOKEN = 256;

    void yy_switch_to_buffer(SZelScanBuffer *buffer) override;
    SZelScanBuffer *yy_create_buffer(const char *text, unsigned int length) override;
    void yy_delete_buffer(SZelScanBuffer *buffer) override;
    void yyrestart(const char *text, unsigned int length) override;
    void switch_streams(std::ostream *output) override;
    int LexerInput(char *buffer, int maximum) override;
    void LexerOutput(const char *buffer, int size) override;
    [[noreturn]] void LexerError(const char *message) override;

    // Sets the current buffer back to its beginning. Nothing without one.
    virtual void ReinitialiseBuffer();

    // The text of a name or string as it stands.
    std::string_view SliceText(SZelSlice slice) const { return {m_base + slice.m_start, slice.m_length}; }
    // A name, interned where it can be.
    CZelAtom SliceName(SZelSlice slice) const { return CZelAtom::RAName(m_base + slice.m_start, slice.m_length); }
    // A name or string with its escapes replaced: \b, \n and \t by the control character, any other \x by x.
    CZelAtom SliceAtom(SZelSlice slice) const;
    char *SliceCopy(SZelSlice slice) const;  // the same, new from malloc

    // Newlines met so far in this scanner, those inside strings and comments left out, counted from 1.
    int Line() const { return m_line; }

    // The place of the token read last: 1-based, the column in bytes. Counts every newline.
    void TokenPlace(int *line, int *column) const;

protected:
    // `lines` is the counter of the scanner's family.
    explicit CZelTextLexer(std::atomic<int> &lines) : m_lines(lines) {}

    // Sets such a counter to 1. Written only when it differs: most texts have one line, and threads share the counter.
    static void startLines(std::atomic<int> &lines) {
        if (lines.load(std::memory_order_relaxed) != 1)
            lines.store(1, std::memory_order_relaxed);
    }

    // Makes the scanner's own buffer over a text that outlives it the current one.
    void readText(const char *text, unsigned int length);

    // The next token by the rules of one scanner. Defined in CZelTextLexer_scan.h, for the scanners' sources.
    template <class Rules>
    int scan(UZelScanValue *value);

    char byteAt(const char *place) const { return place < m_end ? *place : '\0'; }
    int take(int count, int token) {
        m_position += count;
        return token;
    }
    SZelSlice slice(const char *start, const char *end) const {
        return {static_cast<std::uint32_t>(start - m_base), static_cast<std::uint32_t>(end - start) & MAX_LENGTH, 0};
    }
    bool newlineFollows(const char *place);

    const char *m_base = nullptr;
    const char *m_position = nullptr;
    const char *m_end = nullptr;
    const char *m_tokenStart = nullptr;

private:
    template <class Rules>
    int scanWord(UZelScanValue *value);
    template <class Rules>
    int scanSign(UZelScanValue *value);
    template <class Rules>
    int scanDot(UZelScanValue *value);
    template <class Rules>
    int scanNumber(const char *digits, UZelScanValue *value);
    template <class Rules>
    int scanFraction(const char *behind, UZelScanValue *value);
    template <class Rules>
    int scanString(char quote, UZelScanValue *value);
    template <class Rules>
    int scanUnclosed(char quote);
    template <class Rules>
    int scanComparison(char first);

    bool skipComment(char mark);
    void countLine() {
        ++m_line;
        m_lines.fetch_add(1, std::memory_order_relaxed);
    }
    void loadBuffer();
    void saveBuffer();

    const char *m_lastNewline = nullptr;  // m_end when there is none; null until asked
    std::atomic<int> &m_lines;
    int m_line = 1;
    SZelScanBuffer *m_buffer = nullptr;  // the current one
    SZelScanBuffer m_own;
    std::ostream *m_output = nullptr;
};
