#include "foundations/port/CZelServPool.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>

#include "foundations/port/CZelError.h"
#include "foundations/port/CZelThread.h"

namespace {

constexpr int THREAD_LIMIT = 64;

std::atomic<bool> s_limitLifted{false};

int allowedThreads(int wanted) {
    const int atLeastOne = std::max(wanted, 1);
    return s_limitLifted ? atLeastOne : std::min(atLeastOne, THREAD_LIMIT);
}

}  // namespace

void ZelOverrideMaxThreads(bool lifted) {
    s_limitLifted = lifted;
}

struct CZelServPool::State {
    std::recursive_mutex mutex;
    std::condition_variable_any arrived;
    std::deque<void *> queue;
    bool stopping = false;
};

CZelServPool::CZelServPool(int threadCount, void *owner)
    : m_threadCount(allowedThreads(threadCount)), m_owner(owner), m_state(std::make_shared<State>()) {}

CZelServPool::~CZelServPool() {
    RSPStopThreads();
}

int CZelServPool::RSPAddWorkDetail(void *work) {
    if (work == nullptr)
        return E_RCBadArgument;
    {
        const std::lock_guard<std::recursive_mutex> guard(m_state->mutex);
        if (m_state->stopping)
            return E_RCBadState;
        m_state->queue.push_back(work);
    }
    m_state->arrived.notify_one();
    return E_RCOk;
}

void *CZelServPool::RSPNextWork() {
    const std::lock_guard<std::recursive_mutex> guard(m_state->mutex);
    if (m_state->queue.empty())
        return nullptr;
    void *work = m_state->queue.front();
    m_state->queue.pop_front();
    return work;
}

// Under the lock, so that a worker that destroys the pool sees all of it.
int CZelServPool::RSPLaunchThreads(WorkFunction function) {
    const std::shared_ptr<State> state = m_state;
    const std::lock_guard<std::recursive_mutex> guard(state->mutex);
    if (function == nullptr || m_function != nullptr)
        return E_RCBadState;
    m_function = function;
    while (m_threads.size() < static_cast<std::size_t>(m_threadCount) && launchOne()) {
    }
    if (m_threads.empty())
        return E_RCBadState;
    if (m_threads.size() < static_cast<std::size_t>(m_threadCount))
        ZEL_REPORT(E_RCBadState, "CZelServPool::RSPLaunchThreads: the system has fewer threads left than asked for.");
    return E_RCOk;
}

bool CZelServPool::launchOne() {
    auto thread = std::make_unique<CZelThread>();
    if (thread->RTCreateThread(threadBody, this, 1) != E_RCOk)
        return false;
    m_threads.push_back(std::move(thread));
    return true;
}

void CZelServPool::RSPWorkLock() {
    m_state->mutex.lock();
}

void CZelServPool::RSPWorkUnLock() {
    m_state->mutex.unlock();
}

unsigned CZelServPool::threadBody(void *pool) {
    static_cast<CZelServPool *>(pool)->MainWorkLoop();
    return 0;
}

// The function may destroy the pool. Then `state` is stopping, and nothing of the pool is touched again.
void CZelServPool::MainWorkLoop() {
    const std::shared_ptr<State> state = m_state;
    const WorkFunction function = m_function;
    void *const owner = m_owner;
    while (void *work = waitForWork(*state, this))
        function(work, owner);
}

// Null once the pool is stopping, when it may be gone already. An item that another thread takes first is waited
// for again.
void *CZelServPool::waitForWork(State &state, CZelServPool *pool) {
    std::unique_lock<std::recursive_mutex> guard(state.mutex);
    for (;;) {
        state.arrived.wait(guard, [&state] { return state.stopping || !state.queue.empty(); });
        if (state.stopping)
            return nullptr;
        if (void *work = pool->RSPNextWork())
            return work;
    }
}

void CZelServPool::RSPStopThreads() {
    {
        const std::lock_guard<std::recursive_mutex> guard(m_state->mutex);
        m_state->stopping = true;
    }
    m_state->arrived.notify_all();
    m_threads.clear();  // joins each, but for the calling one
}
