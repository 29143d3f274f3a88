#include "foundations/base/CZelPool.h"

#include <gtest/gtest.h>

#include <cstring>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

namespace {

constexpr std::size_t SIZES[] = {1, 16, 17, 32, 48, 100, 128, 129, 4000};

struct Held {
    unsigned char *m_block;
    std::size_t m_size;
    unsigned char m_mark;
};

Held take(std::size_t size, int mark) {
    Held held{static_cast<unsigned char *>(CZelPool::RPTake(size)), size, static_cast<unsigned char>(mark)};
    std::memset(held.m_block, held.m_mark, size);
    return held;
}

// Gives the block back if nobody else has written to it.
bool giveBack(const Held &held) {
    bool intact = true;
    for (std::size_t i = 0; i < held.m_size; ++i)
        intact = intact && held.m_block[i] == held.m_mark;
    CZelPool::RPGive(held.m_block, held.m_size);
    return intact;
}

// A library built under a sanitizer takes every block from malloc.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool IS_MALLOC = true;
#else
constexpr bool IS_MALLOC = false;
#endif

bool latestBlockComesFirst() {
    void *block = CZelPool::RPTake(64);
    CZelPool::RPGive(block, 64);
    void *again = CZelPool::RPTake(64);
    CZelPool::RPGive(again, 64);
    return again == block;
}

// Gives a block back when the thread ends, later than any thread local that was made after it.
struct LateGiver {
    std::vector<Held> m_blocks;
    ~LateGiver() {
        for (const Held &held : m_blocks)
            EXPECT_TRUE(giveBack(held));
        EXPECT_TRUE(giveBack(take(32, 9)));
    }
};
thread_local LateGiver t_late;

}  // namespace

TEST(Pool, BlocksOfAllSizesAreAlignedAndApart) {
    std::vector<Held> blocks;
    for (int round = 0; round < 3000; ++round)
        blocks.push_back(take(SIZES[round % 9], round));
    std::set<unsigned char *> places;
    for (const Held &held : blocks) {
        EXPECT_EQ(0U, reinterpret_cast<std::uintptr_t>(held.m_block) % 16);
        EXPECT_TRUE(places.insert(held.m_block).second);
    }
    for (const Held &held : blocks)
        EXPECT_TRUE(giveBack(held));
    CZelPool::RPGive(nullptr, 16);
}

// Enough blocks that whole batches go to the depot and come back, in an order that has to be sorted.
TEST(Pool, BlocksThatWentThroughTheDepotAreWhole) {
    for (int round = 0; round < 3; ++round) {
        std::vector<Held> blocks;
        for (int i = 0; i < 20000; ++i)
            blocks.push_back(take(32, i));
        for (std::size_t i = 0; i < blocks.size(); ++i)
            std::swap(blocks[i], blocks[i * 7919 % blocks.size()]);
        for (const Held &held : blocks)
            ASSERT_TRUE(giveBack(held));
    }
}

// However they came back, blocks taken one after the other follow each other in memory.
TEST(Pool, BlocksComeOutTogetherWhateverTheOrderTheyCameBackIn) {
    if (IS_MALLOC)
        GTEST_SKIP() << "blocks come from a malloc that has an order of its own";
    constexpr int BLOCKS = 50000;
    std::vector<Held> blocks;
    for (int i = 0; i < BLOCKS; ++i)
        blocks.push_back(take(96, i));
    for (std::size_t i = 0; i < blocks.size(); ++i)
        std::swap(blocks[i], blocks[i * 7919 % blocks.size()]);
    for (const Held &held : blocks)
        ASSERT_TRUE(giveBack(held));
    blocks.clear();
    for (int i = 0; i < BLOCKS; ++i)
        blocks.push_back(take(96, i));
    int jumps = 0;
    for (std::size_t i = 1; i < blocks.size(); ++i)
        jumps += blocks[i].m_block - blocks[i - 1].m_block == 96 ? 0 : 1;
    EXPECT_LT(jumps, BLOCKS / 50);  // those at hand in the thread, and the seams of regions
    for (const Held &held : blocks)
        EXPECT_TRUE(giveBack(held));
}

TEST(Pool, ThreadsGiveBackEachOthersBlocks) {
    std::mutex lock;
    std::vector<Held> shared;
    auto work = [&](int mark) {
        for (int i = 0; i < 20000; ++i) {
            Held mine = take(SIZES[i % 7], mark + i);
            std::lock_guard guard(lock);
            if (shared.size() > 500) {
                EXPECT_TRUE(giveBack(shared[static_cast<std::size_t>(i) % 500]));
                shared[static_cast<std::size_t>(i) % 500] = mine;
            } else {
                shared.push_back(mine);
            }
        }
    };
    std::thread other(work, 1);
    work(100);
    other.join();
    for (const Held &held : shared)
        EXPECT_TRUE(giveBack(held));
}

TEST(Pool, ServesAThreadThatIsEnding) {
    for (int round = 0; round < 20; ++round) {
        std::thread thread([] {
            t_late.m_blocks.clear();
            for (int i = 0; i < 1000; ++i)
                t_late.m_blocks.push_back(take(32, i));
        });
        thread.join();
    }
}

// A thread that only gives must hand on what it holds when it ends.
TEST(Pool, BlocksOfEndedThreadsAreUsedAgain) {
    if (!latestBlockComesFirst())
        GTEST_SKIP() << "blocks come from a malloc that keeps them back";
    std::set<unsigned char *> places;
    for (int round = 0; round < 200; ++round) {
        std::vector<Held> blocks;
        for (int i = 0; i < 100; ++i)
            blocks.push_back(take(112, i));
        for (const Held &held : blocks)
            places.insert(held.m_block);
        std::thread([&] {
            for (const Held &held : blocks)
                EXPECT_TRUE(giveBack(held));
        }).join();
    }
    EXPECT_LT(places.size(), 4000U);
}
