#include "foundations/base/CZelDoubleList.h"

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelHLEntry.h"
#include "foundations/base/CZelPointer.h"
#include "foundations/port/ZelCodes.h"
#include "support/TestRandom.h"

namespace {

using Numbers = std::vector<long>;

class DoubleListTest : public testing::Test {
protected:
    static CZelPointer *element(long number) { return new CZelPointer(reinterpret_cast<void *>(number)); }
    static long numberOf(const CZelListable *item) {
        return reinterpret_cast<long>(static_cast<const CZelPointer *>(item)->RPData());
    }
    static void fill(CZelDoubleList &list, const Numbers &numbers) {
        for (long number : numbers)
            list.RDLAddToListEnd(element(number));
    }
    static CZelListable *at(CZelDoubleList &list, int position) {
        CZelListable *item = list.RDLHead();
        while (position-- > 0)
            item = list.RDLGetNext(item);
        return item;
    }
    // Read forwards, after checking that it reads the same backwards and that the length is right.
    static Numbers contents(const CZelDoubleList &list) {
        Numbers forwards, backwards;
        for (const CZelListable *item = list.RDLHead(); item != nullptr; item = list.RDLGetNext(item))
            forwards.push_back(numberOf(item));
        for (const CZelListable *item = list.RDLTail(); item != nullptr; item = list.RDLGetPrev(item))
            backwards.insert(backwards.begin(), numberOf(item));
        EXPECT_EQ(forwards, backwards);
        EXPECT_EQ(forwards.size(), static_cast<std::size_t>(list.RDLLength()));
        return forwards;
    }
    // By the tens only, so that the units show what became of the order of equal elements.
    static int compareTens(CZelListable *left, CZelListable *right) {
        long difference = numberOf(left) / 10 - numberOf(right) / 10;
        return difference < 0 ? -1 : difference > 0 ? 1 : 0;
    }

    CZelDoubleList list;
};

TEST_F(DoubleListTest, InsertsAtBothEndsAndAheadOfAnElement) {
    EXPECT_EQ(nullptr, list.RDLHead());
    EXPECT_EQ(nullptr, list.RDLTail());
    EXPECT_EQ(E_RCOk, list.RDLInsertBefore(element(2), nullptr));
    EXPECT_EQ(E_RCOk, list.RDLAddToListEnd(element(4)));
    EXPECT_EQ(E_RCOk, list.RDLAddToListHead(element(0)));
    EXPECT_EQ(E_RCOk, list.RDLInsertBefore(element(3), list.RDLTail()));
    EXPECT_EQ(E_RCOk, list.RDLInsertBefore(element(-1), list.RDLHead()));
    EXPECT_EQ(E_RCBadArgument, list.RDLAddToListEnd(nullptr));
    EXPECT_EQ(Numbers({-1, 0, 2, 3, 4}), contents(list));
}

TEST_F(DoubleListTest, ElementsLeaveFromAnyPlace) {
    fill(list, {1, 2, 3, 4, 5});
    list.RDLDeleteListable(list.RDLHead());
    list.RDLDeleteListable(list.RDLTail());
    CZelListable *middle = at(list, 1);
    list.RDLSpliceAndJoinAt(middle);
    EXPECT_EQ(Numbers({2, 4}), contents(list));
    EXPECT_EQ(E_RCOk, list.RDLAddToListEnd(middle));
    EXPECT_EQ(Numbers({2, 4, 3}), contents(list));
    while (list.RDLHead() != nullptr)
        list.RDLDeleteListable(list.RDLHead());
    EXPECT_EQ(Numbers(), contents(list));
}

TEST_F(DoubleListTest, AttemptsKnowWhoseAnElementIs) {
    CZelDoubleList other;
    fill(list, {1, 2, 3});
    fill(other, {4, 5, 6});
    CZelPointer loose(nullptr);
    EXPECT_EQ(E_RCNotFound, list.RDLAttemptToDeleteFromList(nullptr));
    EXPECT_EQ(E_RCNotFound, list.RDLAttemptToDeleteFromList(&loose));
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(E_RCNotFound, list.RDLAttemptToDeleteListable(at(other, i)));
    CZelListable *kept = at(list, 1);
    EXPECT_EQ(E_RCOk, list.RDLAttemptToDeleteFromList(kept));
    EXPECT_EQ(E_RCNotFound, list.RDLAttemptToDeleteFromList(kept));
    delete kept;
    EXPECT_EQ(E_RCOk, list.RDLAttemptToDeleteListable(list.RDLTail()));
    EXPECT_EQ(E_RCOk, list.RDLAttemptToDeleteListable(list.RDLTail()));
    EXPECT_EQ(Numbers(), contents(list));
    EXPECT_EQ(Numbers({4, 5, 6}), contents(other));
}

TEST_F(DoubleListTest, AppendedListIsConsumedAndAnEmptyOneAddsNothing) {
    auto *other = new CZelDoubleList;
    fill(*other, {1, 2});
    EXPECT_EQ(E_RCOk, list.RDLAddToListEnd(other, true));
    EXPECT_EQ(E_RCOk, list.RDLAddToListEnd(new CZelDoubleList, true));
    other = new CZelDoubleList;
    fill(*other, {3});
    EXPECT_EQ(E_RCOk, list.RDLAddToListEnd(other, true));
    EXPECT_EQ(E_RCBadArgument, list.RDLAddToListEnd(&list, true));
    EXPECT_EQ(Numbers({1, 2, 3}), contents(list));
}

TEST_F(DoubleListTest, SetHeadForgetsWithoutDeleting) {
    fill(list, {1, 2, 3});
    CZelListable *first = list.RDLHead();
    list.RDLSetHead(at(list, 1));
    EXPECT_EQ(Numbers({2, 3}), contents(list));
    EXPECT_EQ(1, numberOf(first));
    delete first;
    CZelListable *second = list.RDLHead(), *third = list.RDLTail();
    list.RDLSetHead(nullptr);
    EXPECT_EQ(Numbers(), contents(list));
    delete second;
    delete third;
}

TEST_F(DoubleListTest, CopiesHaveTheirOwnElementsOfTheSameClass) {
    CZelAtom key(7);
    list.RDLAddToListEnd(new CZelHLEntry(&key, reinterpret_cast<void *>(1)));
    CZelDoubleList copy(list);
    EXPECT_EQ(Numbers({1}), contents(copy));
    EXPECT_NE(list.RDLHead(), copy.RDLHead());
    auto *entry = dynamic_cast<CZelHLEntry *>(copy.RDLHead());
    ASSERT_NE(nullptr, entry);
    EXPECT_EQ(&key, entry->RHLEKey());
    fill(copy, {2});
    list = copy;
    const CZelDoubleList &same = list;
    list = same;
    EXPECT_EQ(Numbers({1, 2}), contents(list));
}

TEST_F(DoubleListTest, SortIsStableAtEveryLength) {
    TestRandom random;
    for (int length : {0, 1, 2, 3, 4, 7, 8, 9, 100, 1023, 50000}) {
        Numbers numbers;
        for (int i = 0; i < length; ++i)
            numbers.push_back(random.below(500) * 10 + i % 10);
        CZelDoubleList sorted;
        fill(sorted, numbers);
        sorted.RDLSortList(compareTens);
        std::stable_sort(numbers.begin(), numbers.end(), [](long a, long b) { return a / 10 < b / 10; });
        EXPECT_EQ(numbers, contents(sorted)) << length;
    }
}

}  // namespace
