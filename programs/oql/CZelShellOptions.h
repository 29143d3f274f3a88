// The shell's command line. One table of options serves reading and the usage text.
#pragma once

#include <string>
#include <vector>

#include "foundations/port/ZelFile.h"
#include "programs/oql/CZelResultWriter.h"

// What the store keeps its rows in.
struct SZelShellCache {
    std::string m_name;       // empty: memory alone
    bool m_isBySize = false;  // -bytes
    unsigned long long m_bytes = 0;
    bool m_isByShare = false;  // -share
    float m_share = 1;
    bool m_isPersistent = false;
};

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
    SZelShellCache m_cache;
    std::string m_root;  // install root; empty for QMTHOME's
    std::string m_domain = "LOCAL";
    EZelSyncPolicy m_sync = E_SPOff;
    std::string m_problem;

private:
    bool take(const std::string &name, const char *value);
    bool takeDebug(const char *value);
    bool takeFormat(const char *value);
    bool takeBytes(const char *value);
    bool takeShare(const char *value);
    bool takeSync(const char *value);
    bool checkCache();
    bool fail(const std::string &problem);
};
