#include "foundations/base/CZelPool_depot.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdlib>
#include <functional>

#include "foundations/port/ZelOutOfMemory.h"

namespace {

constinit CZelPoolDepot g_depots[CZelPoolDepot::CLASSES];

}  // namespace

CZelPoolDepot &CZelPoolDepot::Of(std::size_t sizeClass) {
    return g_depots[sizeClass];
}

std::size_t CZelPoolDepot::sizeClass() const {
    return static_cast<std::size_t>(this - g_depots);
}

CZelPoolDepot::Block *CZelPoolDepot::TakeBatch() {
    std::lock_guard guard(m_lock);
    return popBatch();
}

CZelPoolDepot::Block *CZelPoolDepot::popBatch() {
    Block *batch = m_batches;
    if (batch == nullptr)
        return cutBatch();
    m_batches = batch->m_nextBatch;
    return batch;
}

void CZelPoolDepot::GiveBatch(Block *batch) {
    batch = inOrderOfAddress(batch, BatchSize(sizeClass()));
    std::lock_guard guard(m_lock);
    batch->m_nextBatch = m_batches;
    m_batches = batch;
}

CZelPoolDepot::Block *CZelPoolDepot::TakeOne() {
    std::lock_guard guard(m_lock);
    if (m_loose == nullptr) {
        m_loose = popBatch();
        m_looseCount = BatchSize(sizeClass());
    }
    Block *block = m_loose;
    m_loose = block->m_next;
    --m_looseCount;
    return block;
}

void CZelPoolDepot::GiveOne(Block *block) {
    std::lock_guard guard(m_lock);
    block->m_next = m_loose;
    m_loose = block;
    if (++m_looseCount < BatchSize(sizeClass()))
        return;
    Block *batch = inOrderOfAddress(m_loose, m_looseCount);
    batch->m_nextBatch = m_batches;
    m_batches = batch;
    m_loose = nullptr;
    m_looseCount = 0;
}

CZelPoolDepot::Block *CZelPoolDepot::cutBatch() {
    std::size_t size = BlockSize(sizeClass());
    std::uint32_t count = BatchSize(sizeClass());
    if (m_chunkLeft < size * count)
        startChunk();
    char *first = m_chunk;
    m_chunk += size * count;
    m_chunkLeft -= size * count;
    for (std::uint32_t i = 0; i < count; ++i) {
        char *next = i + 1 < count ? first + (i + 1) * size : nullptr;
        reinterpret_cast<Block *>(first + i * size)->m_next = reinterpret_cast<Block *>(next);
    }
    return reinterpret_cast<Block *>(first);
}

// Chunks double, so that a small process stays small and a large one has few page table entries.
void CZelPoolDepot::startChunk() {
    m_chunk = static_cast<char *>(std::aligned_alloc(m_chunkSize, m_chunkSize));
    if (m_chunk == nullptr)
        ZelOutOfMemory();
    if (m_chunkSize == LARGEST_CHUNK)
        madvise(m_chunk, m_chunkSize, MADV_HUGEPAGE);
    m_chunkLeft = m_chunkSize;
    m_chunkSize = std::min(2 * m_chunkSize, LARGEST_CHUNK);
}

// A list that was emptied front to back has given its blocks in order already, upwards or downwards.
CZelPoolDepot::Block *CZelPoolDepot::inOrderOfAddress(Block *batch, std::uint32_t count) {
    Block *blocks[MOST_BLOCKS] = {};
    for (std::uint32_t i = 0; i < count; ++i, batch = batch->m_next)
        blocks[i] = batch;
    if (std::is_sorted(blocks, blocks + count, std::greater<>()))
        std::reverse(blocks, blocks + count);
    else
        std::sort(blocks, blocks + count, std::less<>());
    for (std::uint32_t i = 0; i < count; ++i)
        blocks[i]->m_next = i + 1 < count ? blocks[i + 1] : nullptr;
    return blocks[0];
}
