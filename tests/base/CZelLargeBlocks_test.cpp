#include "foundations/base/CZelLargeBlocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <thread>
#include <vector>

#include "support/TestRandom.h"

namespace {

struct Taken {
    unsigned char *m_bytes;
    std::size_t m_size;
    unsigned char m_mark;
};

Taken take(std::size_t size, unsigned char mark) {
    auto *bytes = static_cast<unsigned char *>(CZelLargeBlocks::RLTake(size));
    std::fill_n(bytes, size, mark);
    return {bytes, size, mark};
}

bool isWhole(const Taken &block) {
    return std::all_of(block.m_bytes, block.m_bytes + block.m_size,
                       [&](unsigned char byte) { return byte == block.m_mark; });
}

// Takes and gives back blocks of all sizes and finds in each what it wrote.
bool keepsBlocksApart(unsigned seed, int steps) {
    std::vector<Taken> blocks;
    bool isGood = true;
    const auto giveBack = [&] {
        isGood = isGood && isWhole(blocks.back());
        CZelLargeBlocks::RLGive(blocks.back().m_bytes, blocks.back().m_size);
        blocks.pop_back();
    };
    for (int step = 0; step < steps; ++step) {
        seed = seed * 1664525 + 1013904223;
        if (blocks.size() > 100 || (seed >> 30 == 0 && !blocks.empty())) {
            std::swap(blocks[(seed >> 8) % blocks.size()], blocks.back());
            giveBack();
        } else {
            const std::size_t size = 1 + (seed >> 6) % (seed >> 28 == 0 ? 2 * CZelLargeBlocks::LARGEST : 3000);
            blocks.push_back(take(size, static_cast<unsigned char>(seed >> 16)));
            isGood = isGood && reinterpret_cast<std::uintptr_t>(blocks.back().m_bytes) % CZelLargeBlocks::STEP == 0;
        }
    }
    while (!blocks.empty())
        giveBack();
    return isGood;
}

TEST(LargeBlocksTest, BlocksOfTwoThreadsLieApart) {
    TestRandom random;
    bool isGood = false;
    std::thread other([&, seed = random.below(1000000)] { isGood = keepsBlocksApart(seed, 3000); });
    EXPECT_TRUE(keepsBlocksApart(random.below(1000000), 3000));
    other.join();
    EXPECT_TRUE(isGood);
}

TEST(LargeBlocksTest, NullCanBeGivenBack) {
    CZelLargeBlocks::RLGive(nullptr, 100);
}

}  // namespace
