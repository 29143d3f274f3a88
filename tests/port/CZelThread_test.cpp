#include "foundations/port/CZelThread.h"

#include <gtest/gtest.h>

#include <atomic>

#include "foundations/port/ZelCodes.h"
#include "foundations/port/ZelPort.h"

namespace {

// A thread that waits `rounds` times on `gate` and says how far it is.
struct Waiter {
    CZelThread &gate;
    int rounds;
    bool timed = false;
    std::atomic<int> waiting{0};
    std::atomic<int> woken{0};
    CZelThread thread{};

    void start() {
        ASSERT_EQ(1, thread.RTCreateThread(
                         [](void *arg) {
                             static_cast<Waiter *>(arg)->run();
                             return 0U;
                         },
                         this, 1));
    }
    void run() {
        const CZelThread::AutoMutex outer(gate);
        const CZelThread::AutoMutex inner(gate);  // both holds must be let go by the wait
        for (int round = 0; round < rounds; ++round) {
            ++waiting;
            EXPECT_EQ(1, timed ? gate.RTConditionRelTimedWaitNoLock(1L << 62) : gate.RTConditionWaitNoLock());
            ++woken;
        }
    }
    // Gives the lock back only when the waiter is inside its wait.
    void lockWhenWaiting(int round) {
        for (;;) {
            gate.RTLock();
            if (waiting == round)
                return;
            gate.RTUnLock();
            ZelSleep(0);
        }
    }
};

TEST(Thread, EachWaitNeedsABroadcastThatCameAfterItBegan) {
    for (const bool timed : {false, true}) {
        CZelThread gate;
        EXPECT_EQ(1, gate.RTBroadcast());  // too early for anyone
        Waiter first{gate, 3, timed};
        Waiter second{gate, 3, timed};
        first.start();
        second.start();
        for (int round = 1; round <= 3; ++round) {
            first.lockWhenWaiting(round);
            gate.RTUnLock();
            second.lockWhenWaiting(round);
            EXPECT_EQ(round - 1, first.woken);
            EXPECT_EQ(round - 1, second.woken);
            EXPECT_EQ(1, gate.RTBroadcastNoLock());
            EXPECT_EQ(1, gate.RTBroadcastNoLock());
            gate.RTUnLock();
        }
        EXPECT_EQ(1, first.thread.RTJoinThread());
        EXPECT_EQ(1, second.thread.RTJoinThread());
        EXPECT_EQ(3, first.woken);
    }
}

TEST(Thread, TimeLimitGivesItsCodeWithTheLockHeldAgain) {
    CZelThread gate;
    gate.RTLock();
    EXPECT_EQ(E_RCTimeLimit, gate.RTConditionRelTimedWaitNoLock(0));
    EXPECT_EQ(E_RCTimeLimit, gate.RTConditionRelTimedWaitNoLock(-3));
    EXPECT_EQ(1, gate.RTBroadcastNoLock());
    EXPECT_EQ(E_RCTimeLimit, gate.RTConditionRelTimedWaitNoLock(1));
    EXPECT_EQ(1, gate.RTUnLock());
}

TEST(Thread, WhatNeedsTheLockOrAThreadRefusesWithoutIt) {
    CZelThread thread;
    EXPECT_EQ(E_RCBadState, thread.RTUnLock());
    EXPECT_EQ(E_RCBadState, thread.RTConditionWaitNoLock());
    EXPECT_EQ(E_RCBadState, thread.RTConditionRelTimedWaitNoLock(5));
    EXPECT_EQ(E_RCBadState, thread.RTBroadcastNoLock());
    EXPECT_EQ(E_RCBadState, thread.RTJoinThread());
    EXPECT_EQ(E_RCBadState, thread.RTCreateThread(nullptr, nullptr, 1));
}

TEST(Thread, OneThreadAtATimeAndNoneJoinsItself) {
    struct Probe {
        CZelThread thread;
        std::atomic<int> joinedItself{0};
        std::atomic<bool> end{false};
    } probe;
    auto body = [](void *arg) {
        auto *self = static_cast<Probe *>(arg);
        self->joinedItself = self->thread.RTJoinThread();
        while (!self->end)
            ZelSleep(1);
        return 0U;
    };
    ASSERT_EQ(1, probe.thread.RTCreateThread(body, &probe, 1));
    EXPECT_EQ(E_RCBadState, probe.thread.RTCreateThread(body, &probe, 1));
    probe.end = true;
    EXPECT_EQ(1, probe.thread.RTJoinThread());
    EXPECT_EQ(E_RCBadState, probe.joinedItself);
    ASSERT_EQ(1, probe.thread.RTCreateThread(body, &probe, 1));  // the destructor joins this one
}

TEST(Thread, ABodyMayDeleteItsThread) {
    static std::atomic<bool> s_done;
    s_done = false;
    auto *thread = new CZelThread;
    ASSERT_EQ(1, thread->RTCreateThread(
                     [](void *arg) {
                         delete static_cast<CZelThread *>(arg);
                         s_done = true;
                         return 0U;
                     },
                     thread, 1));
    while (!s_done)
        ZelSleep(1);
}

}  // namespace
