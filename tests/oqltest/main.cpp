// oqltest [-accept] FILE...: runs scripts of OQL, each on an empty store. Exit code 0 when every answer is as
// its script says, 1 when not, 2 for a script that can't be read. -accept rewrites the scripts to what was
// answered.
#include <cstdio>
#include <cstring>

#include "tests/oqltest/CZelScriptRunner.h"

namespace {

int runFile(const char *path, bool accept) {
    CZelScript script;
    if (!script.Read(path)) {
        std::printf("%s\n", script.Problem().c_str());
        return 2;
    }
    int differing = CZelScriptRunner().Run(path, script, accept);
    std::printf("%s: %zu steps, %d not as expected\n", path, script.Steps().size(), differing);
    if (accept && differing > 0 && !script.Write(path)) {
        std::printf("%s: can't be written\n", path);
        return 2;
    }
    return differing > 0 && !accept ? 1 : 0;
}

}  // namespace

int main(int argc, char **argv) {
    bool accept = argc > 1 && std::strcmp(argv[1], "-accept") == 0;
    int first = accept ? 2 : 1;
    if (first >= argc) {
        std::printf("usage: oqltest [-accept] FILE...\n");
        return 2;
    }
    int worst = 0;
    for (int i = first; i < argc; ++i) {
        int outcome = runFile(argv[i], accept);
        worst = outcome > worst ? outcome : worst;
    }
    return worst;
}
