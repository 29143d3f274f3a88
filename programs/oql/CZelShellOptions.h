// The shell's command line. One table of options serves reading and the usage text.
#pragma once

#include <string>
#include <vector>

#include "programs/oql/CZelResultWriter.h"

struct SZelShellInput {
    enum Kind { TEXT, FILE };
    Kind m_kind;
    std::string m_value;  // OQL, or the file's path
};

class CZelShellOptions {
public:
    // False when the words are no correct command line: m_problem says why.
    bool Read(int argc, char **argv);
    static std::string Usage();

    std::vector<std::string> m_schemas;
    std::vector<SZelShellInput> m_inputs;  // -c and -f, in the order given
    EZelFormat m_format = EZelFormat::TABLE;
    std::string m_output;  // empty for standard output
    bool m_bail = false;
    bool m_echo = false;
    bool m_help = false;
    bool m_version = false;
    int m_debug = 0;
    std::string m_problem;

private:
    bool take(const std::string &name, const char *value);
    bool takeDebug(const char *value);
    bool takeFormat(const char *value);
    bool fail(const std::string &problem);
};
