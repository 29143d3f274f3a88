#include "foundations/port/ZelOutOfMemory.h"

#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>

#include "foundations/port/ZelCodes.h"
#include "foundations/port/ZelReportLineImpl.h"

namespace {

thread_local char t_self;
std::atomic<const void *> s_first{nullptr};

}  // namespace

void ZelOutOfMemory() {
    const void *first = nullptr;
    if (!s_first.compare_exchange_strong(first, &t_self)) {
        if (first == &t_self)  // an exit handler needed memory too
            _exit(EXIT_FAILURE);
        for (;;)
            pause();
    }
    char line[96];
    const int length = std::snprintf(line, sizeof line, "%d %s: Memory is exhausted, the process ends.\n", E_RCNoMemory,
                                     ZelCodeName(E_RCNoMemory));
    ZelWriteLine(STDERR_FILENO, line, static_cast<std::size_t>(length));
    std::fflush(stdout);
    std::quick_exit(EXIT_FAILURE);
}
