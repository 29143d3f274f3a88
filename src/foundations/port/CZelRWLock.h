// Several readers or one writer.
//
// A thread may take again what it holds: a reader as reader, even behind a waiting writer, and a writer as
// writer or as reader. RRWLUnLock undoes the innermost hold; the lock is free for others after the last.
// A reader can't become a writer: two of them would wait for each other for ever.
//
// Fair: who must wait stands in a queue in order of arrival, and whoever comes while the queue is not empty
// joins it. So neither readers nor writers starve.
//
// How it works. A reader announces itself in one of a few counters, each in a cache line of its own and
// chosen by thread, and then looks at the gate. A writer closes the gate and then looks at the counters.
// Both do it in the one order of sequentially consistent atomics, so at least one sees the other. While
// the gate is open, readers touch nothing that another core's readers touch, and only the others use the
// mutex and the queue. What a thread holds is noted in the thread itself. Who waits looks for its turn for about
// as long as falling asleep and being woken would take: a statement by key is done sooner.
//
// A reader that lets go looks at the gate once more, and a writer opens its mutex: that others get the lock does not
// tell that they are out. So a lock must not die by what was done under it: its owner waits for the threads themselves,
// by joining them or by whatever else tells that their calls have returned. To watch over those on their way out would
// cost each reader two more atomic writes.
//
// Threads: any. Results: 1, or E_RCBadState with nothing changed and no report: upgrade of a reader, or
// unlocking what this thread does not hold.
#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>

#include "foundations/port/ZelExport.h"

class QUINTOR_API CZelRWLock {
public:
    CZelRWLock() = default;
    CZelRWLock(const CZelRWLock &) = delete;
    CZelRWLock &operator=(const CZelRWLock &) = delete;
    ~CZelRWLock();  // Requires: nobody holds it, waits for it or is on the way out

    int RRWLReaderLock();
    int RRWLWriterLock();
    int RRWLUnLock();

private:
    static constexpr unsigned SLOTS = 8;
    static constexpr unsigned CACHE_LINE = 64;

    struct Slot {
        std::atomic<unsigned> readers{0};
        char line[CACHE_LINE - sizeof(std::atomic<unsigned>)];
    };

    // One waiting thread, on its own stack: gone soon after `granted`, unless it is asleep. Guarded by m_mutex.
    struct Waiter {
        explicit Waiter(std::atomic<unsigned> *readers) : slot(readers) {}
        std::atomic<unsigned> *slot;  // the reader's counter; null for a writer
        std::atomic<bool> granted{false};
        bool isAsleep = false;
        Waiter *next = nullptr;
        std::condition_variable wake;
    };

    void acquireReader();
    void acquireWriter();
    void releaseReader();
    void releaseWriter();
    void lockMutex();
    bool enterAsWriter();
    void waitInQueue(Waiter &waiter);
    static bool isGrantedSoon(const Waiter &waiter);
    static void letGo(Waiter &waiter);
    void grantFromQueue();
    bool grant(Waiter &waiter);
    bool hasReaders() const;

    Slot m_slots[SLOTS];
    std::atomic<bool> m_gateClosed{false};  // a writer is in, or somebody waits; written under m_mutex
    std::mutex m_mutex;
    bool m_writerIn = false;    // under m_mutex
    Waiter *m_first = nullptr;  // under m_mutex
    Waiter *m_last = nullptr;   // under m_mutex
};
