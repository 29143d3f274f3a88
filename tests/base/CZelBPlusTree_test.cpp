#include "foundations/base/CZelBPlusTree.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBag.h"
#include "foundations/port/ZelCodes.h"

namespace {

constexpr EZelOper OPERATORS[] = {E_ROEqual, E_RONotEqual, E_ROLess, E_ROLessEqual, E_ROGreater, E_ROGreaterEqual};

class BPlusTreeTest : public testing::Test {
protected:
    // Objects are letters, so that a result reads as a word.
    void *object(char letter) { return &m_letters[static_cast<unsigned char>(letter)]; }
    int add(CZelBPlusTree &tree, const CZelAtom &key, char letter) {
        return tree.RBPTAddObjectToTree(&key, object(letter), false);
    }
    int addUnderNull(CZelBPlusTree &tree, char letter) {
        return tree.RBPTAddObjectToTree(nullptr, object(letter), true);
    }
    int remove(CZelBPlusTree &tree, const CZelAtom &key, char letter) {
        return tree.RBPTLiteralDeleteObjectInTree(&key, object(letter));
    }
    std::string word(const CZelBag &bag) {
        std::string text;
        for (const CZelPointer *node = bag.RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
            text += static_cast<char>(static_cast<int *>(node->RPData()) - m_letters);
        return text;
    }
    // The answer in the three forms, which agree.
    std::string query(const CZelBPlusTree &tree, EZelOper op, const CZelAtom *key) {
        std::unique_ptr<CZelBag> bag(tree.RBPTComputeQueryOp(key, op));
        EXPECT_TRUE(bag == nullptr || bag->RBLength() > 0);
        CZelBag appended;
        int count = tree.RBPTAppendQuery(key, op, appended);
        std::string text = word(appended);
        EXPECT_EQ(text, bag == nullptr ? "" : word(*bag));
        EXPECT_EQ(text.size(), static_cast<std::size_t>(count));
        EXPECT_EQ(count, tree.RBPTCountQuery(key, op));
        return text;
    }
    // The answers to = <> < <= > >= in this order.
    std::string queries(const CZelBPlusTree &tree, const CZelAtom &key) {
        std::string text;
        for (EZelOper op : OPERATORS)
            text += query(tree, op, &key) + " ";
        return text;
    }

    CZelBPlusTree unique{false};
    CZelBPlusTree degenerate{true};

private:
    int m_letters[256] = {};
};

TEST_F(BPlusTreeTest, UniqueTreeRefusesASecondObjectWhateverTheFlag) {
    CZelAtom key("core1");
    EXPECT_EQ(E_RCOk, add(unique, key, 'a'));
    EXPECT_EQ(E_RCKeyExists, unique.RBPTAddObjectToTree(&key, object('b'), false));
    EXPECT_EQ(E_RCKeyExists, unique.RBPTAddObjectToTree(&key, object('b'), true));
    EXPECT_EQ(E_RCOk, add(unique, key, 'a')) << "the pair is there already";
    EXPECT_EQ(1, unique.RBPTLength());
    EXPECT_EQ("a", query(unique, E_ROEqual, &key));
    EXPECT_EQ(E_RBFalse, unique.RBPTIsDegenerate());
    EXPECT_EQ(E_RBTrue, degenerate.RBPTIsDegenerate());
}

TEST_F(BPlusTreeTest, NullKeyTakesAnyNumberInEitherTree) {
    CZelAtom undefined, one(1);
    for (CZelBPlusTree *tree : {&unique, &degenerate}) {
        EXPECT_EQ(E_RCOk, add(*tree, one, 'x'));
        EXPECT_EQ(E_RCOk, addUnderNull(*tree, 'a'));
        EXPECT_EQ(E_RCOk, add(*tree, undefined, 'b'));
        EXPECT_EQ("ab", query(*tree, E_ROEqual, nullptr));
        EXPECT_EQ("x", query(*tree, E_RONotEqual, &undefined));
        for (EZelOper range : {E_ROLess, E_ROLessEqual, E_ROGreater, E_ROGreaterEqual})
            EXPECT_EQ("", query(*tree, range, nullptr));
        EXPECT_EQ("x ab  x  x ", queries(*tree, one));
        EXPECT_EQ(E_RCOk, tree->RBPTLiteralDeleteObjectInTree(nullptr, object('b')));
        EXPECT_EQ(E_RCOk, remove(*tree, undefined, 'a'));
        EXPECT_EQ(E_RCNotInTree, remove(*tree, undefined, 'a'));
        EXPECT_FALSE(tree->RBPTHasKey(nullptr));
    }
}

TEST_F(BPlusTreeTest, AnswersComeInKeyOrderThenInOrderOfAddition) {
    for (const char *pair : {"3c", "1z", "2b", "1a", "3a", "2y", "1m"})
        EXPECT_EQ(E_RCOk, add(degenerate, CZelAtom(pair[0] - '0'), pair[1]));
    EXPECT_EQ("by zamca zam zamby ca byca ", queries(degenerate, CZelAtom(2)));
    EXPECT_EQ(" zambyca zambyca zambyca   ", queries(degenerate, CZelAtom(9)));
    EXPECT_EQ(" zambyca   zambyca zambyca ", queries(degenerate, CZelAtom(0)));
    EXPECT_EQ("", query(degenerate, E_ROLike, nullptr));
}

TEST_F(BPlusTreeTest, NumbersMeetByValueAndOtherTypesOnlyBeingDifferent) {
    add(degenerate, CZelAtom(2), 'i');
    add(degenerate, CZelAtom(2.0F), 'f');
    add(degenerate, CZelAtom(2LL), 'l');
    add(degenerate, CZelAtom(2.5F), 'g');
    add(degenerate, CZelAtom("2"), 't');
    add(degenerate, CZelAtom(""), 'e');
    addUnderNull(degenerate, 'n');
    EXPECT_EQ("ifl nget  ifl g iflg ", queries(degenerate, CZelAtom(2L)));
    EXPECT_EQ("t niflge e et  t ", queries(degenerate, CZelAtom("2")));
    EXPECT_EQ("e niflgt  e t et ", queries(degenerate, CZelAtom("")));
}

TEST_F(BPlusTreeTest, DeletesExactlyThePair) {
    CZelAtom key("site"), other("other");
    add(degenerate, key, 'a');
    add(degenerate, key, 'b');
    EXPECT_EQ(E_RCNotInTree, remove(degenerate, key, 'c'));
    EXPECT_EQ(E_RCNotInTree, remove(degenerate, other, 'a'));
    EXPECT_EQ(E_RCOk, remove(degenerate, key, 'a'));
    EXPECT_EQ(E_RCNotInTree, remove(degenerate, key, 'a'));
    EXPECT_EQ("b", query(degenerate, E_ROEqual, &key));
    EXPECT_EQ(E_RBFalse, degenerate.RBPTIsEmpty());
    EXPECT_EQ(E_RCOk, remove(degenerate, key, 'b'));
    EXPECT_EQ(E_RBTrue, degenerate.RBPTIsEmpty());
    EXPECT_EQ(E_RCNotInTree, remove(degenerate, key, 'b'));
}

TEST_F(BPlusTreeTest, KeysAreCopiedOncePerDistinctKey) {
    {
        CZelAtom dies("a text that does not fit into its atom");
        add(degenerate, dies, 'a');
        add(degenerate, dies, 'b');
    }
    addUnderNull(degenerate, 'n');
    std::unique_ptr<CZelAtomVector> keys(degenerate.RBPTTreeKeysToAtomVector());
    ASSERT_EQ(2U, keys->RAVSize());
    EXPECT_TRUE(keys->RAVGetValue(0)->RAIsUndefined());
    EXPECT_STREQ("a text that does not fit into its atom", keys->RAVGetValue(1)->RAString());
}

TEST_F(BPlusTreeTest, NodeHasTheFormThatItsObjectsNeed) {
    CZelAtom key("site");
    EXPECT_EQ(nullptr, degenerate.RBPTGetNodeForKey(&key));
    EXPECT_EQ(nullptr, degenerate.RBPTFindSingle(&key));
    add(degenerate, key, 'a');
    const CZelBTreeNode *node = degenerate.RBPTGetNodeForKey(&key);
    EXPECT_EQ(E_RBFalse, node->RBTNNodeHasList());
    EXPECT_EQ(object('a'), node->RBTNGetData());
    EXPECT_EQ(nullptr, node->RBTNGetDataList());
    add(degenerate, key, 'b');
    node = degenerate.RBPTGetNodeForKey(&key);
    EXPECT_EQ(E_RBTrue, node->RBTNNodeHasList());
    EXPECT_EQ(nullptr, node->RBTNGetData());
    EXPECT_EQ(object('b'), static_cast<CZelPointer *>(node->RBTNGetDataList()->RDLTail())->RPData());
    add(degenerate, key, 'c');
    EXPECT_EQ(3, degenerate.RBPTGetNodeForKey(&key)->RBTNGetDataList()->RDLLength()) << "made anew after a change";
    EXPECT_EQ(object('a'), degenerate.RBPTFindSingle(&key));
    remove(degenerate, key, 'a');
    remove(degenerate, key, 'c');
    EXPECT_EQ(object('b'), degenerate.RBPTGetNodeForKey(&key)->RBTNGetData());
}

TEST_F(BPlusTreeTest, AnyAddressIsAnObject) {
    CZelAtom key(1);
    for (unsigned long address : {1UL, 0UL, ~0UL})
        EXPECT_EQ(E_RCOk, degenerate.RBPTAddObjectToTree(&key, reinterpret_cast<void *>(address), false));
    EXPECT_EQ(3U, degenerate.RBPTGetNodeForKey(&key)->RBTNCount());
    EXPECT_EQ(E_RCOk, degenerate.RBPTLiteralDeleteObjectInTree(&key, nullptr));
    EXPECT_EQ(E_RCOk, degenerate.RBPTLiteralDeleteObjectInTree(&key, reinterpret_cast<void *>(~0UL)));
    EXPECT_EQ(reinterpret_cast<void *>(1UL), degenerate.RBPTGetNodeForKey(&key)->RBTNGetData());
    EXPECT_EQ(E_RCOk, degenerate.RBPTLiteralDeleteObjectInTree(&key, reinterpret_cast<void *>(1UL)));
    EXPECT_EQ(E_RBTrue, degenerate.RBPTIsEmpty());
}

// Loads two objects when asked.
class LateFiller : public CZelBPlusTree::Filler {
public:
    LateFiller(CZelBPlusTree &tree, void *first, void *second) : m_tree(tree), m_objects{first, second} {
        tree.RBPTLeaveTo(*this);
    }
    void fill(const CZelBPlusTree &tree) override {
        EXPECT_EQ(&m_tree, &tree);
        CZelArray<SZelKeyedObject> pairs;
        pairs.push_back({CZelAtom(7), m_objects[0]});
        pairs.push_back({CZelAtom(5), m_objects[1]});
        EXPECT_EQ(1, m_tree.RBPTLoad(pairs));
        ++fills;
    }
    void forget(const CZelBPlusTree &tree) override { forgets += &tree == &m_tree ? 1 : 0; }
    int fills = 0;
    int forgets = 0;

private:
    CZelBPlusTree &m_tree;
    void *m_objects[2];
};

TEST_F(BPlusTreeTest, WhateverIsAskedFirstOfATreeLeftToAFillerFindsItFilled) {
    const CZelAtom five(5), seven(7);
    const CZelAtom *const keys[] = {&seven};
    const std::vector<std::function<void(CZelBPlusTree &)>> first = {
        [&](CZelBPlusTree &tree) { EXPECT_EQ("a", query(tree, E_ROGreater, &five)); },
        [&](CZelBPlusTree &tree) { EXPECT_EQ("b", query(tree, E_RONotEqual, &seven)); },
        [&](CZelBPlusTree &tree) { EXPECT_EQ(object('a'), tree.RBPTFindSingle(&seven)); },
        [&](CZelBPlusTree &tree) { EXPECT_EQ(2, tree.RBPTLength()); },
        [&](CZelBPlusTree &tree) { EXPECT_EQ(E_RBFalse, tree.RBPTIsEmpty()); },
        [&](CZelBPlusTree &tree) { EXPECT_FALSE(tree.RBPTIsWhole(&five, E_ROGreater)); },
        [&](CZelBPlusTree &tree) { EXPECT_EQ(1, tree.RBPTCountQuery(&five, E_ROGreater)); },
        [&](CZelBPlusTree &tree) { EXPECT_EQ(1, remove(tree, seven, 'a')); },
        [&](CZelBPlusTree &tree) { EXPECT_EQ(1, add(tree, seven, 'c')); },
        [&](CZelBPlusTree &tree) {
            CZelBag between;
            EXPECT_EQ(2, tree.RBPTAppendBetween(five, true, seven, true, between));
        },
        [&](CZelBPlusTree &tree) {
            CZelBTreeNode *entry = nullptr;
            tree.RBPTGetNodesForKeys(keys, 1, &entry);
            EXPECT_NE(nullptr, entry);
        },
        [&](CZelBPlusTree &tree) {
            EXPECT_EQ(2U, std::unique_ptr<CZelAtomVector>(tree.RBPTTreeKeysToAtomVector())->RAVSize());
        }};
    for (const auto &ask : first) {
        CZelBPlusTree tree(true);
        LateFiller filler(tree, object('a'), object('b'));
        ask(tree);
        add(tree, seven, 'd');
        EXPECT_EQ("d", query(tree, E_ROEqual, &seven).substr(query(tree, E_ROEqual, &seven).size() - 1));
        EXPECT_EQ(1, filler.fills);
        tree.RBPTEmpty();
        EXPECT_EQ(0, filler.forgets);
    }
}

TEST_F(BPlusTreeTest, ATreeThatGoesUnfilledIsForgotten) {
    std::optional<CZelBPlusTree> tree(true);
    LateFiller filler(*tree, object('a'), object('b'));
    tree->RBPTEmpty();
    EXPECT_EQ(1, filler.forgets);
    EXPECT_EQ(E_RBTrue, tree->RBPTIsEmpty());
    tree->RBPTLeaveTo(filler);
    tree.reset();
    EXPECT_EQ(2, filler.forgets);
    EXPECT_EQ(0, filler.fills);
}

TEST_F(BPlusTreeTest, ReadersMayAskForTheListTogether) {
    CZelAtom key("site");
    std::vector<CZelDoubleList *> lists(4);
    for (int round = 0; round < 50; ++round) {
        add(degenerate, key, static_cast<char>(2 * round));
        add(degenerate, key, static_cast<char>(2 * round + 1));
        std::vector<std::thread> readers;
        readers.reserve(lists.size());
        for (CZelDoubleList *&list : lists)
            readers.emplace_back([&] { list = degenerate.RBPTGetNodeForKey(&key)->RBTNGetDataList(); });
        for (std::thread &reader : readers)
            reader.join();
        for (const CZelDoubleList *list : lists)
            EXPECT_EQ(lists[0], list);
        EXPECT_EQ(2 * round + 2, lists[0]->RDLLength());
    }
}

}  // namespace
