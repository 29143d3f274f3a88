#include "foundations/port/CZelRWLock.h"

#include <cassert>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "foundations/port/ZelCodes.h"
#include "foundations/port/ZelOutOfMemory.h"

namespace {

// What this thread has of one lock. The outermost hold tells what the lock is taken as.
struct Hold {
    const CZelRWLock *lock;
    unsigned depth;
    bool writer;
};

// The locks that this thread holds: as a rule one or two. Plain data, so that it is there from the thread's
// first to its last instruction, in destructors of other thread-local objects too.
class Holds {
public:
    Hold *find(const CZelRWLock *lock) {
        for (unsigned i = m_count; i > 0; --i)
            if (list()[i - 1].lock == lock)
                return &list()[i - 1];
        return nullptr;
    }

    void add(const CZelRWLock *lock, bool writer) {
        if (m_count == m_capacity)
            grow();
        list()[m_count++] = {lock, 1, writer};
    }

    void remove(Hold *hold) {
        *hold = list()[--m_count];
        if (m_count == 0 && m_heap != nullptr)
            shrink();
    }

private:
    static constexpr unsigned FEW = 8;

    Hold *list() { return m_heap != nullptr ? m_heap : m_few; }

    void grow() {
        auto *larger = static_cast<Hold *>(std::malloc(sizeof(Hold) * m_capacity * 2));
        if (larger == nullptr)
            ZelOutOfMemory();
        std::memcpy(larger, list(), sizeof(Hold) * m_count);
        std::free(m_heap);
        m_heap = larger;
        m_capacity *= 2;
    }

    void shrink() {
        std::free(m_heap);
        m_heap = nullptr;
        m_capacity = FEW;
    }

    unsigned m_count = 0;
    unsigned m_capacity = FEW;
    Hold *m_heap = nullptr;
    Hold m_few[FEW] = {};
};

thread_local Holds t_holds;

std::atomic<unsigned> s_threads{0};
thread_local unsigned t_number = 0;  // 1 and up; 0 until asked for

// Leaves the core's means to others for a moment.
void relax() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#elif defined(__aarch64__)
    asm volatile("isb");
#endif
}

// How long a thread looks again before it sleeps. Falling asleep and being woken costs up to 30 us where processors
// are virtual, so looking for about as long costs at most twice what the better of both would have cost. The mutex is
// held for some instructions only. Alone on one processor, who looks only keeps the other from getting on.
class Patience {
public:
    static constexpr std::chrono::microseconds FOR_TURN{25}, FOR_MUTEX{5};

    explicit Patience(std::chrono::microseconds time) : m_time(time) {}

    // Waits a moment, but not before the first look. False: it has been long enough.
    bool lasts() {
        if (++m_looks % LOOKS_PER_TIME == 0 && isOver())
            return false;
        if (m_looks > 1)
            relax();
        return true;
    }

private:
    using Clock = std::chrono::steady_clock;
    static constexpr unsigned LOOKS_PER_TIME = 16;

    bool isOver() {
        static const bool isAlone = std::thread::hardware_concurrency() == 1;
        const Clock::time_point now = Clock::now();
        if (m_looks == LOOKS_PER_TIME)
            m_end = now + m_time;
        return isAlone || now >= m_end;
    }

    const std::chrono::microseconds m_time;
    unsigned m_looks = 0;
    Clock::time_point m_end;
};

unsigned threadNumber() {
    if (t_number == 0)
        t_number = s_threads.fetch_add(1, std::memory_order_relaxed) + 1;
    return t_number;
}

}  // namespace

CZelRWLock::~CZelRWLock() {
    assert(!m_writerIn && m_first == nullptr && !hasReaders());
}

int CZelRWLock::RRWLReaderLock() {
    if (Hold *hold = t_holds.find(this)) {
        ++hold->depth;
        return E_RCOk;
    }
    acquireReader();
    t_holds.add(this, false);
    return E_RCOk;
}

int CZelRWLock::RRWLWriterLock() {
    if (Hold *hold = t_holds.find(this)) {
        if (!hold->writer)
            return E_RCBadState;
        ++hold->depth;
        return E_RCOk;
    }
    acquireWriter();
    t_holds.add(this, true);
    return E_RCOk;
}

int CZelRWLock::RRWLUnLock() {
    Hold *hold = t_holds.find(this);
    if (hold == nullptr)
        return E_RCBadState;
    if (--hold->depth > 0)
        return E_RCOk;
    const bool writer = hold->writer;
    t_holds.remove(hold);
    if (writer)
        releaseWriter();
    else
        releaseReader();
    return E_RCOk;
}

// Announce, then look at the gate; a writer closes the gate, then looks at the announcements.
void CZelRWLock::acquireReader() {
    std::atomic<unsigned> &slot = m_slots[threadNumber() % SLOTS].readers;
    slot.fetch_add(1);
    if (!m_gateClosed.load())
        return;
    slot.fetch_sub(1);
    Waiter self(&slot);
    lockMutex();
    waitInQueue(self);
}

void CZelRWLock::acquireWriter() {
    lockMutex();
    if (m_first == nullptr && enterAsWriter()) {
        m_mutex.unlock();
        return;
    }
    Waiter self(nullptr);
    waitInQueue(self);
}

// The gate is closed first, and stays so for one who then waits.
bool CZelRWLock::enterAsWriter() {
    m_gateClosed.store(true);
    if (m_writerIn || hasReaders())
        return false;
    m_writerIn = true;
    return true;
}

void CZelRWLock::releaseReader() {
    m_slots[threadNumber() % SLOTS].readers.fetch_sub(1);
    if (!m_gateClosed.load())
        return;
    lockMutex();
    grantFromQueue();
    m_mutex.unlock();
}

void CZelRWLock::releaseWriter() {
    lockMutex();
    m_writerIn = false;
    grantFromQueue();
    m_mutex.unlock();
}

void CZelRWLock::lockMutex() {
    for (Patience patience(Patience::FOR_MUTEX); patience.lasts();)
        if (m_mutex.try_lock())
            return;
    m_mutex.lock();
}

// Also wakes others: the announcement that the caller took back may have kept the first of the queue out.
// Requires: the mutex is held, and is not any more afterwards.
void CZelRWLock::waitInQueue(Waiter &waiter) {
    (m_last != nullptr ? m_last->next : m_first) = &waiter;
    m_last = &waiter;
    m_gateClosed.store(true);
    grantFromQueue();
    m_mutex.unlock();
    if (isGrantedSoon(waiter))
        return;
    std::unique_lock<std::mutex> guard(m_mutex);
    waiter.isAsleep = true;
    while (!waiter.granted.load(std::memory_order_relaxed))
        waiter.wake.wait(guard);
}

bool CZelRWLock::isGrantedSoon(const Waiter &waiter) {
    for (Patience patience(Patience::FOR_TURN); patience.lasts();)
        if (waiter.granted.load(std::memory_order_acquire))
            return true;
    return false;
}

// Lets in, from the front, whoever can go. The gate opens when the queue is empty and no writer is in.
void CZelRWLock::grantFromQueue() {
    while (m_first != nullptr && grant(*m_first)) {
        Waiter *waiter = m_first;
        m_first = waiter->next;
        if (m_first == nullptr)
            m_last = nullptr;
        letGo(*waiter);
    }
    m_gateClosed.store(m_writerIn || m_first != nullptr);
}

// One that is asleep goes no earlier than it has the mutex; another may be gone with the store.
void CZelRWLock::letGo(Waiter &waiter) {
    const bool isAsleep = waiter.isAsleep;
    waiter.granted.store(true, std::memory_order_release);
    if (isAsleep)
        waiter.wake.notify_one();
}

bool CZelRWLock::grant(Waiter &waiter) {
    if (m_writerIn)
        return false;
    if (waiter.slot != nullptr) {
        waiter.slot->fetch_add(1);
        return true;
    }
    m_writerIn = !hasReaders();
    return m_writerIn;
}

bool CZelRWLock::hasReaders() const {
    for (const Slot &slot : m_slots)
        if (slot.readers.load() != 0)
            return true;
    return false;
}
