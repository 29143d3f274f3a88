#include "foundations/port/CZelRWLock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include "foundations/port/ZelCodes.h"

namespace {

// Is the lock free for a thread that comes now? It waits in that thread, so the answer is asked for with a hold
// that ends the wait: the helper thread sets `done` once it has been in and out.
class Visitor {
public:
    Visitor(CZelRWLock &lock, bool writer)
        : m_thread([this, &lock, writer] {
              m_started = true;
              writer ? lock.RRWLWriterLock() : lock.RRWLReaderLock();
              m_inside = true;
              lock.RRWLUnLock();
          }) {}
    ~Visitor() { m_thread.join(); }

    bool isInside() const { return m_inside; }
    void waitUntilInside() const {
        while (!m_inside)
            std::this_thread::yield();
    }
    // Gives the visitor every chance to get in where it must not.
    bool staysOut() const {
        while (!m_started)
            std::this_thread::yield();
        for (int i = 0; i < 2000; ++i)
            std::this_thread::yield();
        return !m_inside;
    }

private:
    std::atomic<bool> m_started{false};
    std::atomic<bool> m_inside{false};
    std::thread m_thread;
};

TEST(RWLock, WriterKeepsBothKindsOutUntilItsOutermostHoldIsUndone) {
    CZelRWLock lock;
    EXPECT_EQ(1, lock.RRWLWriterLock());
    EXPECT_EQ(1, lock.RRWLWriterLock());
    EXPECT_EQ(1, lock.RRWLReaderLock());
    const Visitor reader(lock, false);
    const Visitor writer(lock, true);
    for (int holds = 3; holds > 0; --holds) {
        EXPECT_TRUE(reader.staysOut() && writer.staysOut()) << holds;
        EXPECT_EQ(1, lock.RRWLUnLock());
    }
    reader.waitUntilInside();
    writer.waitUntilInside();
}

TEST(RWLock, ReaderGoesInAgainBehindAWaitingWriterAndNewReadersDoNot) {
    CZelRWLock lock;
    EXPECT_EQ(1, lock.RRWLReaderLock());
    const Visitor writer(lock, true);
    EXPECT_TRUE(writer.staysOut());
    EXPECT_EQ(1, lock.RRWLReaderLock());
    const Visitor late(lock, false);
    EXPECT_TRUE(late.staysOut());
    EXPECT_EQ(1, lock.RRWLUnLock());
    EXPECT_TRUE(writer.staysOut());
    EXPECT_EQ(1, lock.RRWLUnLock());
    writer.waitUntilInside();
    late.waitUntilInside();
}

TEST(RWLock, ReadersShare) {
    CZelRWLock lock;
    EXPECT_EQ(1, lock.RRWLReaderLock());
    {
        const Visitor other(lock, false);
        other.waitUntilInside();
    }
    EXPECT_EQ(1, lock.RRWLUnLock());
}

TEST(RWLock, MisuseGivesACodeAndChangesNothing) {
    CZelRWLock lock;
    EXPECT_EQ(E_RCBadState, lock.RRWLUnLock());
    EXPECT_EQ(1, lock.RRWLReaderLock());
    EXPECT_EQ(E_RCBadState, lock.RRWLWriterLock());
    std::thread([&lock] { EXPECT_EQ(E_RCBadState, lock.RRWLUnLock()); }).join();
    EXPECT_EQ(1, lock.RRWLUnLock());
    EXPECT_EQ(E_RCBadState, lock.RRWLUnLock());
    EXPECT_EQ(1, lock.RRWLWriterLock());
    EXPECT_EQ(1, lock.RRWLUnLock());
}

TEST(RWLock, AThreadHoldsManyLocksAndGivesThemBackInAnyOrder) {
    constexpr std::size_t MANY = 100;
    const auto locks = std::make_unique<CZelRWLock[]>(MANY);
    for (std::size_t i = 0; i < MANY; ++i)
        EXPECT_EQ(1, i % 2 == 0 ? locks[i].RRWLReaderLock() : locks[i].RRWLWriterLock());
    for (std::size_t i = 0; i < MANY; ++i)
        EXPECT_EQ(1, locks[i * 37 % MANY].RRWLUnLock());
    for (std::size_t i = 0; i < MANY; ++i)
        EXPECT_EQ(E_RCBadState, locks[i].RRWLUnLock());
}

// What the lock guards: two counters that only a writer changes, always both.
struct Guarded {
    CZelRWLock lock;
    long first = 0;
    long second = 0;
    std::atomic<long> torn{0};

    void read() {
        lock.RRWLReaderLock();
        lock.RRWLReaderLock();
        if (first != second)
            ++torn;
        lock.RRWLUnLock();
        lock.RRWLUnLock();
    }
    void write() {
        lock.RRWLWriterLock();
        ++first;
        lock.RRWLReaderLock();
        ++second;
        lock.RRWLUnLock();
        lock.RRWLUnLock();
    }
};

TEST(RWLock, EightThreadsNeverSeeAWriterAtWork) {
    constexpr int THREADS = 8;
    constexpr int ROUNDS = 4000;
    Guarded guarded;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < THREADS; ++thread)
        threads.emplace_back([&guarded, thread] {
            for (int round = 0; round < ROUNDS; ++round)
                (round + thread) % 5 == 0 ? guarded.write() : guarded.read();
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(0, guarded.torn.load());
    EXPECT_EQ(THREADS * ROUNDS / 5, guarded.first);
}

// Two threads of one kind that overlap without a gap must not shut out one of the other kind.
void crowdLetsOneIn(bool crowdWrites) {
    CZelRWLock lock;
    std::atomic<bool> stop{false};
    std::vector<std::thread> crowd;
    for (int i = 0; i < 3; ++i)
        crowd.emplace_back([&lock, &stop, crowdWrites] {
            while (!stop) {
                crowdWrites ? lock.RRWLWriterLock() : lock.RRWLReaderLock();
                std::this_thread::yield();
                lock.RRWLUnLock();
            }
        });
    for (int i = 0; i < 200; ++i) {
        crowdWrites ? lock.RRWLReaderLock() : lock.RRWLWriterLock();
        lock.RRWLUnLock();
    }
    stop = true;
    for (std::thread &thread : crowd)
        thread.join();
}

TEST(RWLock, ACrowdOfReadersDoesNotStarveAWriter) {
    crowdLetsOneIn(false);
}

TEST(RWLock, ACrowdOfWritersDoesNotStarveAReader) {
    crowdLetsOneIn(true);
}

}  // namespace
