#include "foundations/base/CZelPool_depot.h"

#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>

#include "foundations/port/ZelOutOfMemory.h"

namespace {

constinit CZelPoolDepot g_depots[CZelPoolDepot::CLASSES];

// Memory of the depot's own, zeroed. Not from the pool.
template <class T>
T *zeroed(std::size_t count) {
    void *memory = std::calloc(count, sizeof(T));  // NOLINT(bugprone-sizeof-expression): the items are pointers too
    if (memory == nullptr)
        ZelOutOfMemory();
    return static_cast<T *>(memory);
}

template <class T>
void enlarge(T *&items, std::size_t former, std::size_t count) {
    T *larger = zeroed<T>(count);
    std::copy_n(items, former, larger);
    std::free(items);
    items = larger;
}

std::size_t wordsFor(std::size_t bits) {
    return (bits + 63) / 64;
}

}  // namespace

struct CZelPoolDepot::Region {
    char *m_base;
    std::uint32_t m_number;   // among the regions
    std::uint32_t m_free;     // blocks
    std::uint32_t m_size;     // of a block
    std::uint32_t m_inverse;  // 2^32 / size, rounded up: multiplies where division would be slow

    // A bit per block, set while it is free. They lie behind the region.
    std::uint64_t *Bits() { return reinterpret_cast<std::uint64_t *>(this + 1); }

    static std::uintptr_t KeyOf(const void *memory) { return reinterpret_cast<std::uintptr_t>(memory) >> REGION_BITS; }
    std::uint32_t IndexOf(const Block *block) const {
        const auto offset = static_cast<std::uint64_t>(reinterpret_cast<const char *>(block) - m_base);
        return static_cast<std::uint32_t>(offset * m_inverse >> 32);
    }
    Block *BlockAt(std::uint32_t index) const {
        return reinterpret_cast<Block *>(m_base + static_cast<std::size_t>(index) * m_size);
    }
    // Takes up to `count` blocks, lowest address first, and notes them from *claim on, which moves. Gives their number.
    std::uint32_t TakeUpTo(std::uint32_t count, Claim *&claim);
};

// Blocks of one word of a region's bits.
struct CZelPoolDepot::Claim {
    const Region *m_region;
    std::uint32_t m_word;
    std::uint64_t m_bits;

    // Links them behind *link, which moves on.
    void Link(Block **&link) const {
        for (std::uint64_t bits = m_bits; bits != 0; bits &= bits - 1) {
            *link = m_region->BlockAt(m_word * WORD_BITS + static_cast<std::uint32_t>(std::countr_zero(bits)));
            link = &(*link)->m_next;
        }
    }
};

std::uint32_t CZelPoolDepot::Region::TakeUpTo(std::uint32_t count, Claim *&claim) {
    const std::uint32_t wanted = std::min(count, m_free);
    std::uint32_t left = wanted;
    for (std::uint32_t word = 0; left > 0; ++word) {
        const std::uint64_t free = Bits()[word];
        std::uint64_t rest = free;
        for (; rest != 0 && left > 0; --left)
            rest &= rest - 1;
        if (rest != free)
            *claim++ = {this, word, free ^ rest};
        Bits()[word] = rest;
    }
    m_free -= wanted;
    return wanted;
}

CZelPoolDepot &CZelPoolDepot::Of(std::size_t sizeClass) {
    return g_depots[sizeClass];
}

std::size_t CZelPoolDepot::sizeClass() const {
    return static_cast<std::size_t>(this - g_depots);
}

CZelPoolDepot::Block *CZelPoolDepot::TakeBatch() {
    return takeBlocks(BatchSize(sizeClass()));
}

CZelPoolDepot::Block *CZelPoolDepot::TakeOne() {
    return takeBlocks(1);
}

void CZelPoolDepot::GiveBatch(Block *batch) {
    std::lock_guard guard(m_lock);
    while (batch != nullptr) {
        Block *next = batch->m_next;
        give(batch);
        batch = next;
    }
}

void CZelPoolDepot::GiveOne(Block *block) {
    std::lock_guard guard(m_lock);
    give(block);
}

CZelPoolDepot::Block *CZelPoolDepot::takeBlocks(std::uint32_t count) {
    std::array<Claim, MOST_CLAIMS> claims;
    const std::size_t length = claim(count, claims.data());
    Block *first = nullptr;
    Block **link = &first;
    for (std::size_t i = 0; i < length; ++i)
        claims[i].Link(link);
    *link = nullptr;
    return first;
}

// Gives the number of the claims, none of which is empty.
std::size_t CZelPoolDepot::claim(std::uint32_t count, Claim *claims) {
    std::lock_guard guard(m_lock);
    Claim *end = claims;
    while (count > 0) {
        Region &region = regionWithFree();
        count -= region.TakeUpTo(count, end);
        if (region.m_free == 0)
            setOpen(region, false);
    }
    return static_cast<std::size_t>(end - claims);
}

void CZelPoolDepot::give(Block *block) {
    Region &region = regionOf(block);
    const std::uint32_t index = region.IndexOf(block);
    region.Bits()[index / WORD_BITS] |= std::uint64_t{1} << index % WORD_BITS;
    if (region.m_free++ == 0)
        setOpen(region, true);
}

CZelPoolDepot::Region &CZelPoolDepot::regionWithFree() {
    Region *region = nextOpen();
    if (region == nullptr) {
        startChunk();
        region = nextOpen();
    }
    m_cursor = region->m_number;
    return *region;
}

// From the region at hand on, and then from the first one.
CZelPoolDepot::Region *CZelPoolDepot::nextOpen() const {
    const std::size_t words = wordsFor(m_count);
    const std::size_t first = m_cursor / WORD_BITS;
    for (std::size_t i = 0; i <= words && words > 0; ++i) {
        const std::size_t word = (first + i) % words;
        const std::uint64_t before = i == 0 ? (std::uint64_t{1} << m_cursor % WORD_BITS) - 1 : 0;
        const std::uint64_t bits = m_open[word] & ~before;
        if (bits != 0)
            return m_regions[word * WORD_BITS + static_cast<std::size_t>(std::countr_zero(bits))];
    }
    return nullptr;
}

CZelPoolDepot::Region &CZelPoolDepot::regionOf(const Block *block) {
    const std::uintptr_t key = Region::KeyOf(block);
    if (m_latest == nullptr || Region::KeyOf(m_latest->m_base) != key)
        m_latest = placeOf(key);
    return *m_latest;
}

void CZelPoolDepot::setOpen(const Region &region, bool open) {
    const std::uint64_t bit = std::uint64_t{1} << region.m_number % WORD_BITS;
    std::uint64_t &word = m_open[region.m_number / WORD_BITS];
    word = open ? word | bit : word & ~bit;
}

// Chunks double, so that a small process stays small and a large one has few page table entries.
void CZelPoolDepot::startChunk() {
    char *chunk = static_cast<char *>(std::aligned_alloc(m_chunkSize, m_chunkSize));
    if (chunk == nullptr)
        ZelOutOfMemory();
    if (m_chunkSize == LARGEST_CHUNK)
        madvise(chunk, m_chunkSize, MADV_HUGEPAGE);
    for (std::size_t offset = 0; offset < m_chunkSize; offset += REGION)
        addRegion(chunk + offset);
    m_chunkSize = std::min(2 * m_chunkSize, LARGEST_CHUNK);
}

void CZelPoolDepot::addRegion(char *memory) {
    if (m_count == m_capacity)
        makeSpace();
    const std::size_t size = BlockSize(sizeClass());
    const std::size_t blocks = REGION / size;
    void *place = std::calloc(1, sizeof(Region) + wordsFor(blocks) * sizeof(std::uint64_t));
    if (place == nullptr)
        ZelOutOfMemory();
    auto *region = static_cast<Region *>(place);
    region->m_base = memory;
    region->m_number = m_count;
    region->m_size = static_cast<std::uint32_t>(size);
    region->m_inverse = static_cast<std::uint32_t>((std::uint64_t{1} << 32) / size + 1);
    region->m_free = static_cast<std::uint32_t>(blocks);
    for (std::size_t i = 0; i < blocks; ++i)
        region->Bits()[i / WORD_BITS] |= std::uint64_t{1} << i % WORD_BITS;
    m_regions[m_count++] = region;
    placeOf(Region::KeyOf(memory)) = region;
    setOpen(*region, true);
}

void CZelPoolDepot::makeSpace() {
    const std::uint32_t capacity = m_capacity == 0 ? WORD_BITS : 2 * m_capacity;
    enlarge(m_regions, m_capacity, capacity);
    enlarge(m_open, m_capacity / WORD_BITS, capacity / WORD_BITS);
    std::free(m_places);
    m_places = zeroed<Region *>(2 * static_cast<std::size_t>(capacity));
    m_capacity = capacity;
    for (std::uint32_t i = 0; i < m_count; ++i)
        placeOf(Region::KeyOf(m_regions[i]->m_base)) = m_regions[i];
}

// Where the region of that key stands, or the empty place where it belongs. Addresses of one chunk follow each
// other, so the low bits spread them.
CZelPoolDepot::Region *&CZelPoolDepot::placeOf(std::uintptr_t key) const {
    const std::size_t mask = 2 * static_cast<std::size_t>(m_capacity) - 1;
    std::size_t place = key & mask;
    while (m_places[place] != nullptr && Region::KeyOf(m_places[place]->m_base) != key)
        place = (place + 1) & mask;
    return m_places[place];
}
