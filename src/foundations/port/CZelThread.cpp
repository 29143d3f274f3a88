#include "foundations/port/CZelThread.h"

#include <algorithm>
#include <chrono>
#include <memory>

#include "foundations/port/ZelCodes.h"

namespace {

constexpr long A_YEAR = 366L * 24 * 60 * 60;  // longer limits would overflow the clock

thread_local char t_self;  // its address is the thread's identity

struct Start {
    unsigned (*body)(void *);
    void *arg;
};

// Touches no CZelThread: the body may have deleted it.
void *run(void *arg) {
    const std::unique_ptr<Start> start(static_cast<Start *>(arg));
    start->body(start->arg);
    return nullptr;
}

}  // namespace

CZelThread::~CZelThread() {
    if (!m_started)
        return;
    if (RTIsCurrentThread())
        pthread_detach(m_thread);
    else
        pthread_join(m_thread, nullptr);
}

int CZelThread::RTCreateThread(unsigned (*body)(void *), void *arg, int) {
    if (m_started || body == nullptr)
        return E_RCBadState;
    auto start = std::make_unique<Start>(Start{body, arg});
    m_started = true;  // before the thread is there: it may delete this object at once
    if (pthread_create(&m_thread, nullptr, run, start.get()) != 0) {
        m_started = false;
        return E_RCBadState;
    }
    static_cast<void>(start.release());
    return E_RCOk;
}

int CZelThread::RTJoinThread() {
    if (!m_started || RTIsCurrentThread())
        return E_RCBadState;
    const int status = pthread_join(m_thread, nullptr);
    m_started = false;  // only now: the thread itself may have asked until its end
    return status == 0 ? E_RCOk : E_RCBadState;
}

bool CZelThread::RTIsCurrentThread() const {
    return m_started && pthread_equal(m_thread, pthread_self()) != 0;
}

bool CZelThread::isOwner() const {
    return m_owner.load(std::memory_order_relaxed) == &t_self;
}

int CZelThread::RTLock() {
    if (!isOwner()) {
        m_mutex.lock();
        m_owner.store(&t_self, std::memory_order_relaxed);
    }
    ++m_depth;
    return E_RCOk;
}

int CZelThread::RTUnLock() {
    if (!isOwner())
        return E_RCBadState;
    if (--m_depth == 0) {
        m_owner.store(nullptr, std::memory_order_relaxed);
        m_mutex.unlock();
    }
    return E_RCOk;
}

int CZelThread::RTConditionWaitNoLock() {
    return waitWithoutLock([this](std::unique_lock<std::mutex> &lock, auto hasCome) {
        m_condition.wait(lock, hasCome);
        return true;
    });
}

int CZelThread::RTConditionRelTimedWaitNoLock(long seconds) {
    const auto limit = std::chrono::seconds(std::clamp(seconds, 0L, A_YEAR));
    return waitWithoutLock([this, limit](std::unique_lock<std::mutex> &lock, auto hasCome) {
        return m_condition.wait_for(lock, limit, hasCome);
    });
}

// Lets all holds go while `wait` waits for a broadcast later than now.
template <class Wait>
int CZelThread::waitWithoutLock(Wait wait) {
    if (!isOwner())
        return E_RCBadState;
    const unsigned depth = m_depth;
    const unsigned long before = m_generation;
    m_depth = 0;
    m_owner.store(nullptr, std::memory_order_relaxed);
    std::unique_lock<std::mutex> lock(m_mutex, std::adopt_lock);
    const bool hasCome = wait(lock, [this, before] { return m_generation != before; });
    lock.release();
    m_owner.store(&t_self, std::memory_order_relaxed);
    m_depth = depth;
    return hasCome ? E_RCOk : E_RCTimeLimit;
}

int CZelThread::RTBroadcast() {
    const AutoMutex guard(*this);
    return RTBroadcastNoLock();
}

int CZelThread::RTBroadcastNoLock() {
    if (!isOwner())
        return E_RCBadState;
    ++m_generation;
    m_condition.notify_all();
    return E_RCOk;
}
