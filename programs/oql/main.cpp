#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "foundations/base/CZelEnv.h"
#include "foundations/port/ZelDebug.h"
#include "foundations/port/ZelFile.h"
#include "foundations/version/CQMTVersion.h"
#include "programs/oql/CZelInterrupt.h"
#include "programs/oql/CZelShell.h"

namespace {

// Results have a descriptor of their own. What else writes to standard output, as traces of the library do,
// comes out on standard error.
int separateResults() {
    int results = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    if (results >= 0)
        dup2(STDERR_FILENO, STDOUT_FILENO);
    return results;
}

int wrongUsage(const CZelShellOptions &options) {
    std::fprintf(stderr, "oql: %s\n%s", options.m_problem.c_str(), CZelShellOptions::Usage().c_str());
    return CZelShell::USAGE;
}

int printed(const std::string &text) {
    bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    return written ? CZelShell::DONE : CZelShell::FAILED;
}

// Where cache files lie, and what they are called by.
bool prepareFiles(const CZelShellOptions &options) {
    CZelEnv::REDomain(options.m_domain.c_str());
    ZelSetSyncPolicy(options.m_sync);
    if (!options.m_root.empty())
        setenv("QMTHOME", options.m_root.c_str(), 1);
    if (options.m_cache.m_name.empty())
        return true;
    const std::filesystem::path folder = std::filesystem::path(std::getenv("QMTHOME")) / "var" / "solvantis";
    std::error_code failure;
    std::filesystem::create_directories(folder, failure);
    if (failure)
        std::fprintf(stderr, "oql: can't make %s: %s\n", folder.c_str(), failure.message().c_str());
    return !failure;
}

}  // namespace

int main(int argc, char **argv) {
    std::signal(SIGPIPE, SIG_IGN);
    CZelShellOptions options;
    if (!options.Read(argc, argv))
        return wrongUsage(options);
    if (options.m_help)
        return printed(CZelShellOptions::Usage());
    if (options.m_version)
        return printed("oql " + CQMTVersion::Instance().System().AsString() + "\n");
    __Zeltronix_Debug_Level = options.m_debug;
    if (!prepareFiles(options))
        return CZelShell::FAILED;
    CZelInterrupt::Install();
    CZelShell shell(options, separateResults());
    return shell.Run();
}
