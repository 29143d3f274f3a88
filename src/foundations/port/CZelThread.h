// A thread and, at the same time, a lock with a condition. Many owners use only the latter.
//
// The lock may be taken again by the thread that holds it; a wait lets go of all its holds and has them
// back when it ends. A wait ends only by a broadcast made after it began, or at its limit, never by itself.
//
// Results: 1, or E_RCBadState with nothing changed and no report: the lock is not held by the caller, a
// thread is already there, there is none to join, or the system can't start one.
#pragma once

#include <pthread.h>

#include <atomic>
#include <condition_variable>
#include <mutex>

#include "foundations/port/ZelExport.h"

class QUINTOR_API CZelThread {
public:
    CZelThread() = default;
    CZelThread(const CZelThread &) = delete;
    CZelThread &operator=(const CZelThread &) = delete;

    // Waits for the end of a thread that was not joined; on that very thread it lets it run on by itself.
    // Requires: the thread has been told to end, and nobody waits for the condition.
    ~CZelThread();

    // Starts `body(arg)`. `body` may delete this object. The flag has no effect.
    int RTCreateThread(unsigned (*body)(void *), void *arg, int flag);
    int RTJoinThread();
    bool RTIsCurrentThread() const;

    int RTLock();
    int RTUnLock();

    // Requires: the lock is held.
    int RTConditionWaitNoLock();
    // E_RCTimeLimit at the limit, with the lock held again. A limit of 0 or less has passed at once.
    int RTConditionRelTimedWaitNoLock(long seconds);

    // Wakes all that wait now. The first form takes the lock itself; the second needs it held.
    int RTBroadcast();
    int RTBroadcastNoLock();

    // Holds the object's lock for a scope.
    class QUINTOR_API AutoMutex {
    public:
        explicit AutoMutex(CZelThread &thread) : m_thread(thread) { m_thread.RTLock(); }
        AutoMutex(const AutoMutex &) = delete;
        AutoMutex &operator=(const AutoMutex &) = delete;
        ~AutoMutex() { m_thread.RTUnLock(); }

    private:
        CZelThread &m_thread;
    };

private:
    bool isOwner() const;
    template <class Wait>
    int waitWithoutLock(Wait wait);

    std::mutex m_mutex;
    std::condition_variable m_condition;
    std::atomic<const void *> m_owner{nullptr};  // the holding thread; written under m_mutex
    unsigned m_depth = 0;                        // under m_mutex
    unsigned long m_generation = 0;              // counts broadcasts; under m_mutex

    pthread_t m_thread{};  // set by the creating thread, which also joins
    bool m_started = false;
};
