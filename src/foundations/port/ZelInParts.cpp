#include "foundations/port/ZelInParts.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <thread>

#include "foundations/port/CZelThread.h"
#include "foundations/port/ZelCodes.h"

namespace {

constexpr std::size_t MOST = 4;

std::atomic<std::size_t> s_limit{MOST};
std::atomic<bool> s_splitsAll{false};
std::atomic<std::size_t> s_helpers{0};  // threads at work for others

std::size_t processors() {
    static const std::size_t count = std::max(std::thread::hardware_concurrency(), 1U);
    return count;
}

// A place among the helpers, of which there are fewer than processors.
bool takePlace() {
    if (s_helpers.fetch_add(1, std::memory_order_relaxed) + 1 < processors() ||
        s_splitsAll.load(std::memory_order_relaxed))
        return true;
    s_helpers.fetch_sub(1, std::memory_order_relaxed);
    return false;
}

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
    const std::size_t limit = s_limit.load(std::memory_order_relaxed);
    const std::size_t parts = s_splitsAll.load(std::memory_order_relaxed)
                                  ? std::min(things, limit)
                                  : std::min({things / least, processors(), limit});
    return std::max<std::size_t>(parts, 1);
}

void ZelLimitParts(std::size_t most) {
    s_limit.store(most == 0 ? MOST : std::min(most, MOST), std::memory_order_relaxed);
}

void ZelSplitAll(bool splits) {
    s_splitsAll.store(splits, std::memory_order_relaxed);
}

void ZelInParts(std::size_t parts, const std::function<void(std::size_t)> &work) {
    std::array<Part, MOST> others{};
    std::size_t started = 1;
    for (; started < std::min(parts, MOST); ++started) {
        others[started].work = &work;
        others[started].number = started;
        if (!takePlace())
            break;
        if (others[started].thread.RTCreateThread(run, &others[started], 0) == E_RCOk)
            continue;
        s_helpers.fetch_sub(1, std::memory_order_relaxed);
        break;
    }
    work(0);
    for (std::size_t number = started; number < parts; ++number)
        work(number);
    for (std::size_t number = 1; number < started; ++number)
        others[number].thread.RTJoinThread();
    s_helpers.fetch_sub(started - 1, std::memory_order_relaxed);
}
