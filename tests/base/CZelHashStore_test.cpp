#include "foundations/base/CZelHashStore.h"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include <gtest/gtest.h>

#include "foundations/base/CZelHashList.h"
#include "foundations/base/CZelStack.h"
#include "foundations/port/ZelCodes.h"
#include "support/TestRandom.h"

namespace {

void *objectOf(unsigned long number) {
    return reinterpret_cast<void *>(number);
}

class HashStoreTest : public testing::Test {
protected:
    CZelHashStore texts{10, E_RBFalse, E_RBTrue, 500};
    CZelHashStore numbers{10, E_RBTrue, E_RBTrue, 500};
};

TEST_F(HashStoreTest, ANullObjectStillHasANode) {
    EXPECT_EQ(E_RCOk, numbers.RHSAddObjectAt(5UL, nullptr));
    EXPECT_EQ(E_RCOk, texts.RHSAddObjectAt("five", nullptr));
    ASSERT_NE(nullptr, numbers.RHSRetrieveObject(5UL));
    ASSERT_NE(nullptr, texts.RHSRetrieveObject("five"));
    EXPECT_EQ(nullptr, numbers.RHSRetrieveObject(5UL)->RHNGetObject());
    EXPECT_EQ(nullptr, numbers.RHSRetrieveObject(6UL));
    EXPECT_EQ(nullptr, texts.RHSRetrieveObject(""));
}

TEST_F(HashStoreTest, EveryNumberIsAKey) {
    for (unsigned long key : {0UL, 1UL, ~0UL, 1UL << 63, 1UL << 32}) {
        EXPECT_EQ(nullptr, numbers.RHSRetrieveObject(key));
        EXPECT_EQ(E_RCOk, numbers.RHSAddObjectAt(key, objectOf(key + 1)));
        EXPECT_EQ(E_RCDuplicate, numbers.RHSAddObjectAt(key, nullptr));
        EXPECT_EQ(objectOf(key + 1), numbers.RHSRetrieveObject(key)->RHNGetObject());
    }
    EXPECT_EQ(5, numbers.RHSLength());
}

TEST_F(HashStoreTest, AKeyOfTheOtherKindIsRefused) {
    EXPECT_EQ(E_RCBadArgument, numbers.RHSAddObjectAt("text", this));
    EXPECT_EQ(E_RCBadArgument, texts.RHSAddObjectAt(1UL, this));
    EXPECT_EQ(E_RCBadArgument, texts.RHSAddObjectAt(static_cast<const char *>(nullptr), this));
    EXPECT_EQ(nullptr, numbers.RHSRetrieveObject("text"));
    EXPECT_EQ(nullptr, texts.RHSRetrieveObject(0UL));
    EXPECT_EQ(nullptr, texts.RHSRetrieveObject(static_cast<const char *>(nullptr)));
    EXPECT_EQ(E_RCNotInTree, numbers.RHSDeleteObject("text"));
}

TEST_F(HashStoreTest, RetrieveAllGivesEachObjectOnceAndTheStoreFillsAgain) {
    for (CZelHashStore *store : {&texts, &numbers}) {
        for (int round = 0; round < 2; ++round) {
            std::set<void *> expected, found;
            for (unsigned long i = 0; i < 1000; ++i) {
                expected.insert(objectOf(i + 1));
                ASSERT_EQ(E_RCOk, store == &texts ? texts.RHSAddObjectAt(std::to_string(i).c_str(), objectOf(i + 1))
                                                  : numbers.RHSAddObjectAt(i, objectOf(i + 1)));
            }
            std::unique_ptr<CZelStack> all(store->RHSRetrieveAll());
            EXPECT_EQ(1000, all->RSLength());
            while (void *object = all->RSPop())
                found.insert(object);
            EXPECT_EQ(expected, found);
            EXPECT_EQ(0, store->RHSLength());
        }
    }
    EXPECT_EQ(nullptr, texts.RHSRetrieveObject("1"));
    EXPECT_EQ(nullptr, numbers.RHSRetrieveObject(0UL));
}

TEST_F(HashStoreTest, TextsAgreeWithAPlainMap) {
    TestRandom random;
    std::unordered_map<std::string, void *> model;
    for (unsigned long i = 0; i < 200000; ++i) {
        bool growing = i / 20000 % 3 != 2;
        std::string key = std::string(random.below(20), 'x') + std::to_string(random.below(2000));
        if (random.below(4) < (growing ? 3U : 1U)) {
            bool isNew = model.emplace(key, objectOf(i)).second;
            ASSERT_EQ(isNew ? E_RCOk : E_RCDuplicate, texts.RHSAddObjectAt(key.c_str(), objectOf(i)));
        } else {
            ASSERT_EQ(model.erase(key) == 1 ? E_RCOk : E_RCNotInTree, texts.RHSDeleteObject(key.c_str()));
        }
        std::string other = std::to_string(random.below(2000));
        const CZelHashNode *node = texts.RHSRetrieveObject(other.c_str());
        auto place = model.find(other);
        ASSERT_EQ(place == model.end(), node == nullptr);
        ASSERT_EQ(place == model.end() ? nullptr : place->second, node == nullptr ? nullptr : node->RHNGetObject());
        ASSERT_EQ(model.size(), static_cast<std::size_t>(texts.RHSLength()));
    }
}

// Addresses of rows stand at even distances: their bits have to be spread. A table that doesn't would walk.
TEST_F(HashStoreTest, NumbersAtEvenDistancesAreFoundAtOnce) {
    for (unsigned shift : {0U, 4U, 12U, 40U}) {
        CZelHashStore store(-1, E_RBTrue, E_RBTrue, 500);
        for (unsigned long i = 0; i < 100000; ++i)
            ASSERT_EQ(E_RCOk, store.RHSAddObjectAt(i << shift, objectOf(i)));
        for (unsigned long i = 0; i < 100000; ++i)
            ASSERT_EQ(objectOf(i), store.RHSRetrieveObject(i << shift)->RHNGetObject());
        ASSERT_EQ(nullptr, store.RHSRetrieveObject(100000UL << shift));
    }
}

class HashListTest : public testing::Test {
protected:
    CZelPointer *add(unsigned long key) {
        auto *node = new CZelPointer(nullptr);
        EXPECT_EQ(E_RCOk, list.RHLAdd(key, node));
        return node;
    }

    CZelHashList list{100, E_RBFalse, 70};
};

TEST_F(HashListTest, SeveralNodesUnderAKeyComeOldestFirst) {
    CZelPointer *first = add(0), *second = add(0), *other = add(7);
    EXPECT_EQ(first, list.RHLGet(0));
    EXPECT_EQ(E_RCBadArgument, list.RHLAdd(0, nullptr));
    EXPECT_EQ(E_RCBadArgument, list.RHLAdd(0, second)) << "it is there";
    EXPECT_EQ(3, list.RHLLength());
    EXPECT_EQ(E_RCNotInTree, list.RHLDelete(7, second));
    EXPECT_EQ(E_RCOk, list.RHLDelete(0, first));
    EXPECT_EQ(second, list.RHLGet(0));
    EXPECT_EQ(second, list.RHLIterator()->RDLHead());
    EXPECT_EQ(other, list.RHLIterator()->RDLTail());
    add(0);
    EXPECT_EQ(E_RCOk, list.RHLDelete(0));
    EXPECT_EQ(E_RCNotInTree, list.RHLDelete(0));
    EXPECT_EQ(nullptr, list.RHLGet(0));
    EXPECT_EQ(1, list.RHLLength());
}

TEST_F(HashListTest, AgreesWithAPlainMap) {
    TestRandom random;
    std::map<unsigned long, std::vector<CZelPointer *>> model;
    std::size_t length = 0;
    for (int i = 0; i < 200000; ++i) {
        unsigned long key = random.oneIn(10) ? 3 : random.below(3000);
        auto place = model.find(key);
        if (random.below(4) < (i / 20000 % 3 != 2 ? 3U : 1U)) {
            model[key].push_back(add(key));
            ++length;
        } else if (place == model.end()) {
            ASSERT_EQ(E_RCNotInTree, list.RHLDelete(key));
        } else if (random.oneIn(3)) {
            ASSERT_EQ(E_RCOk, list.RHLDelete(key));
            length -= place->second.size();
            model.erase(place);
        } else {
            auto node = place->second.begin() + random.below(static_cast<unsigned>(place->second.size()));
            ASSERT_EQ(E_RCOk, list.RHLDelete(key, *node));
            place->second.erase(node);
            --length;
            if (place->second.empty())
                model.erase(place);
        }
        place = model.find(key);
        ASSERT_EQ(place == model.end() ? nullptr : place->second[0], list.RHLGet(key));
        ASSERT_EQ(length, static_cast<std::size_t>(list.RHLLength()));
    }
}

}  // namespace
