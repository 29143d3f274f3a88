// Lines from a terminal, with editing, history and completion where libedit is there. Prompt and echo go to
// standard error.
#pragma once

#include <memory>
#include <string>

class CZelCompleter;

class CZelLineEditor {
public:
    enum Outcome { LINE, INTERRUPTED, END };

    explicit CZelLineEditor(const CZelCompleter &completer);
    CZelLineEditor(const CZelLineEditor &) = delete;
    CZelLineEditor &operator=(const CZelLineEditor &) = delete;
    ~CZelLineEditor();  // writes the history

    // The line comes without its end. INTERRUPTED after Ctrl-C, which clears what was typed.
    Outcome Read(const char *prompt, std::string &line);

    // The file that keeps the history between sessions, which only its owner can read; empty when there is no
    // home for it.
    static std::string HistoryPath();

private:
    class Terminal;
    std::unique_ptr<Terminal> m_terminal;
};
