#include "foundations/base/CZelStack.h"

#include <deque>

#include <gtest/gtest.h>

#include "foundations/port/ZelCodes.h"
#include "support/TestRandom.h"

namespace {

TEST(StackTest, KeepsToItsLimitAtBothEnds) {
    CZelStack stack(2);
    int a = 0, b = 0, c = 0;
    EXPECT_EQ(nullptr, stack.RSPop());
    EXPECT_EQ(E_RCOk, stack.RSPush(&a));
    EXPECT_EQ(E_RCOk, stack.RSPushBottom(&b));
    EXPECT_EQ(E_RCBadValue, stack.RSPush(&c));
    EXPECT_EQ(E_RCBadValue, stack.RSPushBottom(&c));
    EXPECT_EQ(&b, stack.RSPeek(0));
    EXPECT_EQ(&a, stack.RSPeek(1));
    EXPECT_EQ(nullptr, stack.RSPeek(2));
    EXPECT_EQ(nullptr, stack.RSPeek(-1));
    EXPECT_EQ(&a, stack.RSPop());
    EXPECT_EQ(&b, stack.RSPop());
    EXPECT_EQ(E_RCBadValue, CZelStack(0).RSPush(&c));
}

TEST(StackTest, GivesEveryEntryBackOnceFromTheRightEnd) {
    TestRandom random;
    CZelStack stack(-1);
    std::deque<void *> model;
    for (unsigned long step = 0; step < 100000; ++step) {
        bool shrinking = step / 1000 % 4 == 3;
        if (random.oneIn(shrinking ? 1 : 3)) {
            void *expected = model.empty() ? nullptr : model.back();
            ASSERT_EQ(expected, stack.RSPop());
            if (!model.empty())
                model.pop_back();
        } else if (random.oneIn(2)) {
            stack.RSPush(reinterpret_cast<void *>(step));
            model.push_back(reinterpret_cast<void *>(step));
        } else {
            stack.RSPushBottom(reinterpret_cast<void *>(step));
            model.push_front(reinterpret_cast<void *>(step));
        }
        ASSERT_EQ(model.size(), static_cast<std::size_t>(stack.RSLength()));
        std::size_t middle = model.size() / 2;
        ASSERT_EQ(model.empty() ? nullptr : model[middle], stack.RSPeek(static_cast<int>(middle)));
    }
}

}  // namespace
