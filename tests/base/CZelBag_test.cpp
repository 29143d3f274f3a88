#include "foundations/base/CZelBag.h"

#include <vector>

#include <gtest/gtest.h>

#include "foundations/base/CZelAtom.h"
#include "foundations/port/ZelCodes.h"

namespace {

using Pointers = std::vector<void *>;

class BagTest : public testing::Test {
protected:
    static Pointers contents(const CZelBag &bag) {
        Pointers found;
        for (const CZelPointer *node = bag.RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
            found.push_back(node->RPData());
        EXPECT_EQ(found.size(), static_cast<std::size_t>(bag.RBLength()));
        return found;
    }

    int a = 0, b = 0, c = 0;
    CZelBag bag;
};

TEST_F(BagTest, KeepsOrderRepetitionsAndNull) {
    bag.RBAdd(static_cast<void *>(&b));
    bag.RBAdd(static_cast<void *>(nullptr));
    bag.RBAdd(new CZelPointer(&a));
    bag.RBAdd(static_cast<void *>(&b));
    EXPECT_EQ(Pointers({&b, nullptr, &a, &b}), contents(bag));
    EXPECT_NE(nullptr, CZelBag().RBIterator());
}

TEST_F(BagTest, AddMovesAndAppendCopies) {
    auto *other = new CZelBag;
    other->RBAdd(static_cast<void *>(&a));
    other->RBAdd(static_cast<void *>(&b));
    EXPECT_EQ(E_RCOk, bag.RBAppend(other));
    EXPECT_EQ(Pointers({&a, &b}), contents(*other));
    CZelPointer *node = other->RBFirst();
    EXPECT_EQ(E_RCOk, bag.RBAdd(other));
    EXPECT_EQ(Pointers({&a, &b, &a, &b}), contents(bag));
    EXPECT_EQ(node, CZelBag::RBNext(CZelBag::RBNext(bag.RBFirst()))) << "moving takes the nodes themselves";
    EXPECT_EQ(E_RCOk, bag.RBAppend(static_cast<CZelBag *>(nullptr)));
    EXPECT_EQ(E_RCBadArgument, bag.RBAdd(static_cast<CZelBag *>(nullptr)));
    EXPECT_EQ(E_RCBadArgument, bag.RBAdd(&bag));
    EXPECT_EQ(4, bag.RBLength());
}

TEST_F(BagTest, AppendsItselfOnce) {
    bag.RBAdd(static_cast<void *>(&a));
    bag.RBAdd(static_cast<void *>(&b));
    EXPECT_EQ(E_RCOk, bag.RBAppend(&bag));
    EXPECT_EQ(Pointers({&a, &b, &a, &b}), contents(bag));
    EXPECT_EQ(E_RCOk, bag.RBAppend(bag.RBIterator()));
    EXPECT_EQ(8, bag.RBLength());
}

TEST_F(BagTest, CopyHasItsOwnNodes) {
    bag.RBAdd(static_cast<void *>(&a));
    CZelBag copy(bag);
    copy.RBFirst()->RPSetData(&c);
    copy.RBAdd(static_cast<void *>(&b));
    EXPECT_EQ(Pointers({&a}), contents(bag));
    EXPECT_EQ(Pointers({&c, &b}), contents(copy));
}

TEST_F(BagTest, AWalkerMayDeleteAsItGoes) {
    for (int i = 0; i < 10; ++i)
        bag.RBAdd(static_cast<void *>(i % 3 == 0 ? &a : &b));
    CZelPointer *next = nullptr;
    for (CZelPointer *node = bag.RBFirst(); node != nullptr; node = next) {
        next = CZelBag::RBNext(node);
        if (node->RPData() == &a)
            bag.RBFastDelete(node);
    }
    EXPECT_EQ(Pointers(6, &b), contents(bag));
    bag.RBEmptyBag();
    EXPECT_EQ(Pointers(), contents(bag));
}

TEST_F(BagTest, GuardDeletesTheContentsUnlessReleased) {
    auto *kept = new CZelBag;
    {
        CZelBagGuard<CZelAtom> dies(new CZelBag);
        dies->RBAdd(new CZelAtom(1));
        CZelBagGuard<CZelAtom> released(kept);
        EXPECT_EQ(kept, released.release());
        CZelBagGuard<CZelAtom> empty(nullptr);
    }
    EXPECT_EQ(0, kept->RBLength());
    delete kept;
}

}  // namespace
