#include <algorithm>
#include <cstdio>
#include <cstring>

#include "foundations/version/CQMTVersion.h"
#include "programs/oqlcheck/CZelPageReport.h"

namespace {

const char USAGE[] =
    "usage: oqlcheck FILE...\n"
    "\n"
    "Looks through cache files of persistent tables and tells what their pages are used for. Nothing is changed, and "
    "a\n"
    "file that a process has open can be looked through too.\n"
    "\n"
    "  -help     print this\n"
    "  -version  print the version\n"
    "\n"
    "Exit code: 0 sound; 1 damage; 2 wrong usage, or a file that can't be read as a cache file.\n";

bool isOption(const char *word, const char *name) {
    return std::strcmp(word, name) == 0 || (word[0] == '-' && std::strcmp(word + 1, name) == 0);
}

int wrongUsage(const char *problem, const char *word) {
    std::fprintf(stderr, "oqlcheck: %s%s\n%s", problem, word, USAGE);
    return CZelPageReport::UNREADABLE;
}

int checkAll(int count, char **paths) {
    int outcome = CZelPageReport::SOUND;
    for (int i = 0; i < count; ++i) {
        CZelPageReport report;
        outcome = std::max<int>(outcome, report.check(paths[i]));
        std::fputs(report.text().c_str(), stdout);
    }
    return std::fflush(stdout) == 0 ? outcome : CZelPageReport::UNREADABLE;
}

}  // namespace

int main(int argc, char **argv) {
    if (argc < 2)
        return wrongUsage("no file is named", "");
    for (int i = 1; i < argc; ++i) {
        if (isOption(argv[i], "-help"))
            return std::fputs(USAGE, stdout) >= 0 ? 0 : CZelPageReport::UNREADABLE;
        if (isOption(argv[i], "-version"))
            return std::printf("oqlcheck %s\n", CQMTVersion::Instance().System().AsString().c_str()) >= 0 ? 0 : 2;
        if (argv[i][0] == '-')
            return wrongUsage("unknown option ", argv[i]);
    }
    return checkAll(argc - 1, argv + 1);
}
