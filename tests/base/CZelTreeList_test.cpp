#include "foundations/base/CZelTreeList.h"

#include <map>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "base/TreeKeys.h"
#include "foundations/port/ZelCodes.h"

namespace {

class TreeListTest : public testing::Test {
protected:
    // The data are texts.
    int add(const char *key, const char *data) { return tree.RTLAdd(key, const_cast<char *>(data)); }
    std::string get(const char *key) {
        const void *data = tree.RTLData(key);
        return data == nullptr ? "" : static_cast<const char *>(data);
    }
    std::string listed() {
        std::string text;
        CZelDoubleList *nodes = tree.RTLIterator();
        for (CZelListable *node = nodes->RDLHead(); node != nullptr; node = nodes->RDLGetNext(node))
            text += std::string(static_cast<char *>(static_cast<CZelPointer *>(node)->RPData())) + " ";
        return text;
    }

    CZelTreeList tree{E_RBFalse};
};

TEST_F(TreeListTest, SecondAddUnderAKeyIsADuplicateAndChangesNothing) {
    EXPECT_EQ(E_RCOk, add("name", "first"));
    EXPECT_EQ(E_RCDuplicate, add("name", "second"));
    CZelAtom interned = CZelAtom::RAName("name");
    CZelPointer ready(nullptr);
    EXPECT_EQ(E_RCDuplicate, tree.RTLAdd(&interned, &ready, true)) << "a ready node stays the caller's";
    EXPECT_EQ("first", get("name"));
    EXPECT_EQ(1, tree.RTLLength());
}

TEST_F(TreeListTest, IteratorHoldsTheVeryNodesInKeyOrderAndIsAlwaysCurrent) {
    EXPECT_EQ("", listed());
    add("b", "B");
    tree.RTLAdd(10, new CZelPointer(const_cast<char *>("10")));
    add("a", "A");
    tree.RTLAdd(9, new CZelPointer(const_cast<char *>("9")));
    EXPECT_EQ("9 10 A B ", listed());
    EXPECT_EQ(tree.RTLGet("b"), tree.RTLIterator()->RDLTail());
    EXPECT_EQ(tree.RTLGet(9), tree.RTLIterator()->RDLHead());
    CZelAtom ten(10);
    EXPECT_EQ(E_RCOk, tree.RTLDelete(&ten));
    EXPECT_EQ(E_RCNotInTree, tree.RTLDelete(&ten));
    EXPECT_EQ("9 A B ", listed());
    tree.RTLEmptyTree();
    EXPECT_EQ("", listed());
    EXPECT_EQ(E_RCOk, add("again", "X"));
    EXPECT_EQ("X ", listed());
}

TEST_F(TreeListTest, NullIsNoKeyAndNoNode) {
    CZelAtom undefined, key("key");
    EXPECT_EQ(E_RCBadArgument, tree.RTLAdd(&undefined, static_cast<void *>(this), true));
    EXPECT_EQ(E_RCBadArgument, tree.RTLAdd(static_cast<const CZelAtom *>(nullptr), static_cast<void *>(this), true));
    EXPECT_EQ(E_RCBadArgument, tree.RTLAdd(&key, static_cast<CZelPointer *>(nullptr), true));
    EXPECT_EQ(E_RCBadArgument, tree.RTLAdd(static_cast<const char *>(nullptr), this));
    EXPECT_EQ(nullptr, tree.RTLGet(&undefined));
    EXPECT_EQ(nullptr, tree.RTLGet(static_cast<const char *>(nullptr)));
    EXPECT_EQ(E_RCNotInTree, tree.RTLDelete(nullptr));
    EXPECT_EQ(0, tree.RTLLength());
    EXPECT_EQ(E_RCOk, tree.RTLAdd("no data", nullptr));
    EXPECT_NE(nullptr, tree.RTLGet("no data"));
}

TEST_F(TreeListTest, InternedAndPlainNamesFindEachOther) {
    for (const char *form : {"interned", "plain"}) {
        for (int i = 0; i < 100; ++i) {
            std::string name = std::string(form) + std::to_string(i);
            CZelAtom key = *form == 'i' ? CZelAtom::RAName(name.c_str()) : CZelAtom(name.c_str());
            ASSERT_EQ(E_RCOk, tree.RTLAdd(&key, const_cast<char *>(form), true));
            CZelAtom interned = CZelAtom::RAName(name.c_str());
            ASSERT_EQ(form, tree.RTLData(&interned));
            ASSERT_EQ(form, tree.RTLData(name.c_str()));
        }
    }
}

TEST_F(TreeListTest, KeysAreCopiesOfItsOwnAndTheCallersAreTheirs) {
    {
        CZelAtom dies("a key that does not fit into its atom");
        tree.RTLAdd(&dies, static_cast<void *>(this), true);
    }
    std::unique_ptr<CZelAtomVector> keys(tree.RTLGetKeys());
    tree.RTLEmptyTree();
    ASSERT_EQ(1U, keys->RAVSize());
    EXPECT_STREQ("a key that does not fit into its atom", keys->RAVGetLast()->RAString());
}

class TreeListRandomTest : public testing::Test {
protected:
    void step(const CZelAtom &key, bool adding) {
        auto place = model.find(key);
        if (!adding) {
            ASSERT_EQ(place == model.end() ? E_RCNotInTree : E_RCOk, tree.RTLDelete(&key));
            if (place != model.end())
                model.erase(place);
        } else if (place != model.end()) {
            ASSERT_EQ(E_RCDuplicate, tree.RTLAdd(&key, this, true));
            ASSERT_EQ(place->second, tree.RTLGet(&key));
        } else {
            auto *node = new CZelPointer(this);
            ASSERT_EQ(E_RCOk, tree.RTLAdd(&key, node, true));
            model.emplace(key, node);
        }
    }
    void compare() {
        std::unique_ptr<CZelAtomVector> keys(tree.RTLGetKeys());
        ASSERT_EQ(model.size(), keys->RAVSize());
        CZelListable *node = tree.RTLIterator()->RDLHead();
        unsigned int i = 0;
        for (const auto &[key, expected] : model) {
            ASSERT_EQ(expected, node);
            ASSERT_EQ(0, keys->RAVGetValue(i++)->RALex(&key, nullptr));
            node = tree.RTLIterator()->RDLGetNext(node);
        }
        ASSERT_EQ(nullptr, node);
    }

    std::map<CZelAtom, CZelPointer *, LessByLex> model;
    CZelTreeList tree{E_RBFalse};
};

TEST_F(TreeListRandomTest, AgreesWithAPlainMap) {
    TestRandom random;
    for (unsigned variety : {5U, 100U, 20000U}) {
        TreeKeys keys(random, variety);
        for (int i = 0; i < 100000 && !HasFatalFailure(); ++i) {
            step(keys.key(), random.below(4) < (i / 10000 % 3 == 2 ? 1U : 3U));
            if (i % 10000 == 0)
                compare();
        }
        compare();
    }
}

// Would take hours if a step walked.
TEST_F(TreeListRandomTest, AMillionAdditionsInOrderAndRemovalsAtRandomTakeLogarithmicSteps) {
    TestRandom random;
    constexpr unsigned COUNT = 1000000;
    for (unsigned i = 0; i < COUNT; ++i)
        ASSERT_EQ(E_RCOk, tree.RTLAdd(static_cast<int>(i), new CZelPointer(nullptr)));
    int removed = 0;
    for (unsigned i = 0; i < COUNT; ++i) {
        CZelAtom key(static_cast<int>(random.below(COUNT)));
        removed += tree.RTLDelete(&key) == E_RCOk ? 1 : 0;
    }
    ASSERT_EQ(static_cast<int>(COUNT) - removed, tree.RTLLength());
}

}  // namespace
