// What all threads share of one size class of the pool: the free blocks, by the region of memory that they lie in.
//
// A region is 64 KiB with a bit per block. Batches are taken from one region after the other, lowest address first,
// however the blocks came back: what is made together lies together, also in a process that has run for long.
// Regions come in chunks, which are never given back to the system.
//
// Threads: one lock per class, held for a batch at a time, and when blocks are taken only while they are marked: they
// are linked behind it, as writing into memory that has not been used for long takes most of the time. Never destroyed,
// since objects die as late as in the destructors of statics.
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
    void GiveBatch(Block *batch);  // any number
    Block *TakeOne();
    void GiveOne(Block *block);

private:
    static constexpr std::size_t BATCH_BYTES = 8192;
    static constexpr unsigned REGION_BITS = 16;
    static constexpr std::size_t REGION = std::size_t{1} << REGION_BITS;
    static constexpr std::size_t LARGEST_CHUNK = 2097152;  // a huge page, where the system has them
    static constexpr unsigned WORD_BITS = 64;

    struct Region;
    struct Claim;  // blocks that have been taken and are to be linked
    static constexpr std::size_t MOST_CLAIMS = BATCH_BYTES / CZelPool::STEP;

    std::size_t sizeClass() const;
    Block *takeBlocks(std::uint32_t count);
    std::size_t claim(std::uint32_t count, Claim *claims);
    void give(Block *block);

    Region &regionWithFree();
    Region *nextOpen() const;
    Region &regionOf(const Block *block);

    void startChunk();
    void addRegion(char *memory);
    void makeSpace();
    Region *&placeOf(std::uintptr_t key) const;
    void setOpen(const Region &region, bool open);

    std::mutex m_lock;
    Region **m_regions = nullptr;      // in the order in which they came
    std::uint64_t *m_open = nullptr;   // a bit per region: has it free blocks?
    Region **m_places = nullptr;       // by address: a hash table of twice the capacity
    std::uint32_t m_count = 0;         // regions
    std::uint32_t m_capacity = 0;      // a power of two
    std::uint32_t m_cursor = 0;        // the region that blocks are taken from
    Region *m_latest = nullptr;        // that a block was given back to
    std::size_t m_chunkSize = REGION;  // of the next chunk
};
