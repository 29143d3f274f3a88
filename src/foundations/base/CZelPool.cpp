#include "foundations/base/CZelPool.h"

#include <cstdlib>

#include "foundations/base/CZelPool_depot.h"
#include "foundations/base/ZelMalloc.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ZEL_POOL_IS_MALLOC 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
#define ZEL_POOL_IS_MALLOC 1
#endif
#endif

constinit thread_local CZelPool::List CZelPool::t_lists[CLASSES] = {};

#ifdef ZEL_POOL_IS_MALLOC

// The lists stay without blocks and without room, so every step comes here.
void *CZelPool::takeSlowly(std::size_t size, Kind) {
    return ZelMalloc(size);
}

void CZelPool::giveSlowly(void *memory, std::size_t, Kind) noexcept {
    std::free(memory);
}

bool CZelPool::RPServes(std::size_t size, std::size_t other) {
    return size == other;
}

#else

// One thread's side of the pool. It dies when the thread ends; what the thread takes or gives after that,
// in destructors that run later, goes to the depot block by block.
class CZelPoolThread {
public:
    using Block = CZelPool::Block;
    using List = CZelPool::List;

    ~CZelPoolThread();
    static bool IsRunning();
    static Block *Refill(std::size_t sizeClass);
    static void MakeRoom(std::size_t sizeClass);

private:
    enum class Phase : unsigned char { Start, Running, Ended };
    static constinit thread_local Phase t_phase;
};

constinit thread_local CZelPoolThread::Phase CZelPoolThread::t_phase = Phase::Start;

// The first call of a thread makes the object whose destructor sees the thread's end.
bool CZelPoolThread::IsRunning() {
    if (t_phase == Phase::Start) {
        static thread_local CZelPoolThread end;
        t_phase = Phase::Running;
    }
    return t_phase == Phase::Running;
}

CZelPoolThread::~CZelPoolThread() {
    t_phase = Phase::Ended;
    for (std::size_t sizeClass = 0; sizeClass < CZelPool::CLASSES; ++sizeClass) {
        List list = CZelPool::t_lists[sizeClass];
        CZelPool::t_lists[sizeClass] = {};
        CZelPoolDepot::Of(sizeClass).GiveBatch(list.m_head);
        if (list.m_reserve != nullptr)
            CZelPoolDepot::Of(sizeClass).GiveBatch(list.m_reserve);
    }
}

// Fills the empty list and takes its first block.
CZelPool::Block *CZelPoolThread::Refill(std::size_t sizeClass) {
    List &list = CZelPool::t_lists[sizeClass];
    Block *batch = list.m_reserve;
    list.m_reserve = nullptr;
    if (batch == nullptr)
        batch = CZelPoolDepot::Of(sizeClass).TakeBatch();
    list.m_head = batch->m_next;
    list.m_room = 1;
    return batch;
}

// Sets the full list aside; what was set aside before goes to the depot.
void CZelPoolThread::MakeRoom(std::size_t sizeClass) {
    List &list = CZelPool::t_lists[sizeClass];
    if (list.m_head != nullptr) {
        if (list.m_reserve != nullptr)
            CZelPoolDepot::Of(sizeClass).GiveBatch(list.m_reserve);
        list.m_reserve = list.m_head;
        list.m_head = nullptr;
    }
    list.m_room = CZelPoolDepot::BatchSize(sizeClass);
}

void *CZelPool::takeSlowly(std::size_t size, Kind kind) {
    if (size > LARGEST)
        return ZelMalloc(size);
    std::size_t sizeClass = classOf(size, kind);
    return CZelPoolThread::IsRunning() ? CZelPoolThread::Refill(sizeClass) : CZelPoolDepot::Of(sizeClass).TakeOne();
}

void CZelPool::giveSlowly(void *memory, std::size_t size, Kind kind) noexcept {
    if (size > LARGEST) {
        std::free(memory);
        return;
    }
    std::size_t sizeClass = classOf(size, kind);
    if (!CZelPoolThread::IsRunning()) {
        CZelPoolDepot::Of(sizeClass).GiveOne(static_cast<Block *>(memory));
        return;
    }
    CZelPoolThread::MakeRoom(sizeClass);
    RPGive(memory, size, kind);
}

bool CZelPool::RPServes(std::size_t size, std::size_t other) {
    return size <= LARGEST && other <= LARGEST && classOf(size, OBJECTS) == classOf(other, OBJECTS);
}

#endif
