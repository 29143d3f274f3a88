// Worker threads that take work from one queue, in the order of arrival.
//
// Work items are the caller's; the pool passes them on. Items left in the queue when the pool dies are
// forgotten: an owner empties the queue first, under RSPWorkLock, with RSPNextWork.
//
// Threads: any. The pool may be destroyed by one of its own workers, within the function that it runs: that
// worker is let go and ends after the function, the others are joined.
#pragma once

#include <memory>
#include <vector>

#include "foundations/port/ZelExport.h"

class CZelThread;

// Lifts (true) or restores the limit of 64 threads in pools made from now on.
QUINTOR_API void ZelOverrideMaxThreads(bool lifted);

class QUINTOR_API CZelServPool {
public:
    using WorkFunction = void (*)(void *work, void *owner);

    // A count below 1 is 1, above the limit the limit.
    CZelServPool(int threadCount, void *owner);
    CZelServPool(const CZelServPool &) = delete;
    CZelServPool &operator=(const CZelServPool &) = delete;

    // Lets running work end, starts no other, joins the threads. A class that overrides an operation below
    // calls RSPStopThreads in its own destructor, before its part is gone.
    virtual ~CZelServPool();

    // 1 or a code: E_RCBadArgument for null, E_RCBadState once the pool is being stopped.
    virtual int RSPAddWorkDetail(void *work);

    // Removes and gives the next item, null when there is none. Never waits for one.
    virtual void *RSPNextWork();

    // Starts the threads; once. 1, or E_RCBadState when none can be started; fewer than asked is reported.
    int RSPLaunchThreads(WorkFunction function);

    // The queue's lock, which its holder may take again.
    void RSPWorkLock();
    void RSPWorkUnLock();

    int RSPThreadCount() const { return m_threadCount; }

protected:
    // The body of each thread: waits for work and runs the function on it until the pool stops.
    virtual void MainWorkLoop();

    void RSPStopThreads();

private:
    struct State;
    static unsigned threadBody(void *pool);
    bool launchOne();
    static void *waitForWork(State &state, CZelServPool *pool);

    int m_threadCount;
    void *m_owner;
    WorkFunction m_function = nullptr;
    std::shared_ptr<State> m_state;  // queue and lock; outlives the pool in a worker that destroys it
    std::vector<std::unique_ptr<CZelThread>> m_threads;
};
