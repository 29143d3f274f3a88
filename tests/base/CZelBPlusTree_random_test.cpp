// Index trees beside a plain map from key to objects. A query's answer is what a walk over all keys gives that
// asks each of them by RAEvalRelop: an indexed column answers as an unindexed one.
#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/TreeKeys.h"
#include "foundations/base/CZelBPlusTree.h"
#include "foundations/base/CZelBag.h"
#include "foundations/port/ZelCodes.h"

namespace {

using Objects = std::vector<void *>;

class BPlusTreeRandomTest : public testing::TestWithParam<bool> {
protected:
    bool isDegenerate() const { return GetParam(); }

    int addToModel(const CZelAtom &key, void *object) {
        Objects &objects = m_model[key];
        if (std::find(objects.begin(), objects.end(), object) != objects.end())
            return E_RCOk;
        if (!isDegenerate() && !key.RAIsUndefined() && !objects.empty())
            return E_RCKeyExists;
        objects.push_back(object);
        ++m_length;
        return E_RCOk;
    }
    int removeFromModel(const CZelAtom &key, void *object) {
        auto place = m_model.find(key);
        if (place == m_model.end())
            return E_RCNotInTree;
        auto found = std::find(place->second.begin(), place->second.end(), object);
        if (found == place->second.end())
            return E_RCNotInTree;
        place->second.erase(found);
        --m_length;
        if (place->second.empty())
            m_model.erase(place);
        return E_RCOk;
    }
    Objects askModel(EZelOper op, const CZelAtom &value) const {
        Objects answer;
        for (const auto &[key, objects] : m_model) {
            if (holds(key, op, value))
                answer.insert(answer.end(), objects.begin(), objects.end());
        }
        return answer;
    }
    static bool holds(const CZelAtom &key, EZelOper op, const CZelAtom &value) {
        if (key.RAIsUndefined() || value.RAIsUndefined())
            return op <= E_RONotEqual && (key.RAIsUndefined() && value.RAIsUndefined()) == (op == E_ROEqual);
        return key.RAEvalRelop(op, &value) == E_RBTrue;
    }

    void step(TestRandom &random, const CZelAtom &key, bool growing) {
        void *object = &m_objects[random.below(OBJECTS)];
        const CZelAtom *argument = key.RAIsUndefined() && random.oneIn(2) ? nullptr : &key;
        if (random.below(4) < (growing ? 3U : 1U))
            ASSERT_EQ(addToModel(key, object), m_tree.RBPTAddObjectToTree(argument, object, random.oneIn(2)));
        else
            ASSERT_EQ(removeFromModel(key, object), m_tree.RBPTLiteralDeleteObjectInTree(argument, object));
        ASSERT_EQ(m_length, m_tree.RBPTLength());
    }
    void compareAnswers(const CZelAtom &value) {
        for (int op = E_ROEqual; op <= E_ROGreaterEqual; ++op) {
            Objects expected = askModel(static_cast<EZelOper>(op), value);
            CZelBag bag;
            int count = m_tree.RBPTAppendQuery(&value, static_cast<EZelOper>(op), bag);
            Objects found;
            for (const CZelPointer *node = bag.RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
                found.push_back(node->RPData());
            ASSERT_EQ(expected, found) << op;
            ASSERT_EQ(count, m_tree.RBPTCountQuery(&value, static_cast<EZelOper>(op)));
            ASSERT_EQ(count >= 3, m_tree.RBPTCountQuery(&value, static_cast<EZelOper>(op), 3) >= 3);
            ASSERT_EQ(count == m_length, m_tree.RBPTIsWhole(&value, static_cast<EZelOper>(op)));
        }
    }
    void compareNode(const CZelAtom &key) {
        auto place = m_model.find(key);
        const CZelBTreeNode *node = m_tree.RBPTGetNodeForKey(&key);
        ASSERT_EQ(place == m_model.end(), node == nullptr);
        if (node == nullptr)
            return;
        const Objects &objects = place->second;
        ASSERT_EQ(objects.size(), node->RBTNCount());
        ASSERT_EQ(ZelBool(objects.size() > 1), node->RBTNNodeHasList());
        ASSERT_EQ(objects.size() == 1 ? objects[0] : nullptr, node->RBTNGetData());
        ASSERT_EQ(objects[0], m_tree.RBPTFindSingle(&key));
        ASSERT_TRUE(node->RBTNHolds(objects.back()));
        ASSERT_FALSE(node->RBTNHolds(this));
    }
    // Many at once, some of them absent, null or twice the same: each as by itself.
    void compareNodes(TreeKeys &keys, std::size_t count) {
        std::vector<CZelAtom> wanted;
        for (std::size_t i = 0; i < count; ++i)
            wanted.push_back(i % 7 == 3 ? wanted.back() : keys.key());
        std::vector<const CZelAtom *> pointers;
        for (std::size_t i = 0; i < count; ++i)
            pointers.push_back(i % 11 == 5 ? nullptr : &wanted[i]);
        std::vector<CZelBTreeNode *> nodes(count, reinterpret_cast<CZelBTreeNode *>(this));
        m_tree.RBPTGetNodesForKeys(pointers.data(), count, nodes.data());
        for (std::size_t i = 0; i < count; ++i)
            ASSERT_EQ(m_tree.RBPTGetNodeForKey(pointers[i]), nodes[i]) << i << " of " << count;
    }
    void compareKeys() {
        std::unique_ptr<CZelAtomVector> keys(m_tree.RBPTTreeKeysToAtomVector());
        ASSERT_EQ(m_model.size(), keys->RAVSize());
        unsigned int i = 0;
        for (const auto &entry : m_model)
            ASSERT_EQ(0, keys->RAVGetValue(i++)->RALex(&entry.first, nullptr));
    }
    // Requires: the model has what is loaded, and the tree is empty.
    void loadAndCompare(CZelArray<SZelKeyedObject> &pairs) {
        ASSERT_EQ(E_RCOk, m_tree.RBPTLoad(pairs));
        compareKeys();
        for (const auto &entry : m_model)
            compareNode(entry.first);
    }
    // Growing and shrinking in turns, at last to nothing.
    void play(TestRandom &random, unsigned variety, unsigned steps) {
        TreeKeys keys(random, variety);
        for (unsigned i = 0; i < steps && !HasFatalFailure(); ++i) {
            CZelAtom key = random.oneIn(40) ? CZelAtom() : keys.key();
            step(random, key, i / 20000 % 3 != 2);
            if (i % 97 == 0)
                compareNode(key);
            if (i % 9973 == 0)
                compareAnswers(keys.key());
            if (i % 997 == 0)
                compareNodes(keys, random.oneIn(2) ? random.below(4) : 31 + random.below(35));
        }
        compareKeys();
        removeAll(random);
    }
    void removeAll(TestRandom &random) {
        while (!m_model.empty() && !HasFatalFailure()) {
            auto place = m_model.begin();
            std::advance(place, random.below(static_cast<unsigned>(std::min<std::size_t>(m_model.size(), 40))));
            CZelAtom key(place->first);
            void *object = place->second[random.below(static_cast<unsigned>(place->second.size()))];
            ASSERT_EQ(removeFromModel(key, object), m_tree.RBPTLiteralDeleteObjectInTree(&key, object));
        }
        ASSERT_EQ(E_RBTrue, m_tree.RBPTIsEmpty());
        TreeKeys keys(random, 3);
        compareNodes(keys, 40);
    }

    static constexpr unsigned OBJECTS = 5000;
    long m_objects[OBJECTS] = {};
    std::map<CZelAtom, Objects, LessByLex> m_model;
    int m_length = 0;
    CZelBPlusTree m_tree{GetParam()};
};

TEST_P(BPlusTreeRandomTest, AgreesWithAPlainMapOverManyKeys) {
    TestRandom random;
    play(random, 8000, 150000);
}

TEST_P(BPlusTreeRandomTest, AgreesWithAPlainMapOverFewCrowdedKeys) {
    TestRandom random;
    play(random, 3, 100000);
}

TEST_P(BPlusTreeRandomTest, KeysInRisingAndFallingOrderAreAllFound) {
    for (bool rising : {true, false}) {
        for (int i = 0; i < 100000; ++i) {
            CZelAtom key(rising ? i : 99999 - i);
            ASSERT_EQ(E_RCOk, m_tree.RBPTAddObjectToTree(&key, &m_objects[key.RAInt() % OBJECTS], false));
        }
        for (int i = 0; i < 100000; i += 701) {
            CZelAtom key(i);
            ASSERT_EQ(&m_objects[i % static_cast<int>(OBJECTS)], m_tree.RBPTFindSingle(&key));
            ASSERT_EQ(i, m_tree.RBPTCountQuery(&key, E_ROLess));
        }
        for (int i = 0; i < 100000; ++i) {
            CZelAtom key(rising ? i : 99999 - i);
            ASSERT_EQ(E_RCOk, m_tree.RBPTLiteralDeleteObjectInTree(&key, &m_objects[key.RAInt() % OBJECTS]));
        }
    }
}

// Whole leaves go, so that what is left of a tree takes keys that are unlike its own.
TEST_P(BPlusTreeRandomTest, RunsOfKeysComeAndGo) {
    TestRandom random;
    TreeKeys keys(random, 4000);
    for (int round = 0; round < 400 && !HasFatalFailure(); ++round) {
        for (int i = 0; i < 300; ++i)
            step(random, random.oneIn(9) ? keys.key() : keys.text(), true);
        auto place = m_model.lower_bound(keys.text());
        for (unsigned left = 20 + random.below(500); left > 0 && place != m_model.end(); --left) {
            const CZelAtom key(place->first);
            void *object = place->second.back();
            ++place;
            while (removeFromModel(key, object) == E_RCOk) {
                ASSERT_EQ(E_RCOk, m_tree.RBPTLiteralDeleteObjectInTree(&key, object));
                const auto rest = m_model.find(key);
                object = rest != m_model.end() ? rest->second.back() : nullptr;
            }
        }
        compareKeys();
    }
}

// A tree that was filled at once is one that was filled pair by pair, and goes on as such.
TEST_P(BPlusTreeRandomTest, AFilledTreeIsTheOneThatAdditionsMake) {
    TestRandom random;
    TreeKeys keys(random, 8000);
    for (const unsigned size : {0U, 1U, 2U, 63U, 64U, 65U, 129U, 4096U, 4097U, 5000U, 5000U, 5000U}) {
        const bool takesTwins = isDegenerate() || random.oneIn(3);
        CZelArray<SZelKeyedObject> pairs;
        bool isRefused = false;
        for (unsigned i = 0; i < size; ++i) {
            const CZelAtom key = random.oneIn(40) ? CZelAtom() : keys.key();
            const bool isTaken = addToModel(key, &m_objects[i]) != E_RCOk;
            isRefused = isRefused || (isTaken && takesTwins);
            if (!isTaken || takesTwins)
                pairs.push_back({key, &m_objects[i]});
        }
        ASSERT_EQ(isRefused ? E_RCKeyExists : E_RCOk, m_tree.RBPTLoad(pairs)) << size;
        if (isRefused) {
            ASSERT_EQ(E_RBTrue, m_tree.RBPTIsEmpty());
            m_model.clear();
            m_length = 0;
            continue;
        }
        ASSERT_EQ(m_length, m_tree.RBPTLength());
        compareKeys();
        for (int i = 0; i < 20; ++i)
            compareAnswers(keys.key());
        for (const auto &entry : m_model)
            compareNode(entry.first);
        for (int i = 0; i < 3000 && !HasFatalFailure(); ++i)
            step(random, keys.key(), true);
        compareKeys();
        removeAll(random);
    }
}

// Numbers whose first bits tell only groups apart, of a few or of hundreds; and in order already, up or down.
TEST_P(BPlusTreeRandomTest, ATreeIsFilledWithNumbersInGroups) {
    TestRandom random;
    for (const unsigned spread : {1U, 3U, 40U, 900U, 100000U}) {
        CZelArray<SZelKeyedObject> pairs;
        for (unsigned i = 0; i < 2500; ++i) {
            const long long group =
                static_cast<long long>(random.below(7)) * 1000000007 * (random.oneIn(2) ? 1 : -1000);
            const unsigned within = spread == 1 ? i : random.below(spread);
            const CZelAtom key(group * (spread == 3 ? 0 : 1) + (i % 2 == 0 ? within : -static_cast<long long>(within)));
            if (addToModel(key, &m_objects[i]) == E_RCOk)
                pairs.push_back({key, &m_objects[i]});
        }
        ASSERT_NO_FATAL_FAILURE(loadAndCompare(pairs));
        removeAll(random);
    }
}

// Texts that begin alike, all of them or in large groups, and go on for a few bytes or for many; some end where others
// go on.
TEST_P(BPlusTreeRandomTest, ATreeIsFilledWithTextsThatBeginAlikeForAnyLength) {
    TestRandom random;
    for (unsigned known = 0; known < 28 && !HasFatalFailure(); ++known) {
        const std::string front(known, random.oneIn(2) ? 'a' : '\xe9');
        CZelArray<SZelKeyedObject> pairs;
        for (unsigned i = 0; i < 2500; ++i) {
            std::string text = front;
            for (unsigned groups = random.below(4); groups > 0; --groups)
                text += random.oneIn(2) ? "/interfaces" : "/interface";
            for (unsigned rest = random.below(3); rest > 0; --rest)
                text += "\x01-a\xff"[random.below(4)];
            const CZelAtom key(text.c_str(), text.size());
            if (addToModel(key, &m_objects[i]) == E_RCOk)
                pairs.push_back({key, &m_objects[i]});
        }
        ASSERT_NO_FATAL_FAILURE(loadAndCompare(pairs));
        compareAnswers(std::next(m_model.begin(), random.below(static_cast<unsigned>(m_model.size())))->first);
        removeAll(random);
    }
}

// Leaves whose keys begin alike tell them by what comes behind. When the outer ones are gone, whatever is less or
// greater than all keys is looked for in such a leaf: a shorter text, or another type.
TEST(BPlusTreeAbsentTest, WhatDoesNotBeginAsAllKeysDoIsNotThere) {
    constexpr int KEYS = 2000, OUTER = 400;
    const std::string start = "/network/core/router/interface/";
    CZelBPlusTree tree(false);
    int object = 0;
    std::vector<CZelAtom> present;
    for (int i = 0; i < KEYS; ++i)
        present.emplace_back((start + std::to_string(KEYS + i * 7919 % KEYS)).c_str());
    for (const CZelAtom &key : present)
        ASSERT_EQ(1, tree.RBPTAddObjectToTree(&key, &object, false));
    std::sort(present.begin(), present.end(),
              [](const CZelAtom &left, const CZelAtom &right) { return left.RATextView() < right.RATextView(); });
    const auto remove = [&](auto from, auto to) {
        for (; from != to; ++from)
            ASSERT_EQ(1, tree.RBPTLiteralDeleteObjectInTree(&*from, &object));
    };
    remove(present.begin(), present.begin() + OUTER);
    remove(present.end() - OUTER, present.end());
    const std::vector<CZelAtom> left(present.begin() + OUTER, present.end() - OUTER);
    std::vector<CZelAtom> absent{CZelAtom(""), CZelAtom(start.c_str())};
    for (int i = 0; i < KEYS; ++i) {
        absent.emplace_back(i);
        absent.emplace_back(std::to_string(i).c_str());
        absent.emplace_back((start.substr(0, static_cast<std::size_t>(i) % start.size()) + std::to_string(i)).c_str());
    }
    for (const CZelAtom &key : absent)
        ASSERT_EQ(nullptr, tree.RBPTGetNodeForKey(&key));
    for (const CZelAtom &key : left)
        ASSERT_NE(nullptr, tree.RBPTGetNodeForKey(&key)) << key.RAString();
}

// Two rows of trees that get the same, one of them side by side: among the trees of one call may be the same again.
TEST(BPlusTreeTogetherTest, AdditionsToSeveralTreesAreThoseOneByOne) {
    TestRandom random;
    TreeKeys keys(random, 2000);
    CZelBPlusTree together[] = {CZelBPlusTree(false), CZelBPlusTree(true), CZelBPlusTree(true)};
    CZelBPlusTree single[] = {CZelBPlusTree(false), CZelBPlusTree(true), CZelBPlusTree(true)};
    long objects[500] = {};
    for (int step = 0; step < 20000; ++step) {
        void *object = objects + random.below(500);
        std::vector<CZelAtom> own;
        for (unsigned i = random.below(10); i > 0; --i)
            own.push_back(random.oneIn(30) ? CZelAtom() : keys.key());
        std::vector<CZelBPlusTree::SAddition> additions;
        std::size_t expected = 0;
        int expectedStatus = E_RCOk;
        for (const CZelAtom &key : own) {
            const unsigned tree = random.below(3);
            additions.push_back({together + tree, &key});
            if (expectedStatus == E_RCOk)
                expectedStatus = single[tree].RBPTAddObjectToTree(&key, object, false);
            expected += expectedStatus == E_RCOk ? 1 : 0;
        }
        std::size_t added = 77;
        ASSERT_EQ(expectedStatus, CZelBPlusTree::RBPTAddToEach(additions.data(), additions.size(), object, &added));
        ASSERT_EQ(expected, added);
    }
    for (int tree = 0; tree < 3; ++tree) {
        CZelBag left, right;
        for (const EZelOper op : {E_ROEqual, E_RONotEqual}) {
            together[tree].RBPTAppendQuery(nullptr, op, left);
            single[tree].RBPTAppendQuery(nullptr, op, right);
        }
        ASSERT_EQ(right.RBLength(), left.RBLength());
        const CZelPointer *other = right.RBFirst();
        for (const CZelPointer *node = left.RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
            ASSERT_EQ(other->RPData(), node->RPData());
            other = CZelBag::RBNext(other);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, BPlusTreeRandomTest, testing::Bool(),
                         [](const auto &kind) { return kind.param ? "Degenerate" : "Unique"; });

}  // namespace
