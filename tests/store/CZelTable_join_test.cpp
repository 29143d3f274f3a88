// The steps of a join that tables offer, and what a walk does with odd lists and conditions.
#include <gtest/gtest.h>

#include "foundations/port/CZelErrorCapture.h"
#include "store/CZelBoolean.h"
#include "tests/store/Joins.h"
#include "tests/support/SmallStack.h"

using namespace joins;

namespace {

class TableJoinTest : public testing::Test {
protected:
    TableJoinTest() {
        for (int i = 1; i <= 3; ++i)
            insert(a, record({{"id", i}, {"k", i % 2}, {"l", list({i, 9})}}));
        insert(b, record({{"id", 7}, {"k", 1}}));
        insert(b, record({{"id", 8}}));
    }

    static CZelFilter *sameKey() { return leaf(col("d", "a", "k"), E_ROEqual, col("d", "b", "k")); }

    // The tuples of a's scratch bag that match; deletes the condition.
    Texts scratch(CZelFilter *filter) {
        const std::unique_ptr<CZelFilter> owner(filter);
        const std::unique_ptr<CZelBag> found(a.RTReturnJoinedRows(filter));
        return found != nullptr ? textsOf(*found) : Texts{"nothing"};
    }
    Texts joined(CZelFilter *filter, const Tables &tables) {
        const std::unique_ptr<CZelFilter> owner(filter);
        return join(filter, tables);
    }

    const CZelErrorCapture reports;
    LiveStore store;
    OpenTable &a = *store.add(table("d", "a", {{"id", E_RDTInt}, {"k", E_RDTInt}, {"l", E_RDTList}}));
    OpenTable &b = *store.add(table("d", "b", {{"id", E_RDTInt}, {"k", E_RDTInt}}));
    OpenTable &c = *store.add(table("d", "c", {{"id", E_RDTInt}}));
};

}  // namespace

TEST_F(TableJoinTest, ProductsFillTheScratchBagAndConditionsChooseFromIt) {
    EXPECT_EQ(1, a.RTCartesianProductOf(&c));
    EXPECT_EQ(Texts{}, scratch(nullptr));
    EXPECT_EQ(1, a.RTCartesianProductOf(&b));
    EXPECT_EQ(6U, scratch(nullptr).size());
    EXPECT_EQ((Texts{"d_a:1 d_b:7", "d_a:3 d_b:7"}), scratch(sameKey()));
    EXPECT_EQ(4U, scratch(negated(sameKey())).size());
    EXPECT_EQ(6U, scratch(either(sameKey(), negated(sameKey()))).size());
    EXPECT_EQ(Texts{}, scratch(both(sameKey(), leaf(val(1), E_ROGreater, val(2)))));
    EXPECT_EQ((Texts{"d_a:1 d_b:7", "d_a:1 d_b:8"}), scratch(leaf(val(2), E_ROGreater, col("d", "a", "id"))));
    EXPECT_EQ(Texts{}, scratch(leaf(col("k"), E_ROEqual, val(1))));  // of no table
    EXPECT_EQ(6U, scratch(new CZelFilter(new CZelBoolean)).size());
    EXPECT_EQ(Texts{"nothing"}, scratch(new CZelFilter));
    EXPECT_EQ(6U,
              scratch(new CZelFilter(new CZelBoolean(none(), select("b", {col("k")}, nullptr), E_ROExists))).size());
    EXPECT_EQ((Texts{"d_a:1 d_b:7", "d_a:1 d_b:8", "d_a:3 d_b:7", "d_a:3 d_b:8"}),
              scratch(new CZelFilter(new CZelBoolean(col("d", "a", "k"), select("b", {col("k")}, nullptr), E_ROIn))));
    insert(c, record({{"id", 5}}));
    insert(c, record({{"id", 6}}));
    EXPECT_EQ(1, a.RTCartesianProductOf(&c));
    EXPECT_EQ(12U, scratch(nullptr).size());
    EXPECT_EQ(E_RCBadArgument, a.RTCartesianProductOf(nullptr));
    a.RTPurgeScratch();
    EXPECT_EQ(Texts{}, scratch(nullptr));
}

TEST_F(TableJoinTest, ATupleGoesIntoACopyOfTheCondition) {
    CZelExpr *any = col("d", "a", "l");
    any->REEntityVal()->RDESetColSpec(keys({CZelAtom(E_RLUAny)}));
    CZelExpr *second = col("d", "a", "l");
    second->REEntityVal()->RDESetColSpec(keys({1}));
    const std::unique_ptr<CZelFilter> filter(
        both(sameKey(), both(leaf(any, E_ROEqual, val(9)), leaf(second, E_ROEqual, col("d", "b", "id")))));
    const std::unique_ptr<CZelBag> rows(a.RTReturnRows(nullptr));
    CZelTuple tuple(a.RTIdentifier(), contents<CZelRecord>(rows.get())[0]);
    __boolean complete = E_RBTrue;
    std::unique_ptr<CZelFilter> sub(a.RTTupleToFilterInternals(filter.get(), &tuple, &complete));
    EXPECT_EQ("(1 = d.b.k And (d.a.l(any) = 9 And 9 = d.b.id))", taken(sub->RFPrint()));
    EXPECT_EQ(E_RBFalse, complete);
    const std::unique_ptr<CZelFilter> own(leaf(col("d", "a", "k"), E_ROEqual, col("d", "a", "missing")));
    sub.reset(a.RTTupleToFilterInternals(own.get(), &tuple, &complete));
    EXPECT_EQ(E_RBTrue, complete);
    EXPECT_EQ(E_RBEValueValue, sub->RFKernel()->RBEvalType());
    EXPECT_EQ(nullptr, a.RTTupleToFilterInternals(nullptr, &tuple, &complete));
}

TEST_F(TableJoinTest, ResultsOfClausesReachEveryTable) {
    auto *clause = new CZelExpr(static_cast<CZelEvalClause *>(nullptr));
    auto *binding = new CZelVarBind("result", static_cast<const CZelAtom *>(nullptr));
    binding->RVBAppendToListVal(CZelAtom(7));
    clause->RESetClauseVal(binding);
    const std::unique_ptr<CZelFilter> filter(
        both(leaf(col("d", "b", "id"), E_ROEqual, clause), either(sameKey(), leaf(val(0), E_ROEqual, val(1)))));
    EXPECT_EQ((Texts{"d_a:1 d_b:7", "d_a:3 d_b:7"}), StepByStep(filter.get(), {&a, &b}).run());
    EXPECT_EQ((Texts{"d_a:1 d_b:7", "d_a:3 d_b:7"}), join(filter.get(), {&a, &b}));
    EXPECT_EQ((Texts{"d_a:1 d_b:7", "d_a:3 d_b:7"}), join(filter.get(), {&b, &a}));
}

TEST_F(TableJoinTest, ListsThatAreOddAreReportedOnce) {
    EXPECT_EQ(9U, joined(nullptr, {&a, &a}).size());
    EXPECT_EQ(E_RCDuplicate, reports.LastCode());
    const std::size_t before = reports.Count();
    EXPECT_EQ(Texts{}, joined(leaf(col("k"), E_ROEqual, val(1)), {&a, &b}));
    EXPECT_EQ(Texts{}, joined(leaf(col("d", "c", "id"), E_ROEqual, val(1)), {&a, &b}));
    EXPECT_EQ(before + 2, reports.Count());
    EXPECT_EQ(Texts{}, joined(nullptr, Tables(17, &a)));
    EXPECT_EQ(E_RCUnsupported, reports.LastCode());
    EXPECT_EQ(3U, joined(nullptr, {&c, &c, &c, &a, &c, &c, &c, &c}).size());
    const std::unique_ptr<CZelFilter> star(
        new CZelFilter(new CZelBoolean(col("d", "a", "k"), select("b", {}, nullptr), E_RONotIn)));
    EXPECT_EQ(Texts{}, join(star.get(), {&a, &b}));
    EXPECT_EQ(E_RCBadArgument, reports.LastCode());
}

// One comparison per term, and all in one term that some table has to weigh by itself.
TEST_F(TableJoinTest, LongChainsTakeNoStack) {
    constexpr int LENGTH = 150000;
    for (const EZelAlgebraic op : {E_RAAnd, E_RAOr}) {
        CZelFilter *chain = sameKey();
        for (int i = 0; i < LENGTH; ++i) {
            CZelFilter *term =
                leaf(col("d", i % 2 == 0 ? "a" : "b", "id"), op == E_RAAnd ? E_RONotEqual : E_ROEqual, val(-i - 1));
            chain = i % 3 == 0 ? node(term, op, chain) : node(chain, op, term);
        }
        onSmallStack([&] {
            EXPECT_EQ((Texts{"d_a:1 d_b:7", "d_a:3 d_b:7"}), join(chain, {&a, &b}));
            const std::unique_ptr<CZelFilter> whole(negated(chain));
            EXPECT_EQ(4U, join(whole.get(), {&a, &b}).size());
        });
    }
}
