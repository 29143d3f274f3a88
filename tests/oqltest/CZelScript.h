// A script of statements with what each must give; tests/oql/README.md tells its form. Also reads the fenced
// blocks named oqltest of a Markdown file as one script.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "programs/oql/CZelShellOptions.h"

struct SZelStep {
    std::string m_text;                   // run as one text
    std::vector<std::string> m_expected;  // row, status and report lines
    bool m_unordered = false;             // rows may come in any order
    std::vector<std::string> m_context;   // lines "record ..." and "const ..." that come before it
    bool m_newStore = false;              // with an empty store of the same kind and the escape switch off
    int m_line = 0;                       // where it stands in the file, from 1
    std::size_t m_answerBegin = 0;        // its answer's lines in the file, from 0
    std::size_t m_answerEnd = 0;
};

// A kind of store that the script runs in, and the line that says so.
struct SZelScriptStore {
    std::string m_line;
    SZelShellCache m_cache;
};

class CZelScript {
public:
    // False when the file can't be read or a line is none of the form: Problem() says which.
    bool Read(const std::string &path);
    const std::string &Problem() const { return m_problem; }
    const std::vector<SZelStep> &Steps() const { return m_steps; }
    const std::vector<SZelScriptStore> &Stores() const { return m_stores; }  // one that is plain where none is told

    // Puts other lines in the place of a step's answer. Steps are replaced from the last to the first.
    void Replace(const SZelStep &step, const std::vector<std::string> &answer);
    bool Write(const std::string &path) const;

private:
    bool readLine(std::size_t index);
    bool takeStatement(std::size_t index);
    bool takeAnswer(std::size_t index);
    bool takeStore(const std::string &line);
    bool isFenceLine(const std::string &line);

    std::vector<std::string> m_lines;
    std::vector<SZelStep> m_steps;
    std::vector<SZelScriptStore> m_stores;
    std::string m_problem;
    bool m_markdown = false;
    bool m_inFence = false;
    bool m_open = false;                 // the last step may go on
    std::vector<std::string> m_context;  // for the next step, and
    bool m_newStore = false;
};
