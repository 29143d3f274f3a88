#include "foundations/base/CZelLargeBlocks.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <mutex>

#include "foundations/port/CZelShortLock.h"
#include "foundations/port/ZelOutOfMemory.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ZEL_BLOCKS_OFF
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
#define ZEL_BLOCKS_OFF
#endif
#endif

namespace {

#ifdef ZEL_BLOCKS_OFF
constexpr bool IS_ON = false;
#else
constexpr bool IS_ON = true;
#endif

constexpr std::size_t STEP = CZelLargeBlocks::STEP;

std::size_t rounded(std::size_t size, std::size_t step) {
    return (size + step - 1) / step * step;
}

std::size_t alignmentOf(std::size_t size) {
    return size % CZelLargeBlocks::LINE == 0 ? CZelLargeBlocks::LINE : STEP;
}

char *allocate(std::size_t alignment, std::size_t size) {
    void *memory = std::aligned_alloc(alignment, size);
    if (memory == nullptr)
        ZelOutOfMemory();
    return static_cast<char *>(memory);
}

// All blocks of the process. Never destroyed.
class Blocks {
public:
    void *take(std::size_t size) {
        const std::lock_guard guard(m_lock);
        Free *&first = m_free[size / STEP];
        if (first == nullptr)
            return cut(size);
        void *block = first;
        first = first->m_next;
        return block;
    }

    void give(void *block, std::size_t size) {
        const std::lock_guard guard(m_lock);
        Free *&first = m_free[size / STEP];
        first = new (block) Free{first};
    }

private:
    static constexpr std::size_t SMALLEST_CHUNK = 65536;
    static constexpr std::size_t LARGEST_CHUNK = 2097152;  // a huge page
    static constexpr int COLLAPSE = 25;                    // MADV_COLLAPSE, of Linux 6.1, which headers may lack

    struct Free {
        Free *m_next;
    };

    // What is left of a chunk is lost when it is too small.
    void *cut(std::size_t size) {
        const std::size_t alignment = alignmentOf(size);
        if (static_cast<std::size_t>(m_end - m_next) < rounded(size, alignment) + alignment)
            startChunk();
        auto *block = reinterpret_cast<char *>(rounded(reinterpret_cast<std::uintptr_t>(m_next), alignment));
        m_next = block + size;
        return block;
    }

    // Chunks double, so that a small process stays small.
    void startChunk() {
        if (m_isHugePage)
            makeHuge(m_end - LARGEST_CHUNK);
        m_next = allocate(m_chunkSize, m_chunkSize);
        m_end = m_next + m_chunkSize;
        m_isHugePage = m_chunkSize == LARGEST_CHUNK;
        m_chunkSize = std::min(2 * m_chunkSize, LARGEST_CHUNK);
    }

    // Only a chunk that is used up: a huge page takes all its memory at once. A system that can't do so now may do it
    // in the background.
    static void makeHuge(char *chunk) {
        madvise(chunk, LARGEST_CHUNK, MADV_HUGEPAGE);
        madvise(chunk, LARGEST_CHUNK, COLLAPSE);
    }

    CZelShortLock m_lock;
    char *m_next = nullptr;
    char *m_end = nullptr;
    bool m_isHugePage = false;                 // has the chunk at hand the size of one?
    std::size_t m_chunkSize = SMALLEST_CHUNK;  // of the next one
    Free *m_free[CZelLargeBlocks::LARGEST / STEP + 1] = {};
};

constinit Blocks g_blocks;

}  // namespace

void *CZelLargeBlocks::RLTake(std::size_t size) {
    size = rounded(size, STEP);
    return IS_ON && size <= LARGEST ? g_blocks.take(size) : allocate(alignmentOf(size), size);
}

void CZelLargeBlocks::RLGive(void *block, std::size_t size) noexcept {
    if (block == nullptr)
        return;
    size = rounded(size, STEP);
    if (IS_ON && size <= LARGEST)
        g_blocks.give(block, size);
    else
        std::free(block);
}
