// Cuts a text of OQL into statements, as it comes in, so that each can be run before the next is read.
//
// It follows the scanner's rules: a statement ends at a `;` outside of strings and comments; a string may span
// lines; with the escape switch on, a quote behind a backslash does not end it; a quote that nothing closes is
// passed over up to the end of its line. The switch is read as it stands when a string is met: run a piece
// before asking for the next, and `set escape on;` holds for what follows it.
//
// Where no statement is under way, a point followed by a letter begins a command of the shell, which ends with
// its line. Every byte is looked at a bounded number of times, however the text is fed.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Its texts are the splitter's and live until it is fed or asked again.
struct SZelPiece {
    enum Kind { STATEMENT, COMMAND };
    Kind m_kind = STATEMENT;
    std::string_view m_lead;  // blanks and comments before it
    std::string_view m_text;  // a statement ends in ";", except one that the end of the text cuts off
    int m_line = 1;           // where m_text begins, from 1
    int m_column = 1;         // in bytes, from 1
};

class CZelSplitter {
public:
    void Feed(std::string_view text);

    // No more text comes; a line that is not ended is ended. Then Next also gives what was begun and not ended.
    void Finish();

    // The next whole piece. False: feed more, or, behind Finish, there is none.
    bool Next(SZelPiece &piece);

    // Has a statement been begun that has not ended?
    bool IsUnderWay() const { return m_state != GAP || m_quote != '\0'; }

    // Forgets all that was fed and not yet given out. Lines go on counting from there.
    void Drop();

private:
    enum State { GAP, STATEMENT, COMMAND };

    bool step();
    bool stepComment();
    bool stepString();
    bool stepCommand();
    bool begin();
    bool commentBegins() const;
    bool isClosing(std::size_t position) const;
    void give(SZelPiece &piece, std::size_t end);
    void count(std::size_t end);

    std::string m_text;
    std::size_t m_begin = 0;    // of the lead of the piece under way; all before it was given out
    std::size_t m_counted = 0;  // m_line and m_column tell this place
    std::size_t m_start = 0;    // of the piece under way, behind its lead
    std::size_t m_position = 0;
    std::size_t m_opened = 0;  // the quote of the string under way
    int m_line = 1;
    int m_column = 1;
    State m_state = GAP;
    char m_quote = '\0';  // the string's, while inside one
    bool m_inComment = false;
    bool m_ended = false;  // a whole piece lies before m_position
    bool m_finished = false;
    // Behind some place no quote of this kind closes a string, under this setting of the switch.
    struct {
        bool m_known = false;
        bool m_escape = false;
    } m_unclosed[2];
};
