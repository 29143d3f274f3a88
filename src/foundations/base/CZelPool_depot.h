// What all threads share of one size class of the pool: whole batches, the single blocks of threads that
// have ended, and the chunk that fresh blocks are cut from. Chunks are never given back to the system.
//
// Threads: one lock per class, held for a batch at a time. Never destroyed, since objects die as late as in
// the destructors of statics.
#pragma once

#include <mutex>

#include "foundations/base/CZelPool.h"

class CZelPoolDepot {
public:
    using Block = CZelPool::Block;

    constexpr CZelPoolDepot() = default;
    static CZelPoolDepot &Of(std::size_t sizeClass);

    static constexpr std::size_t CLASSES = CZelPool::CLASSES;

    static constexpr std::size_t BlockSize(std::size_t sizeClass) {
        const std::size_t steps = sizeClass % CZelPool::CLASSES_OF_KIND;
        return steps == 0 ? CZelPool::STEP : steps * CZelPool::STEP;
    }
    static constexpr std::uint32_t BatchSize(std::size_t sizeClass) {
        return static_cast<std::uint32_t>(BATCH_BYTES / BlockSize(sizeClass));
    }

    Block *TakeBatch();            // BatchSize blocks
    void GiveBatch(Block *batch);  // the same number
    Block *TakeOne();
    void GiveOne(Block *block);

private:
    static constexpr std::size_t BATCH_BYTES = 8192;
    static constexpr std::size_t FIRST_CHUNK = 65536;
    static constexpr std::size_t LARGEST_CHUNK = 2097152;  // a huge page, where the system has them
    static constexpr std::uint32_t MOST_BLOCKS = BATCH_BYTES / CZelPool::STEP;

    std::size_t sizeClass() const;
    Block *popBatch();
    Block *cutBatch();
    void startChunk();
    static Block *inOrderOfAddress(Block *batch, std::uint32_t count);

    std::mutex m_lock;
    Block *m_batches = nullptr;
    Block *m_loose = nullptr;
    std::uint32_t m_looseCount = 0;
    char *m_chunk = nullptr;  // its uncut part
    std::size_t m_chunkLeft = 0;
    std::size_t m_chunkSize = FIRST_CHUNK;
};
