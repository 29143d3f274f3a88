#include "foundations/port/ZelInParts.h"

#include <algorithm>
#include <array>
#include <thread>

#include "foundations/port/CZelThread.h"
#include "foundations/port/ZelCodes.h"

namespace {

constexpr std::size_t MOST = 4;

struct Part {
    const std::function<void(std::size_t)> *work;
    std::size_t number;
    CZelThread thread;
};

unsigned run(void *argument) {
    const Part *part = static_cast<Part *>(argument);
    (*part->work)(part->number);
    return 0;
}

}  // namespace

std::size_t ZelPartsFor(std::size_t things, std::size_t least) {
    static const std::size_t processors = std::max(std::thread::hardware_concurrency(), 1U);
    return std::max<std::size_t>(std::min({things / least, processors, MOST}), 1);
}

void ZelInParts(std::size_t parts, const std::function<void(std::size_t)> &work) {
    std::array<Part, MOST> others{};
    std::size_t started = 1;
    for (; started < std::min(parts, MOST); ++started) {
        others[started].work = &work;
        others[started].number = started;
        if (others[started].thread.RTCreateThread(run, &others[started], 0) != E_RCOk)
            break;
    }
    work(0);
    for (std::size_t number = started; number < parts; ++number)
        work(number);
    for (std::size_t number = 1; number < started; ++number)
        others[number].thread.RTJoinThread();
}
