#include "store/CZelFilter.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>
#include <memory>

#include "foundations/port/CZelErrorCapture.h"
#include "oql/CZelFilterParser.h"
#include "oql/CZelQuery.h"
#include "tests/store/Conditions.h"
#include "tests/support/TestRandom.h"

using namespace conditions;

namespace {

using Filter = std::unique_ptr<CZelFilter>;
using Record = std::unique_ptr<CZelRecord>;

bool matches(CZelFilter *filter, const CZelRecord *row) {
    return Filter(filter)->RFFilterRecord(row) == E_RBTrue;
}

// Runs on a thread with a stack of 256 KiB, so that a recursion over a deep tree ends the test.
void onSmallStack(const std::function<void()> &work) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 256 * 1024);
    pthread_t thread;
    const auto start = [](void *argument) -> void * {
        (*static_cast<const std::function<void()> *>(argument))();
        return nullptr;
    };
    ASSERT_EQ(0, pthread_create(&thread, &attributes, start, const_cast<std::function<void()> *>(&work)));
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

TEST(Filter, BranchesAreTakenOnceAndNotBesideAComparison) {
    const Filter whole(both(leaf(col("a"), E_ROEqual, val(1)), leaf(col("b"), E_ROEqual, val(2))));
    const Filter other(leaf(col("c"), E_ROEqual, val(3)));
    EXPECT_EQ(E_RCBranchTaken, whole->RFAddLeft(other.get()));
    EXPECT_EQ(E_RCBranchTaken, whole->RFAddRight(other.get()));
    EXPECT_EQ(E_RCHasKernel, other->RFAddLeft(whole.get()));
    CZelFilter empty;
    EXPECT_EQ(1, empty.RFAddLeft(nullptr));
    EXPECT_EQ(E_RANoOp, empty.RFOperator());
    whole->RFSetFilter(new CZelBoolean(col("z"), val(9), E_ROEqual));
    EXPECT_EQ("z = 9", taken(whole->RFPrint()));
    EXPECT_EQ(nullptr, whole->RFLeft());
}

TEST(Filter, ConstantFiltersAnswerWithoutARecord) {
    EXPECT_EQ("1 = 1", taken(CZelFilter(E_RBTrue).RFPrint()));
    EXPECT_EQ("0 = 1", taken(CZelFilter(E_RBFalse).RFPrint()));
    EXPECT_EQ(E_RBTrue, CZelFilter(E_RBTrue).RFFilterRecord(nullptr));
    EXPECT_EQ(E_RBFalse, CZelFilter(E_RBFalse).RFFilterRecord(nullptr));
    EXPECT_FALSE(matches(leaf(col("a"), E_ROEqual, val(1)), nullptr));
}

TEST(Filter, PrintsJoinersInsideBracketsAndNotWithoutALeftSide) {
    const Filter filter(either(both(leaf(col("a"), E_ROEqual, val(1)), leaf(col("b"), E_ROLess, val("x"))),
                               negated(leaf(col("c"), E_ROIn, val(list({1, 2}))))));
    EXPECT_EQ("((a = 1 And b < 'x') Or ( Not c In (1,2)))", taken(filter->RFPrint()));
    EXPECT_EQ(taken(filter->RFPrint()), taken(filter->RFPrintResolved()));
    EXPECT_EQ("( NoOp )", taken(CZelFilter().RFPrint()));
}

TEST(Filter, PrintedConditionsReadBack) {
    const char *const texts[] = {"a = 1",
                                 "a(any)->b >= 2",
                                 "a Is Null ",
                                 "a Is Not Null ",
                                 "a Not Like 'x%'",
                                 "a In (1,'x',NULL)",
                                 "a In ([1],[2])",
                                 "a Not In []",
                                 "a Between [1,5]",
                                 "a Not Between ['x','y']",
                                 "3 In (b)",
                                 "a In (eval(list type int,'&x'))",
                                 "((a = 1 And b < 'x') Or ( Not c = NULL))"};
    for (const char *text : texts) {
        int status = 0;
        const Filter filter(CZelFilterParser().RFPParse(text, &status));
        ASSERT_NE(nullptr, filter) << text;
        EXPECT_EQ(text, taken(filter->RFPrint()));
    }
}

TEST(Filter, ReplacesABranchWhereverItStands) {
    CZelFilter *old = leaf(col("c"), E_ROEqual, val(3));
    const Filter whole(either(leaf(col("a"), E_ROEqual, val(1)), both(leaf(col("b"), E_ROEqual, val(2)), old)));
    CZelFilter *replacement = new CZelFilter(E_RBTrue);
    EXPECT_EQ(E_RCDuplicate, whole->RFReplaceBranch(whole.get(), replacement));
    EXPECT_EQ(E_RCHasKernel, old->RFReplaceBranch(replacement, old));
    EXPECT_EQ(E_RCNotInTree, whole->RFReplaceBranch(replacement, old));
    EXPECT_EQ(1, whole->RFReplaceBranch(old, replacement));
    delete old;
    EXPECT_EQ("(a = 1 Or (b = 2 And 1 = 1))", taken(whole->RFPrint()));
}

TEST(Filter, ReplacingReportsNullsAndMissingBranches) {
    const Filter lonely(negated(leaf(col("a"), E_ROEqual, val(1))));
    const Filter other(new CZelFilter);
    CZelErrorCapture reports;
    EXPECT_EQ(E_RCBadArgument, lonely->RFReplaceBranch(nullptr, other.get()));
    EXPECT_EQ(E_RCBadArgument, lonely->RFReplaceBranch(other.get(), nullptr));
    EXPECT_EQ(E_RCBadArgument, lonely->RFReplaceBranch(lonely->RFRight(), other.get()));
    EXPECT_EQ(3U, reports.Count());
    EXPECT_EQ("( Not a = 1)", taken(lonely->RFPrint()));

    CZelFilter *deep = leaf(col("b"), E_ROEqual, val(2));
    const Filter whole(both(negated(both(leaf(col("a"), E_ROEqual, val(1)), deep)), new CZelFilter(E_RBTrue)));
    EXPECT_EQ(E_RCNotInTree, whole->RFReplaceBranch(deep, other.get()));  // not below a Not
    EXPECT_EQ(4U, reports.Count());
}

TEST(Filter, MissingBranchesCountAsFalse) {
    const Record row(record({{"a", 1}}));
    const auto yes = [] { return new CZelFilter(E_RBTrue); };
    EXPECT_TRUE(matches(negated(nullptr), row.get()));
    EXPECT_FALSE(matches(both(yes(), nullptr), row.get()));
    EXPECT_FALSE(matches(both(nullptr, yes()), row.get()));
    EXPECT_TRUE(matches(either(nullptr, yes()), row.get()));
    EXPECT_TRUE(matches(either(yes(), nullptr), row.get()));
    EXPECT_FALSE(matches(node(yes(), E_RANoOp, yes()), row.get()));
    EXPECT_FALSE(matches(new CZelFilter, row.get()));
    EXPECT_TRUE(matches(new CZelFilter(new CZelBoolean(col("x"), val(1), E_RONone)), row.get()));
}

TEST(Filter, ColumnsAreReadThroughKeysAndSelectors) {
    const Record row(record(
        {{"n", 5}, {"l", list({1, 2})}, {"m", list({1, 1})}, {"e", list({})}, {"deep", list({list({4, 5}), 6})}}));
    const auto holds = [&](CZelExpr *left, EZelOper op, CZelExpr *right) {
        return matches(leaf(left, op, right), row.get());
    };
    EXPECT_TRUE(holds(col("l", {E_RLUAny}), E_ROEqual, val(1)));
    EXPECT_FALSE(holds(col("l", {E_RLUAll}), E_ROEqual, val(1)));
    EXPECT_TRUE(holds(col("m", {E_RLUAll}), E_ROEqual, val(1)));
    EXPECT_FALSE(holds(col("e", {E_RLUAll}), E_ROEqual, val(1)));
    EXPECT_FALSE(holds(col("e", {E_RLUAny}), E_ROEqual, val(1)));
    EXPECT_FALSE(holds(col("n", {E_RLUAny}), E_ROEqual, val(5)));  // no list: no element, null
    EXPECT_TRUE(holds(col("n", {E_RLUAny}), E_RONotEqual, val(5)));
    EXPECT_TRUE(holds(col("l", {1}), E_ROEqual, val(2)));
    EXPECT_TRUE(holds(col("deep", {0, E_RLUAny}), E_ROEqual, val(5)));
    EXPECT_TRUE(holds(col("l", {E_RLUNext}), E_ROEqual, none()));
    EXPECT_TRUE(holds(val(2), E_ROIn, col("l")));
    EXPECT_FALSE(holds(val(3), E_ROIn, col("l")));
    EXPECT_TRUE(holds(col("l"), E_ROEqual, val(list({1, 2}))));
    EXPECT_TRUE(holds(col("m", {E_RLUAny}), E_ROEqual, col("m", {E_RLUAll})));
    EXPECT_FALSE(holds(col("l", {E_RLUAny}), E_ROGreater, col("l", {E_RLUAll})));
    EXPECT_TRUE(holds(val("x"), E_ROLike, val("_")));
    EXPECT_TRUE(holds(col("absent"), E_ROIsNull, none()));
    EXPECT_FALSE(holds(col("absent"), E_RONotIn, val(list({1}))));
}

TEST(Filter, ASubqueryMatchesNoRecord) {
    const Record row(record({{"a", 1}}));
    auto *query = new CZelQuery("b", "d", "t");
    EXPECT_FALSE(matches(new CZelFilter(new CZelBoolean(col("a"), query, E_RONotIn)), row.get()));
}

TEST(Filter, ABagIsFilteredInOrderAndIsNullWhenNothingMatches) {
    std::vector<Record> rows;
    CZelBag bag;
    for (int i = 0; i < 6; ++i) {
        rows.emplace_back(record({{"a", i}}));
        bag.RBAdd(static_cast<void *>(rows.back().get()));
    }
    const Filter filter(leaf(col("a"), E_ROGreater, val(3)));
    const std::unique_ptr<CZelBag> found(filter->RFFilterRecordBag(&bag));
    EXPECT_EQ((std::vector<CZelRecord *>{rows[4].get(), rows[5].get()}), contents<CZelRecord>(found.get()));
    EXPECT_EQ(nullptr, CZelFilter(E_RBFalse).RFFilterRecordBag(&bag));
    EXPECT_EQ(nullptr, filter->RFFilterRecordBag(nullptr));
}

TEST(Filter, JoiningCopiesBothSides) {
    const Filter a(leaf(col("a"), E_ROEqual, val(1)));
    const Filter b(leaf(col("b"), E_ROEqual, val(2)));
    EXPECT_EQ("(a = 1 And b = 2)", taken(Filter(CZelFilter::RFAndFilters(a.get(), b.get()))->RFPrint()));
    EXPECT_EQ("(a = 1 Or b = 2)", taken(Filter(CZelFilter::RFOrFilters(a.get(), b.get()))->RFPrint()));
    EXPECT_EQ("b = 2", taken(Filter(CZelFilter::RFOrFilters(nullptr, b.get()))->RFPrint()));
    EXPECT_EQ(nullptr, CZelFilter::RFAndFilters(nullptr, nullptr));
}

TEST(Filter, FindsTheValueThatAColumnIsComparedWith) {
    const Filter filter(both(leaf(col("a"), E_ROLess, val(1)),
                             either(leaf(col("b"), E_ROEqual, none()), leaf(col("b"), E_ROEqual, val("x")))));
    const std::unique_ptr<CZelAtom> b(filter->ExtractQueryCondition("b"));
    ASSERT_NE(nullptr, b);
    EXPECT_EQ("x", b->RATextView());
    const std::unique_ptr<CZelAtom> a(filter->ExtractQueryCondition("a"));
    EXPECT_EQ(1, a->RAInt());
    EXPECT_EQ(nullptr, filter->ExtractQueryCondition("c"));
}

TEST(Filter, CollectsWhatMustBeEvaluatedFromLeftToRight) {
    CZelExpr *a = col("a"), *b = col("t", {1}), *c = val(1);
    const Filter filter(both(leaf(a, E_ROEqual, c), leaf(val(2), E_ROEqual, b)));
    const std::unique_ptr<CZelBag> entities(filter->RFInternals());
    EXPECT_EQ((std::vector<CZelExpr *>{a, b}), contents<CZelExpr>(entities.get()));
    CZelBag bag;
    EXPECT_EQ(&bag, filter->RFEvalClauses(&bag));
    EXPECT_EQ(3, bag.RBLength());  // the names of a and t, and the key
    const Filter plain(new CZelFilter(E_RBTrue));
    EXPECT_EQ(nullptr, plain->RFEvalClauses(nullptr));
    EXPECT_EQ(nullptr, plain->RFInternals());
}

// --- random conditions on random records against the rules written down as a recursion ---

struct Cell {
    enum Kind { NOTHING, NUMBER, TEXT } kind = NOTHING;
    long long number = 0;
    std::string text;
    bool operator==(const Cell &other) const = default;
};

CZelAtom atomOf(const Cell &cell) {
    if (cell.kind == Cell::TEXT)
        return CZelAtom(cell.text.c_str());
    return cell.kind == Cell::NUMBER ? CZelAtom(static_cast<int>(cell.number)) : CZelAtom();
}

Cell randomCell(TestRandom &random) {
    switch (random.below(5)) {
        case 0:
            return {};
        case 1:
            return {Cell::TEXT, 0, std::string(1, static_cast<char>('a' + random.below(3)))};
        default:
            return {Cell::NUMBER, random.below(4), ""};
    }
}

bool compares(const Cell &left, EZelOper op, const Cell &right) {
    const bool leftNull = left.kind == Cell::NOTHING, rightNull = right.kind == Cell::NOTHING;
    if (leftNull || rightNull)
        return leftNull == rightNull ? op == E_ROEqual : op == E_RONotEqual;
    if (left.kind != right.kind)
        return op == E_RONotEqual;
    const int order =
        left.kind == Cell::TEXT ? left.text.compare(right.text) : static_cast<int>(left.number - right.number);
    const bool answers[] = {order == 0, order != 0, order<0, order <= 0, order> 0, order >= 0};
    return answers[op];
}

// A condition in both forms; the model's takes the cells of the columns c0 to c2.
struct Condition {
    CZelFilter *filter;
    std::function<bool(const std::vector<Cell> &)> model;
};

Condition randomLeaf(TestRandom &random) {
    const unsigned first = random.below(3), second = random.below(3);
    const auto op = static_cast<EZelOper>(random.below(6));
    const Cell cell = randomCell(random);
    const std::string left = "c" + std::to_string(first), right = "c" + std::to_string(second);
    switch (random.below(3)) {
        case 0:
            return {leaf(col(left.c_str()), op, val(atomOf(cell))),
                    [=](const std::vector<Cell> &row) { return compares(row[first], op, cell); }};
        case 1:
            return {leaf(val(atomOf(cell)), op, col(left.c_str())),
                    [=](const std::vector<Cell> &row) { return compares(cell, op, row[first]); }};
        default:
            return {leaf(col(left.c_str()), op, col(right.c_str())),
                    [=](const std::vector<Cell> &row) { return compares(row[first], op, row[second]); }};
    }
}

Condition randomCondition(TestRandom &random, int depth) {
    if (depth == 0 || random.oneIn(4))
        return randomLeaf(random);
    const Condition right = randomCondition(random, depth - 1);
    if (random.oneIn(3))
        return {negated(right.filter), [=](const std::vector<Cell> &row) { return !right.model(row); }};
    const Condition left = randomCondition(random, depth - 1);
    if (random.oneIn(2))
        return {both(left.filter, right.filter),
                [=](const std::vector<Cell> &row) { return left.model(row) && right.model(row); }};
    return {either(left.filter, right.filter),
            [=](const std::vector<Cell> &row) { return left.model(row) || right.model(row); }};
}

TEST(Filter, RandomConditionsMatchAsTheirRulesSay) {
    TestRandom random;
    for (int round = 0; round < 20000; ++round) {
        const Condition condition = randomCondition(random, 4);
        const Filter filter(condition.filter);
        const Filter copy(new CZelFilter(*filter));
        const std::vector<Cell> cells{randomCell(random), randomCell(random), randomCell(random)};
        const CZelAtom atoms[] = {atomOf(cells[0]), atomOf(cells[1]), atomOf(cells[2])};
        const Record row(record({{"c0", atoms[0]}, {"c1", atoms[1]}, {"c2", atoms[2]}}));
        ASSERT_EQ(ZelBool(condition.model(cells)), filter->RFFilterRecord(row.get())) << taken(filter->RFPrint());
        ASSERT_EQ(ZelBool(condition.model(cells)), copy->RFFilterRecord(row.get()));
    }
}

// --- conditions as deep as a text is long ---

using Grow = CZelFilter *(*)(CZelFilter *, int);

void expectDeepTreesToWork(Grow grow, bool answer) {
    constexpr int DEPTH = 150000;
    onSmallStack([=] {
        CZelFilter *tree = leaf(col("a"), E_ROEqual, val(-1));
        for (int i = 0; i < DEPTH; ++i)
            tree = grow(tree, i);
        const Filter filter(tree);
        const Filter copy(new CZelFilter(*filter));
        const Record row(record({{"a", DEPTH - 1}}));
        EXPECT_EQ(ZelBool(answer), copy->RFFilterRecord(row.get()));
        EXPECT_EQ(taken(filter->RFPrint()), taken(copy->RFPrintResolved()));
        const std::unique_ptr<CZelBag> clauses(copy->RFEvalClauses(nullptr));
        const std::unique_ptr<CZelBag> entities(copy->RFInternals());
        EXPECT_LE(1, entities->RBLength());
        EXPECT_EQ(nullptr, copy->ExtractQueryCondition("b"));
        CZelFilter nowhere;
        const CZelErrorCapture reports;
        EXPECT_GT(0, copy->RFReplaceBranch(&nowhere, &nowhere));
    });
}

TEST(Filter, DeepTreesOfAnyShapeNeedNoStack) {
    expectDeepTreesToWork([](CZelFilter *tree, int i) { return either(tree, leaf(col("a"), E_ROEqual, val(i))); },
                          true);
    expectDeepTreesToWork([](CZelFilter *tree, int i) { return either(leaf(col("a"), E_ROEqual, val(i)), tree); },
                          true);
    expectDeepTreesToWork([](CZelFilter *tree, int) { return negated(tree); }, false);
}

}  // namespace
