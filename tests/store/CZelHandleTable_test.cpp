#include "store/CZelHandleTable.h"

#include <gtest/gtest.h>

#include <map>
#include <thread>
#include <vector>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelPointer.h"
#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "store/CZelCachedRecord.h"
#include "support/TestRandom.h"

namespace {

std::vector<long> inOrder(CZelHandleTable &table) {
    std::vector<long> numbers;
    for (const CZelListable *node = table.inOrder()->RDLHead(); node != nullptr;
         node = table.inOrder()->RDLGetNext(node))
        numbers.push_back(static_cast<CZelAtom *>(static_cast<const CZelPointer *>(node)->RPData())->RALong());
    return numbers;
}

CZelAtom *addOne(CZelHandleTable &table) {
    CZelAtom *handle = table.take();
    table.add(handle, CZelCachedRecord(handle->RALong(), E_RBTrue));
    return handle;
}

TEST(HandleTableTest, NumbersAscendAndReturnedOnesFollowTheBatchOldestFirst) {
    CZelHandleTable table;
    std::vector<CZelAtom *> handles;
    for (long number = 0; number < 40; ++number)
        EXPECT_EQ(number, handles.emplace_back(addOne(table))->RALong());
    table.remove(*handles[7]);
    table.remove(*handles[3]);
    for (long number = 40; number < 50; ++number)
        EXPECT_EQ(number, addOne(table)->RALong());
    EXPECT_EQ(handles[7], addOne(table));  // the very atom
    EXPECT_EQ(handles[3], addOne(table));
    for (long number = 50; number < 101; ++number)
        EXPECT_EQ(number, addOne(table)->RALong());
}

TEST(HandleTableTest, TheLastBatchIsShortAndThenNoneIsLeft) {
    CZelErrorCapture reports;
    CZelHandleTable table(60);
    for (int i = 0; i < 60; ++i)
        addOne(table);
    EXPECT_EQ(0U, reports.Count());
    EXPECT_EQ(nullptr, table.take());
    EXPECT_EQ(E_RCNoHandle, reports.LastCode());
    table.remove(CZelAtom(17L));
    EXPECT_EQ(17, addOne(table)->RALong());
}

// A second thread enters its piece at the same time.
TEST(HandleTableTest, ManyAtOnceAreAsManyOneByOne) {
    constexpr long ROWS = 2 * CZelHandleTable::BLOCK + 70;
    constexpr long FIRST_PIECE = CZelHandleTable::BLOCK;
    std::vector<CZelHandleTable::Found> rows;
    CZelHandleTable oneByOne;
    for (int i = 0; i < ROWS; ++i) {
        rows.push_back({512 * i, i});
        addOne(oneByOne);
    }
    CZelHandleTable table;
    table.beginMany(ROWS);
    std::thread second(
        [&] { table.addPiece(FIRST_PIECE, rows.data() + FIRST_PIECE, ROWS - FIRST_PIECE, E_RBTrue, FIRST_PIECE); });
    table.addPiece(0, rows.data(), FIRST_PIECE, E_RBTrue, 0);
    second.join();
    table.endMany();
    EXPECT_EQ(inOrder(oneByOne), inOrder(table));
    for (long number = 0; number < ROWS; ++number) {
        const CZelCachedRecord *entry = table.find(CZelAtom(number));
        ASSERT_NE(nullptr, entry);
        EXPECT_EQ(512 * number, entry->RCRGetStartPos());
        EXPECT_EQ(number, entry->RCRSize());
        EXPECT_EQ(number, static_cast<long>(entry->RCRArrival()));
    }
    table.remove(CZelAtom(300L));
    oneByOne.remove(CZelAtom(300L));
    for (int i = 0; i < 60; ++i)
        EXPECT_EQ(addOne(oneByOne)->RALong(), addOne(table)->RALong());
    EXPECT_EQ(inOrder(oneByOne), inOrder(table));
}

// Over several blocks, and so that the table is nearly empty at times.
TEST(HandleTableTest, EntriesAndOrderAreThoseOfAMap) {
    TestRandom random;
    CZelHandleTable table;
    std::map<long, const CZelCachedRecord *> model;
    for (int round = 0; round < 8; ++round) {
        for (int i = 0; i < 3000; ++i) {
            CZelAtom *handle = addOne(table);
            ASSERT_TRUE(model.emplace(handle->RALong(), table.find(*handle)).second);
        }
        const std::size_t rest = random.below(100);
        while (model.size() > rest) {
            const auto victim = model.lower_bound(static_cast<long>(random.below(4000)));
            if (victim == model.end())
                continue;
            table.remove(CZelAtom(victim->first));
            EXPECT_EQ(nullptr, table.find(CZelAtom(victim->first)));
            model.erase(victim);
        }
        std::vector<long> numbers;
        for (const auto &[number, entry] : model) {
            numbers.push_back(number);
            EXPECT_EQ(entry, table.find(CZelAtom(number)));
        }
        ASSERT_EQ(numbers, inOrder(table));
    }
    EXPECT_EQ(nullptr, table.find(CZelAtom(-1L)));
    EXPECT_EQ(nullptr, table.find(CZelAtom(1000000L)));
}

}  // namespace
