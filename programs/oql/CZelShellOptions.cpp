#include "programs/oql/CZelShellOptions.h"

#include <cstdlib>
#include <cstring>

#include "foundations/base/ZelMalloc.h"
#include "frame/CZelCmdLineArgs.h"

namespace {

const SZelCLArgRec OPTIONS[] = {
    {"-schema", "FILE: define and fill the store from it first; may be given again", E_RDTText, E_RBTrue, E_RBFalse},
    {"-c", "TEXT: run these statements; may be given again", E_RDTText, E_RBTrue, E_RBFalse},
    {"-f", "FILE: run the statements in it, - is standard input; may be given again", E_RDTText, E_RBTrue, E_RBFalse},
    {"-format", "table, line, csv, json or oql", E_RDTText, E_RBTrue, E_RBFalse},
    {"-output", "FILE: results go there", E_RDTText, E_RBTrue, E_RBFalse},
    {"-bail", "stop at the first failure", E_RDTInt, E_RBFalse, E_RBFalse},
    {"-echo", "show each statement on standard error before it runs", E_RDTInt, E_RBFalse, E_RBFalse},
    {"-debug", "N: trace level, 0 to 4", E_RDTInt, E_RBTrue, E_RBFalse},
    {"-help", "print this", E_RDTInt, E_RBFalse, E_RBFalse},
    {"-version", "print the version", E_RDTInt, E_RBFalse, E_RBFalse},
};
constexpr int OPTION_COUNT = sizeof(OPTIONS) / sizeof(OPTIONS[0]);

const char TAIL[] =
    "\n"
    "Runs OQL on a store in memory. -c and -f run in the order given; without them the statements come from\n"
    "standard input, with editing, history and completion if that is a terminal (.help lists its commands).\n"
    "Results go to standard output, all else to standard error. --option is the same as -option.\n"
    "\n"
    "Exit code: 0 done; 1 a statement failed (a report, or a status other than 0 and 8); 2 wrong usage.\n"
    "History: $XDG_STATE_HOME/quintor/oql_history, or ~/.local/state/quintor/oql_history.\n";

const SZelCLArgRec *optionNamed(const char *word) {
    const char *name = std::strncmp(word, "--", 2) == 0 ? word + 1 : word;
    for (const SZelCLArgRec &option : OPTIONS) {
        if (std::strcmp(option.m_Name, name) == 0)
            return &option;
    }
    return nullptr;
}

}  // namespace

std::string CZelShellOptions::Usage() {
    char name[] = "oql";
    char *words[] = {name};
    CZelCmdLineArgs args(1, words, OPTIONS, OPTION_COUNT, TAIL, nullptr);
    CZelMallocText text(args.RCLAGetUsage());
    return text.get();
}

bool CZelShellOptions::fail(const std::string &problem) {
    m_problem = problem;
    return false;
}

bool CZelShellOptions::Read(int argc, char **argv) {
    for (int i = 1; i < argc; ++i) {
        const SZelCLArgRec *option = optionNamed(argv[i]);
        if (option == nullptr)
            return fail(std::string("unknown option ") + argv[i]);
        if (option->m_HasParam == E_RBTrue && i + 1 == argc)
            return fail(std::string("option ") + argv[i] + " needs a value");
        const char *value = option->m_HasParam == E_RBTrue ? argv[++i] : "";
        if (!take(option->m_Name, value))
            return false;
    }
    return true;
}

bool CZelShellOptions::take(const std::string &name, const char *value) {
    if (name == "-schema")
        m_schemas.emplace_back(value);
    else if (name == "-c")
        m_inputs.push_back({SZelShellInput::TEXT, value});
    else if (name == "-f")
        m_inputs.push_back({SZelShellInput::FILE, value});
    else if (name == "-format")
        return takeFormat(value);
    else if (name == "-output")
        m_output = value;
    else if (name == "-debug")
        return takeDebug(value);
    m_bail = m_bail || name == "-bail";
    m_echo = m_echo || name == "-echo";
    m_help = m_help || name == "-help";
    m_version = m_version || name == "-version";
    return true;
}

bool CZelShellOptions::takeFormat(const char *value) {
    return ZelFormatNamed(value, m_format) || fail(std::string("there is no format ") + value);
}

bool CZelShellOptions::takeDebug(const char *value) {
    bool digit = value[0] >= '0' && value[0] <= '4' && value[1] == '\0';
    m_debug = digit ? value[0] - '0' : 0;
    return digit || fail(std::string("a debug level is a number from 0 to 4, not ") + value);
}
