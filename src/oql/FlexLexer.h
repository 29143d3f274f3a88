// The interface of all scanners: text in memory goes in, tokens come out.
//
// A scanner reads one buffer at a time; each buffer keeps its own read position. A scanner serves one parse
// and one thread.
#pragma once

#include <iosfwd>

#include "foundations/port/ZelExport.h"
#include "oql/UZelScanValue.h"

// A text, which is never copied, and how far it has been read.
struct SZelScanBuffer {
    const char *m_base = nullptr;
    unsigned int m_length = 0;
    const char *m_position = nullptr;
};

class QUINTOR_API FlexLexer {
public:
    FlexLexer() = default;
    FlexLexer(const FlexLexer &) = delete;
    FlexLexer &operator=(const FlexLexer &) = delete;
    virtual ~FlexLexer();

    // Goes on in another buffer, at its position; null is none. The buffer stays the caller's.
    virtual void yy_switch_to_buffer(SZelScanBuffer *buffer) = 0;
    // A new buffer at the beginning of a text that outlives it; given back with yy_delete_buffer.
    virtual SZelScanBuffer *yy_create_buffer(const char *text, unsigned int length) = 0;
    // Null is accepted. When it is the current one there is none afterwards.
    virtual void yy_delete_buffer(SZelScanBuffer *buffer) = 0;
    // Lets the current buffer begin with another text; without one a buffer is made.
    virtual void yyrestart(const char *text, unsigned int length) = 0;

    // The code of the next token, 0 at the end of the text. A token of one character has that character as
    // its code; other codes start above 256.
    virtual int yylex(UZelScanValue *value) = 0;

    // Where LexerOutput writes, standard output until set; null leaves it.
    virtual void switch_streams(std::ostream *output) = 0;

    // Copies at most `maximum` unread bytes and counts them as read. The number of bytes; a result under 1
    // copies nothing.
    virtual int LexerInput(char *buffer, int maximum) = 0;
    virtual void LexerOutput(const char *buffer, int size) = 0;

    // For faults of a scanner itself: writes the message to standard error and ends the process with status 2.
    // No text leads here.
    [[noreturn]] virtual void LexerError(const char *message) = 0;
};
