#include "foundations/port/CZelServPool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <numeric>
#include <vector>

#include "foundations/port/ZelCodes.h"
#include "foundations/port/ZelPort.h"

namespace {

void *item(long number) {
    return reinterpret_cast<void *>(number);
}

// The owner of a pool, which notes the work it gets.
struct Log {
    std::mutex mutex;
    std::vector<long> done;
    std::atomic<long> count{0};

    static void note(void *work, void *owner) {
        auto *log = static_cast<Log *>(owner);
        const std::lock_guard<std::mutex> guard(log->mutex);
        log->done.push_back(reinterpret_cast<long>(work));
        ++log->count;
    }
    void waitFor(long wanted) const {
        while (count < wanted)
            ZelSleep(1);
    }
};

std::vector<long> upTo(long last) {
    std::vector<long> numbers(static_cast<std::size_t>(last));
    std::iota(numbers.begin(), numbers.end(), 1);
    return numbers;
}

TEST(ServPool, OneThreadWorksInTheOrderOfArrival) {
    Log log;
    CZelServPool pool(1, &log);
    for (long number = 1; number <= 500; ++number) {
        if (number == 250) {
            EXPECT_EQ(1, pool.RSPLaunchThreads(Log::note));
        }
        EXPECT_EQ(1, pool.RSPAddWorkDetail(item(number)));
    }
    EXPECT_EQ(E_RCBadState, pool.RSPLaunchThreads(Log::note));
    EXPECT_EQ(E_RCBadArgument, pool.RSPAddWorkDetail(nullptr));
    log.waitFor(500);
    EXPECT_EQ(upTo(500), log.done);
}

TEST(ServPool, ManyThreadsDoEachItemOnce) {
    Log log;
    {
        CZelServPool pool(8, &log);
        EXPECT_EQ(1, pool.RSPLaunchThreads(Log::note));
        for (long number = 1; number <= 2000; ++number)
            pool.RSPAddWorkDetail(item(number));
        log.waitFor(2000);
    }
    std::sort(log.done.begin(), log.done.end());
    EXPECT_EQ(upTo(2000), log.done);
}

TEST(ServPool, TheQueueIsEmptiedUnderItsLock) {
    Log log;
    CZelServPool pool(2, &log);
    for (long number = 1; number <= 3; ++number)
        pool.RSPAddWorkDetail(item(number));
    pool.RSPWorkLock();
    EXPECT_EQ(1, pool.RSPLaunchThreads(Log::note));
    EXPECT_EQ(item(1), pool.RSPNextWork());
    EXPECT_EQ(item(2), pool.RSPNextWork());
    EXPECT_EQ(item(3), pool.RSPNextWork());
    EXPECT_EQ(nullptr, pool.RSPNextWork());
    pool.RSPWorkUnLock();
    EXPECT_EQ(0, log.count);
}

TEST(ServPool, ItsDestructorWaitsForRunningWork) {
    static std::atomic<int> s_ended;
    static std::atomic<int> s_begun;
    s_ended = s_begun = 0;
    {
        CZelServPool pool(2, nullptr);
        pool.RSPLaunchThreads([](void *, void *) {
            ++s_begun;
            ZelSleep(20);
            ++s_ended;
        });
        pool.RSPAddWorkDetail(item(1));
        while (s_begun == 0)
            ZelSleep(1);
    }
    EXPECT_EQ(s_begun, s_ended);
}

// The owner whose first item destroys the pool from within a worker.
struct Doomed {
    CZelServPool *pool = nullptr;
    std::atomic<bool> gone{false};

    static void destroy(void *, void *owner) {
        auto *doomed = static_cast<Doomed *>(owner);
        delete doomed->pool;
        doomed->gone = true;
    }
};

TEST(ServPool, AWorkerMayDestroyIt) {
    for (const int threads : {1, 4}) {
        Doomed doomed;
        doomed.pool = new CZelServPool(threads, &doomed);
        doomed.pool->RSPAddWorkDetail(item(1));
        ASSERT_EQ(1, doomed.pool->RSPLaunchThreads(Doomed::destroy));
        while (!doomed.gone)
            ZelSleep(1);
    }
}

TEST(ServPool, ThreadsAreLimitedUntilTheLimitIsLifted) {
    EXPECT_EQ(1, CZelServPool(-2, nullptr).RSPThreadCount());
    EXPECT_EQ(64, CZelServPool(65, nullptr).RSPThreadCount());
    ZelOverrideMaxThreads(true);
    EXPECT_EQ(65, CZelServPool(65, nullptr).RSPThreadCount());
    ZelOverrideMaxThreads(false);
    EXPECT_EQ(64, CZelServPool(1000000, nullptr).RSPThreadCount());
}

}  // namespace
