#include "foundations/port/ZelInParts.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

TEST(InParts, EachPartIsDoneOnceAndTheFirstByTheCaller) {
    for (std::size_t parts = 1; parts <= 9; ++parts) {
        std::vector<std::atomic<int>> done(parts);
        std::thread::id first;
        ZelInParts(parts, [&](std::size_t part) {
            ++done[part];
            if (part == 0)
                first = std::this_thread::get_id();
        });
        for (const std::atomic<int> &times : done)
            EXPECT_EQ(1, times.load()) << parts;
        EXPECT_EQ(std::this_thread::get_id(), first);
    }
}

TEST(InParts, PartsMeetAndAreLargeEnoughForAThread) {
    EXPECT_EQ(1U, ZelPartsFor(0, 100));
    EXPECT_EQ(1U, ZelPartsFor(199, 100));
    for (const std::size_t things : {0U, 7U, 200U, 1000003U}) {
        const std::size_t parts = ZelPartsFor(things, 100);
        EXPECT_LE(parts, 4U);
        EXPECT_EQ(0U, ZelBeginOfPart(things, 0, parts));
        EXPECT_EQ(things, ZelBeginOfPart(things, parts, parts));
        for (std::size_t part = 0; part < parts; ++part)
            EXPECT_LE(ZelBeginOfPart(things, part, parts), ZelBeginOfPart(things, part + 1, parts));
    }
}

TEST(InParts, ALimitLeavesWorkToTheCallerUntilItIsLifted) {
    const std::size_t parts = ZelPartsFor(1000000, 1);
    ZelLimitParts(1);
    EXPECT_EQ(1U, ZelPartsFor(1000000, 1));
    ZelLimitParts(0);
    EXPECT_EQ(parts, ZelPartsFor(1000000, 1));
}
