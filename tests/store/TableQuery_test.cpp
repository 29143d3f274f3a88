// What a table answers to a condition, road by road.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "foundations/port/CZelErrorCapture.h"
#include "tests/store/LiveTable.h"
#include "tests/support/TestRandom.h"

using namespace conditions;

namespace {

using Rows = std::vector<CZelRecord *>;
using Bag = std::unique_ptr<CZelBag>;

// The table t: n is indexed, k unique, s and m are neither.
class TableQueryTest : public ::testing::Test {
protected:
    TableQueryTest()
        : t(*store.add(table("d", "t", {{"k", E_RDTInt, true}, {"n", E_RDTInt}, {"m", E_RDTInt}, {"s", E_RDTText}}))) {
        addIndex(t, "n");
    }

    CZelRecord *add(Values values) { return rows.emplace_back(insert(t, record(values))); }

    void addNumbers(int count) {
        for (int i = 0; i < count; ++i)
            add({{"k", i}, {"n", i % 4}, {"m", (i * 7) % 5}, {"s", i % 2 == 0 ? "even" : "odd"}});
    }

    Rows where(CZelFilter *filter) {
        const std::unique_ptr<CZelFilter> owner(filter);
        const Bag bag(t.RTReturnRows(filter));
        EXPECT_NE(nullptr, bag);
        return contents<CZelRecord>(bag.get());
    }

    Rows possible(CZelFilter *filter) {
        const std::unique_ptr<CZelFilter> owner(filter);
        const Bag bag(t.RTReturnPossibleRows(filter));
        EXPECT_NE(nullptr, bag);
        return contents<CZelRecord>(bag.get());
    }

    std::vector<int> keys(const Rows &found) const {
        std::vector<int> numbers;
        for (const CZelRecord *row : found)
            numbers.push_back(row->RRValueOf("k")->RAInt());
        return numbers;
    }

    // Where the order is that of the rows' addresses.
    std::vector<int> sortedKeys(const Rows &found) const {
        std::vector<int> numbers = keys(found);
        std::sort(numbers.begin(), numbers.end());
        return numbers;
    }

    CZelFilter *foreign() { return leaf(col("d", "other", "x"), E_ROEqual, val(1)); }

    LiveStore store;
    OpenTable &t;
    Rows rows;
};

using Keys = std::vector<int>;

TEST_F(TableQueryTest, AllRowsComeInOrderOfInsertion) {
    EXPECT_TRUE(where(nullptr).empty());
    addNumbers(30);
    EXPECT_EQ(rows, where(nullptr));
    EXPECT_EQ(rows, where(leaf(val(1), E_ROEqual, val(1))));
    EXPECT_TRUE(where(leaf(val(1), E_ROEqual, val(2))).empty());
    EXPECT_EQ(rows, where(new CZelFilter(new CZelBoolean)));
    EXPECT_EQ(rows, possible(nullptr));
}

TEST_F(TableQueryTest, ATableThatIsNotLiveHasNoRows) {
    const std::unique_ptr<OpenTable> dead(table("d", "dead", {{"a", E_RDTInt}}));
    const std::unique_ptr<CZelFilter> filter(leaf(col("a"), E_ROEqual, val(1)));
    EXPECT_EQ(0, Bag(dead->RTReturnRows(nullptr))->RBLength());
    EXPECT_EQ(0, Bag(dead->RTReturnRows(filter.get()))->RBLength());
    EXPECT_EQ(0, Bag(dead->RTEvalFilter(filter.get()))->RBLength());
    EXPECT_EQ(0, Bag(dead->RTReturnROMPRows(filter.get(), E_RBFalse))->RBLength());
}

TEST_F(TableQueryTest, AnIndexedColumnAnswersInKeyOrderAnUnindexedOneInRowOrder) {
    addNumbers(10);
    EXPECT_EQ((Keys{3, 7}), keys(where(leaf(col("n"), E_ROEqual, val(3)))));
    EXPECT_EQ((Keys{2, 6, 3, 7}), keys(where(leaf(col("n"), E_ROGreater, val(1)))));
    EXPECT_EQ((Keys{2, 6, 3, 7}), keys(where(leaf(val(1), E_ROLess, col("n")))));
    EXPECT_EQ((Keys{2, 4, 7, 9}), keys(where(leaf(val(2), E_ROLess, col("m")))));
    EXPECT_EQ((Keys{2, 4, 7, 9}), keys(where(leaf(col("d", "t", "m"), E_ROGreater, val(2)))));
}

TEST_F(TableQueryTest, InOnAnyColumnAnswersInKeyOrder) {
    addNumbers(10);
    const CZelAtom wanted = list({4, 1, CZelAtom(), 4, "x", 99});
    EXPECT_EQ((Keys{3, 8, 2, 7}), keys(where(leaf(col("m"), E_ROIn, val(wanted)))));
    EXPECT_EQ((Keys{1, 4}), keys(where(leaf(col("k"), E_ROIn, val(wanted)))));
    EXPECT_EQ((Keys{0, 5, 1, 6, 4, 9}), keys(where(leaf(col("m"), E_RONotIn, val(wanted)))));
    add({{"k", 10}});
    EXPECT_EQ((Keys{0, 5, 1, 6, 4, 9}), keys(where(leaf(col("m"), E_RONotIn, val(wanted)))));
    EXPECT_TRUE(where(leaf(col("nowhere"), E_RONotIn, val(wanted))).empty());
    EXPECT_TRUE(where(leaf(col("m"), E_ROIn, val(4))).empty());
}

TEST_F(TableQueryTest, AValueBehindLikeIsReadAsThePattern) {
    addNumbers(4);
    EXPECT_EQ((Keys{0, 2}), keys(where(leaf(val("ev%"), E_ROLike, col("s")))));
}

TEST_F(TableQueryTest, ColumnsOfOneRowAreCompared) {
    addNumbers(10);
    EXPECT_EQ(10U, where(leaf(col("m"), E_ROEqual, col("m"))).size());
    EXPECT_EQ((Keys{0, 3}),
              sortedKeys(where(both(leaf(col("m"), E_ROLessEqual, col("n")), leaf(col("k"), E_ROLess, val(5))))));
    CZelBoolean equal(col("n"), col("m"), E_ROEqual);
    EXPECT_EQ(E_RBTrue,
              t.RTEvalRecordTest(equal.RBLeft()->REEntityVal(), equal.RBRight()->REEntityVal(), &equal, rows[0]));
    const CZelAtom three(3);
    EXPECT_EQ(E_RBTrue, t.RTEvalRecTest(equal.RBLeft()->REEntityVal(), E_RBFalse, &three, &equal, rows[3]));
    EXPECT_EQ(E_RBFalse, t.RTEvalRecTest(equal.RBLeft()->REEntityVal(), E_RBFalse, &three, &equal, rows[0]));
}

TEST_F(TableQueryTest, AColumnBelongsToItsOwnTableOrToAny) {
    const std::unique_ptr<CZelExpr> own(col("d", "t", "x")), any(col("x")), other(col("d", "other", "x"));
    EXPECT_EQ(E_RBTrue, t.RTMatchSelfTest(own->REEntityVal()));
    EXPECT_EQ(E_RBTrue, t.RTMatchSelfTest(any->REEntityVal()));
    EXPECT_EQ(E_RBFalse, t.RTMatchSelfTest(other->REEntityVal()));
    EXPECT_EQ(E_RBFalse, t.RTMatchSelfTest(nullptr));
}

TEST_F(TableQueryTest, AConditionOfAnotherTableHasNoAnswer) {
    addNumbers(5);
    const std::unique_ptr<CZelFilter> alone(foreign());
    EXPECT_EQ(nullptr, t.RTReturnRows(alone.get()));
    EXPECT_EQ(nullptr, t.RTReturnROMPRows(alone.get(), E_RBFalse));
    CZelErrorCapture reports;
    EXPECT_TRUE(where(both(leaf(col("k"), E_ROLess, val(3)), foreign())).empty());
    EXPECT_EQ("(k < 3 And d.other.x = 1), leftQry exists, rightQry doesn't exist, operator = 0.", reports.LastText());
    EXPECT_EQ(E_RCBadArgument, reports.LastCode());
    EXPECT_EQ(3U, where(either(foreign(), leaf(col("k"), E_ROLess, val(3)))).size());
    EXPECT_EQ("(d.other.x = 1 Or k < 3) leftQry doesn't exist, rightQry exists, operator = 1.", reports.LastText());
    EXPECT_EQ(2U, reports.Count());
    EXPECT_TRUE(where(leaf(col("k"), E_ROLess, col("d", "other", "x"))).empty());
}

TEST_F(TableQueryTest, PartialEvaluationNarrowsOnlyByWhatIsKnown) {
    addNumbers(5);
    const auto low = [] { return leaf(col("k"), E_ROLess, val(2)); };
    EXPECT_EQ(rows, possible(foreign()));
    EXPECT_EQ((Keys{0, 1}), keys(possible(both(low(), foreign()))));
    EXPECT_EQ(5U, possible(either(low(), foreign())).size());
    EXPECT_EQ(5U, possible(negated(foreign())).size());
    EXPECT_EQ(5U, possible(negated(both(low(), foreign()))).size());
    EXPECT_EQ(3U, possible(negated(low())).size());
    EXPECT_EQ(rows, possible(leaf(col("k"), E_ROLess, col("d", "other", "x"))));
}

TEST_F(TableQueryTest, ASubqueryIsAListOfItsValues) {
    addNumbers(6);
    OpenTable &u = *store.add(table("d", "u", {{"x", E_RDTInt}, {"y", E_RDTInt}}));
    for (int i = 1; i < 4; ++i)
        insert(u, record({{"x", i}, {"y", i + 2}}));
    const auto against = [&](CZelExpr *left, EZelOper op, CZelQuery *query) {
        return keys(where(new CZelFilter(new CZelBoolean(left, query, op))));
    };
    EXPECT_EQ((Keys{1, 2, 3}), against(col("k"), E_ROIn, select("u", {col("x")}, nullptr)));
    EXPECT_EQ((Keys{1, 2, 3, 4, 5}), against(col("k"), E_ROIn, select("u", {col("y"), col("x")}, nullptr)));
    EXPECT_EQ((Keys{0, 1, 2, 4, 5}),
              against(col("k"), E_RONotIn, select("u", {col("x")}, leaf(col("y"), E_ROEqual, val(5)))));
    EXPECT_EQ((Keys{1, 2}), against(col("k"), E_ROBetween, select("u", {col("x")}, leaf(col("x"), E_ROLess, val(3)))));
    EXPECT_EQ(6U, against(none(), E_ROExists, select("u", {col("x")}, nullptr)).size());
    EXPECT_TRUE(against(none(), E_ROExists, select("u", {col("x")}, leaf(col("x"), E_ROGreater, val(9)))).empty());
    EXPECT_EQ(6U, against(val(2), E_ROIn, select("u", {col("x")}, nullptr)).size());
    EXPECT_TRUE(against(val(9), E_ROIn, select("u", {col("x")}, nullptr)).empty());
    EXPECT_EQ((Keys{2}),
              keys(where(both(leaf(col("n"), E_ROEqual, val(2)),
                              new CZelFilter(new CZelBoolean(col("k"), select("u", {col("x")}, nullptr), E_ROIn))))));
    const CZelErrorCapture reports;
    EXPECT_TRUE(against(col("k"), E_ROIn, select("u", {}, nullptr)).empty());
    EXPECT_TRUE(reports.Holds(E_RCBadArgument));
}

TEST_F(TableQueryTest, SubqueriesWithinSubqueriesEndInAReport) {
    addNumbers(3);
    CZelFilter *filter = leaf(col("k"), E_ROEqual, val(1));
    for (int i = 0; i < 300; ++i)
        filter = new CZelFilter(new CZelBoolean(col("k"), select("t", {col("k")}, filter), E_ROIn));
    const CZelErrorCapture reports;
    EXPECT_TRUE(where(filter).empty());
    EXPECT_TRUE(reports.Holds(E_RCUnsupported));
}

TEST_F(TableQueryTest, PackedRowsReadBack) {
    addNumbers(3);
    const std::unique_ptr<CZelFilter> filter(leaf(col("k"), E_ROGreater, val(0)));
    const CZelBagGuard<CZelAtom> blocks(t.RTReturnROMPRows(filter.get(), E_RBFalse));
    ASSERT_EQ(2, blocks->RBLength());
    unsigned char *data = nullptr;
    int length = 0;
    contents<CZelAtom>(blocks.get())[0]->RAUChar(&data, &length);
    CZelRecord copy;
    EXPECT_EQ(1, copy.ROMDecode(data, length));
    EXPECT_EQ(1, copy.RRValueOf("k")->RAInt());
    EXPECT_EQ("odd", copy.RRValueOf("s")->RATextView());
}

TEST_F(TableQueryTest, ChainsAsLongAsATextAnswerAndReportInLinearTime) {
    addNumbers(3);
    CZelFilter *known = leaf(col("k"), E_ROEqual, val(2)), *unknown = foreign();
    for (int i = 0; i < 150000; ++i) {
        known = either(known, leaf(col("m"), E_ROEqual, val(i + 100)));
        unknown = either(unknown, foreign());
    }
    EXPECT_EQ((Keys{2}), keys(where(known)));
    CZelFilter *nots = leaf(col("k"), E_ROEqual, val(2));
    for (int i = 0; i < 10000; ++i)
        nots = negated(nots);
    EXPECT_EQ((Keys{2}), keys(where(nots)));
    const CZelErrorCapture reports;
    EXPECT_TRUE(where(unknown).empty());
    EXPECT_GT(5000U, reports.Count());
}

// Does the text match? A recursion over the pattern.
bool isLike(const char *text, const char *pattern) {
    if (*pattern == '\0')
        return *text == '\0';
    if (*pattern == '%')
        return isLike(text, pattern + 1) || (*text != '\0' && isLike(text + 1, pattern));
    return *text != '\0' && (*pattern == '_' || *pattern == *text) && isLike(text + 1, pattern + 1);
}

std::string randomText(TestRandom &random, const char *letters, unsigned count, unsigned most) {
    std::string text;
    for (unsigned length = random.below(most + 1); length > 0; --length)
        text += letters[random.below(count)];
    return text;
}

TEST_F(TableQueryTest, PatternsOfEveryShapeMatchAsTheirRuleSays) {
    TestRandom random;
    std::vector<std::string> texts;
    for (int i = 0; i < 40; ++i) {
        texts.push_back(randomText(random, "ab", 2, 20));
        add({{"k", i}, {"s", texts.back().c_str()}});
    }
    for (int round = 0; round < 3000; ++round) {
        const std::string pattern = randomText(random, "ab%_", random.oneIn(2) ? 3 : 4, 7);
        Keys matching, others;
        for (int i = 0; i < 40; ++i)
            (isLike(texts[static_cast<std::size_t>(i)].c_str(), pattern.c_str()) ? matching : others).push_back(i);
        ASSERT_EQ(matching, keys(where(leaf(col("s"), E_ROLike, val(pattern.c_str()))))) << pattern;
        ASSERT_EQ(others, keys(where(leaf(col("s"), E_RONotLike, val(pattern.c_str()))))) << pattern;
    }
}

}  // namespace
