#include "foundations/base/CZelAtomVector.h"

#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "foundations/port/ZelCodes.h"

namespace {

class AtomVectorTest : public testing::Test {
protected:
    static void fill(CZelAtomVector &into, std::initializer_list<int> numbers) {
        for (int number : numbers)
            into.RAVAddToEnd(new CZelAtom(number));
    }
    static std::string contents(const CZelAtomVector &of) {
        std::string text;
        for (unsigned int i = 0; i < of.RAVSize(); ++i) {
            const CZelAtom *atom = of.RAVGetValue(i);
            text += (atom == nullptr ? "-" : std::to_string(atom->RAInt())) + " ";
        }
        return text;
    }
    // By the tens only.
    static int compareTens(const void *left, const void *right) {
        auto tens = [](const void *entry) { return (*static_cast<CZelAtom *const *>(entry))->RAInt() / 10; };
        return tens(left) - tens(right);
    }

    CZelAtomVector vector{0};
};

TEST_F(AtomVectorTest, GivesNullOutsideAndForEmpty) {
    EXPECT_EQ(nullptr, vector.RAVGetLast());
    EXPECT_EQ(nullptr, vector.RAVGetValue(0));
    EXPECT_EQ(nullptr, vector.RAVRemoveAtom(0));
    vector.RAVSortVec(nullptr);
    EXPECT_EQ(0U, CZelAtomVector(vector).RAVSize());
}

TEST_F(AtomVectorTest, RemovedAtomSurvivesAndLaterOnesMoveDown) {
    CZelAtom *removed = nullptr;
    {
        CZelAtomVector dies(2);
        fill(dies, {1, 2, 3});
        removed = dies.RAVRemoveAtom(0);
        EXPECT_EQ("2 3 ", contents(dies));
        delete dies.RAVRemoveAtom(1);
        EXPECT_EQ("2 ", contents(dies));
    }
    EXPECT_EQ(1, removed->RAInt());
    delete removed;
}

TEST_F(AtomVectorTest, LentAtomsAreForgottenByReset) {
    CZelAtom lent("on the stack");
    vector.RAVAddToEnd(&lent);
    vector.RAVReset();
    EXPECT_EQ(0U, vector.RAVSize());
    EXPECT_STREQ("on the stack", lent.RAString());
}

TEST_F(AtomVectorTest, MovesAnotherVectorIn) {
    fill(vector, {1});
    auto *other = new CZelAtomVector(0);
    fill(*other, {2, 3, 4, 5, 6});
    EXPECT_EQ(E_RCOk, vector.RAVAddToEnd(other, true));
    EXPECT_EQ(E_RCOk, vector.RAVAddToEnd(new CZelAtomVector(10), true));
    EXPECT_EQ(E_RCBadArgument, vector.RAVAddToEnd(&vector, true));
    EXPECT_EQ(E_RCBadArgument, vector.RAVAddToEnd(nullptr, true));
    EXPECT_EQ("1 2 3 4 5 6 ", contents(vector));
}

TEST_F(AtomVectorTest, SettingGrowsWithNullsAndDeletesWhatWasThere) {
    vector.RAVSetValue(2, new CZelAtom(7));
    EXPECT_EQ("- - 7 ", contents(vector));
    vector.RAVSetValue(2, new CZelAtom(8));
    vector.RAVSetValue(0, new CZelAtom(9));
    vector.RAVSetValue(0, vector.RAVGetValue(0));
    EXPECT_EQ("9 - 8 ", contents(vector));
    CZelAtomVector copy(vector);
    EXPECT_EQ("9 - 8 ", contents(copy));
    EXPECT_NE(copy.RAVGetLast(), vector.RAVGetLast());
}

TEST_F(AtomVectorTest, SortsStablyByAComparisonOrNaturally) {
    fill(vector, {21, 35, 22, 11, 30, 23});
    vector.RAVSortVec(compareTens);
    EXPECT_EQ("11 21 22 23 35 30 ", contents(vector));
    vector.RAVAddToEnd(static_cast<CZelAtom *>(nullptr));
    vector.RAVSortVec(nullptr);
    EXPECT_EQ("- 11 21 22 23 30 35 ", contents(vector));
}

TEST_F(AtomVectorTest, LooksForATextInAnyForm) {
    fill(vector, {1});
    vector.RAVAddToEnd(static_cast<CZelAtom *>(nullptr));
    vector.RAVAddToEnd(new CZelAtom("name"));
    EXPECT_TRUE(vector.RAVHoldsText(CZelAtom::RAName("name")));
    EXPECT_FALSE(vector.RAVHoldsText(CZelAtom("names")));
    EXPECT_FALSE(vector.RAVHoldsText(CZelAtom(1)));
}

// Recursion over a nest as deep as this would need far more than any thread's stack.
TEST_F(AtomVectorTest, DeepNestDiesWithoutRecursion) {
    auto *innermost = new CZelAtom(1);
    for (int depth = 0; depth < 1000000; ++depth) {
        auto *list = new CZelAtomVector(1);
        list->RAVAddToEnd(innermost);
        innermost = new CZelAtom(list);
    }
    vector.RAVAddToEnd(innermost);
}

}  // namespace
