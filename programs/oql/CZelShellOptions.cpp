#include "programs/oql/CZelShellOptions.h"

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <string_view>

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
    {"-cache", "NAME: tables lie in files, the first word of whose names this is", E_RDTText, E_RBTrue, E_RBFalse},
    {"-bytes", "N: of each cached table so many bytes stay in memory", E_RDTText, E_RBTrue, E_RBFalse},
    {"-share", "F: of each cached table this share stays in memory, 0 to 1", E_RDTText, E_RBTrue, E_RBFalse},
    {"-persistent", "cached tables are found again at the next start", E_RDTInt, E_RBFalse, E_RBFalse},
    {"-root", "DIR: the files lie in var/solvantis below it; otherwise below $QMTHOME", E_RDTText, E_RBTrue, E_RBFalse},
    {"-domain", "D: the last word of the files' names, LOCAL if not given", E_RDTText, E_RBTrue, E_RBFalse},
    {"-sync", "off, update or full: what is forced to the disk", E_RDTText, E_RBTrue, E_RBFalse},
    {"-debug", "N: trace level, 0 to 4", E_RDTInt, E_RBTrue, E_RBFalse},
    {"-help", "print this", E_RDTInt, E_RBFalse, E_RBFalse},
    {"-version", "print the version", E_RDTInt, E_RBFalse, E_RBFalse},
};
constexpr int OPTION_COUNT = sizeof(OPTIONS) / sizeof(OPTIONS[0]);

const char TAIL[] =
    "\n"
    "Runs OQL on a store in memory, or with -cache on one whose tables lie in files. -c and -f run in the order\n"
    "given; without them the statements come from standard input, with editing, history and completion if that is\n"
    "a terminal (.help lists its commands). Results go to standard output, all else to standard error. --option is\n"
    "the same as -option.\n"
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
    return checkCache();
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
    else if (name == "-cache")
        m_cache.m_name = value;
    else if (name == "-bytes")
        return takeBytes(value);
    else if (name == "-share")
        return takeShare(value);
    else if (name == "-root")
        m_root = value;
    else if (name == "-domain")
        m_domain = value;
    else if (name == "-sync")
        return takeSync(value);
    m_cache.m_isPersistent = m_cache.m_isPersistent || name == "-persistent";
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

bool CZelShellOptions::takeBytes(const char *value) {
    const char *end = value + std::strlen(value);
    m_cache.m_isBySize = true;
    const auto [stopped, failure] = std::from_chars(value, end, m_cache.m_bytes);
    return (failure == std::errc() && stopped == end) || fail(std::string("a number of bytes is not ") + value);
}

bool CZelShellOptions::takeShare(const char *value) {
    const char *end = value + std::strlen(value);
    m_cache.m_isByShare = true;
    const auto [stopped, failure] = std::from_chars(value, end, m_cache.m_share);
    const bool isShare = failure == std::errc() && stopped == end && m_cache.m_share >= 0 && m_cache.m_share <= 1;
    return isShare || fail(std::string("a share is a number from 0 to 1, not ") + value);
}

bool CZelShellOptions::takeSync(const char *value) {
    const std::string_view word = value;
    if (word == "off")
        m_sync = E_SPOff;
    else if (word == "update")
        m_sync = E_SPUpdate;
    else if (word == "full")
        m_sync = E_SPFull;
    else
        return fail(std::string("-sync is off, update or full, not ") + value);
    return true;
}

bool CZelShellOptions::checkCache() {
    const bool isLimited = m_cache.m_isBySize || m_cache.m_isByShare;
    if (m_cache.m_isBySize && m_cache.m_isByShare)
        return fail("-bytes and -share exclude each other");
    if (m_cache.m_name.empty())
        return !(isLimited || m_cache.m_isPersistent) || fail("-bytes, -share and -persistent need -cache NAME");
    if (!isLimited && !m_cache.m_isPersistent)
        return fail("-cache needs -bytes, -share or -persistent");
    return !m_root.empty() || std::getenv("QMTHOME") != nullptr || fail("-cache needs -root DIR, or QMTHOME");
}
