#include "store/CZelBoolean.h"

#include <gtest/gtest.h>

#include <memory>

#include "clause/CZelEvalClause.h"
#include "foundations/base/CZelVarBind.h"
#include "foundations/port/CZelErrorCapture.h"
#include "oql/CZelQuery.h"
#include "store/CZelColDef.h"
#include "tests/store/Conditions.h"

using namespace conditions;

namespace {

CZelExpr *clause(const char *text) {
    auto *type = new CZelColDef(nullptr, E_RDTInt, nullptr, -1);
    return new CZelExpr(new CZelEvalClause(type, ZelStrDup(text)));
}

CZelExpr *clauseWith(const CZelAtom &head) {
    CZelExpr *expression = clause("&x");
    auto *result = new CZelAtomVector;
    result->RAVAddToEnd(new CZelAtom(head));
    expression->RESetClauseVal(new CZelVarBind(CZelAtom(""), CZelAtom(result)));
    return expression;
}

CZelQuery *query() {
    return new CZelQuery("b", "d", "t");
}

std::string printed(CZelExpr *left, EZelOper op, CZelExpr *right) {
    return taken(CZelBoolean(left, right, op).RBPrint());
}

std::string resolved(CZelExpr *left, EZelOper op, CZelExpr *right) {
    return taken(CZelBoolean(left, right, op).RBPrintResolved());
}

// Against the rule for null, one line per operator: both null, left null, right null.
TEST(Boolean, NullOperandsFollowTheNullTableForEveryOperator) {
    struct Line {
        EZelOper op;
        int both, left, right;
    };
    const Line lines[] = {
        {E_ROEqual, 1, 0, 0},      {E_RONotEqual, 0, 1, 1},     {E_ROLess, 0, 0, 0},      {E_ROLessEqual, 0, 0, 0},
        {E_ROGreater, 0, 0, 0},    {E_ROGreaterEqual, 0, 0, 0}, {E_ROIn, 0, 0, 0},        {E_RONotIn, 0, 0, 1},
        {E_ROLike, 0, 0, 0},       {E_RONotLike, 0, 1, 1},      {E_ROExists, 0, 1, 0},    {E_ROBetween, 0, 0, 0},
        {E_RONotBetween, 0, 0, 0}, {E_ROIsNull, 1, 1, 0},       {E_ROIsNotNull, 0, 0, 1}, {E_RONone, 0, 0, 0}};
    const CZelAtom five(5), text("x"), numbers = list({1, 2}), nothing;
    for (const Line &line : lines) {
        for (const CZelAtom *value : {&five, &text, &numbers}) {
            for (const CZelAtom *null : {static_cast<const CZelAtom *>(nullptr), &nothing}) {
                EXPECT_EQ(line.both, CZelBoolean::RBEvalExpr(null, &nothing, line.op)) << line.op;
                EXPECT_EQ(line.both, CZelBoolean::RBEvalExpr(null, nullptr, line.op)) << line.op;
                EXPECT_EQ(line.left, CZelBoolean::RBEvalExpr(null, value, line.op)) << line.op;
                EXPECT_EQ(line.right, CZelBoolean::RBEvalExpr(value, null, line.op)) << line.op;
            }
        }
    }
    const CZelAtom empty = list({});
    EXPECT_EQ(E_RBFalse, CZelBoolean::RBEvalExpr(nullptr, &empty, E_ROExists));
    EXPECT_EQ(E_RBTrue, CZelBoolean::RBEvalExpr(&five, &five, E_ROLessEqual));
}

TEST(Boolean, SwappingPutsTheValueOnTheLeft) {
    const CZelBoolean less(col("a"), val(3), E_ROLess);
    const CZelAtom two(2), three(3);
    EXPECT_EQ(E_RBTrue, less.RBEvalAtomToAtom(&two, E_RBFalse, &three));
    EXPECT_EQ(E_RBFalse, less.RBEvalAtomToAtom(&two, E_RBTrue, &three));
    EXPECT_EQ(E_RBTrue, less.RBEvalAtomToAtom(&three, E_RBTrue, &two));
}

TEST(Boolean, AnyWantsOneElementAndAllWantsEachAndAtLeastOne) {
    const CZelBoolean equal(col("a"), val(1), E_ROEqual);
    const CZelAtom one(1);
    const CZelAtom mixed = list({2, 1}), ones = list({1, 1}), others = list({2, 3}), empty = list({});
    const auto holds = [&](const CZelAtom &values, EZelListUpdateType kind) {
        return equal.RBEvalListToAtom(values.RAList(), E_RBFalse, &one, kind) == E_RBTrue;
    };
    EXPECT_TRUE(holds(mixed, E_RLUAny));
    EXPECT_FALSE(holds(mixed, E_RLUAll));
    EXPECT_TRUE(holds(ones, E_RLUAll));
    EXPECT_FALSE(holds(others, E_RLUAny));
    EXPECT_FALSE(holds(empty, E_RLUAny));
    EXPECT_FALSE(holds(empty, E_RLUAll));
    EXPECT_FALSE(holds(ones, E_RLUNext));
    EXPECT_EQ(E_RBFalse, equal.RBEvalListToAtom(nullptr, E_RBFalse, &one, E_RLUAny));
}

TEST(Boolean, ListsOnBothSidesCompareElementByElement) {
    const CZelBoolean less(col("a"), col("b"), E_ROLess);
    const auto holds = [&](const CZelAtom &left, EZelListUpdateType leftKind, const CZelAtom &right,
                           EZelListUpdateType rightKind) {
        return less.RBEvalComplex(nullptr, left.RAList(), leftKind, nullptr, right.RAList(), rightKind) == E_RBTrue;
    };
    const CZelAtom low = list({1, 5}), high = list({4, 6}), empty = list({});
    EXPECT_TRUE(holds(low, E_RLUAny, high, E_RLUAll));   // 1 is below 4 and 6
    EXPECT_FALSE(holds(low, E_RLUAll, high, E_RLUAll));  // 5 is not below 4
    EXPECT_TRUE(holds(low, E_RLUAll, high, E_RLUAny));
    EXPECT_FALSE(holds(high, E_RLUAny, low, E_RLUAll));
    EXPECT_FALSE(holds(empty, E_RLUAll, high, E_RLUAny));
    EXPECT_FALSE(holds(low, E_RLUNext, high, E_RLUAny));
    const CZelAtom two(2);
    EXPECT_EQ(E_RBTrue, less.RBEvalComplex(&two, nullptr, E_RLUNext, nullptr, high.RAList(), E_RLUAll));
    EXPECT_EQ(E_RBFalse, less.RBEvalComplex(nullptr, low.RAList(), E_RLUAll, &two, nullptr, E_RLUNext));
}

TEST(Boolean, ShapeFollowsTheOperandsAndTheirOverrides) {
    EXPECT_EQ(E_RBEColumnValue, CZelBoolean(col("a"), val(1), E_ROEqual).RBEvalType());
    EXPECT_EQ(E_RBEValueColumn, CZelBoolean(clause("x"), col("a"), E_ROEqual).RBEvalType());
    EXPECT_EQ(E_RBEColumnColumn, CZelBoolean(col("a"), col("b"), E_ROEqual).RBEvalType());
    EXPECT_EQ(E_RBEValueValue, CZelBoolean(val(1), none(), E_ROEqual).RBEvalType());
    EXPECT_EQ(E_RBEColumnValue, CZelBoolean(col("a"), query(), E_ROIn).RBEvalType());
    EXPECT_EQ(E_RBEValueValue, CZelBoolean(none(), query(), E_ROExists).RBEvalType());

    CZelExpr *right = col("b");
    CZelBoolean boolean(col("a"), right, E_ROEqual);
    const CZelAtom five(5);
    right->RESetOverride(&five);
    EXPECT_EQ(E_RBEColumnValue, boolean.RBEvalType());
    const std::unique_ptr<CZelExpr> other(val(1));
    CZelExpr *slot = other.get();
    boolean.RBOverideLeft(&slot);
    EXPECT_EQ(slot, boolean.RBLeft());
    EXPECT_EQ(E_RBEValueValue, boolean.RBEvalType());
    EXPECT_EQ(E_RBEColumnValue, CZelBoolean(boolean).RBEvalType());
    boolean.RBOverideLeft(nullptr);
    EXPECT_EQ(E_RBEColumnValue, boolean.RBEvalType());
}

TEST(Boolean, AFunctionAsOperandIsReportedAndKeepsTheShape) {
    const CZelErrorCapture reports;
    const CZelBoolean boolean(col("a"), new CZelExpr, E_ROEqual);
    EXPECT_EQ(1U, reports.Count());
    EXPECT_TRUE(reports.Holds(E_RCBadArgument));
    EXPECT_EQ(E_RBEColumnValue, boolean.RBEvalType());
}

TEST(Boolean, ASubqueryIsNoExpressionUntilItIsOverridden) {
    CZelBoolean boolean(col("a"), query(), E_ROIn);
    CZelErrorCapture reports;
    EXPECT_EQ(nullptr, boolean.RBRight());
    EXPECT_EQ(taken(boolean.RBPrint()), reports.LastText());
    EXPECT_TRUE(reports.Holds(E_RCBadArgument));
    const std::unique_ptr<CZelExpr> values(val(list({1, 2})));
    CZelExpr *slot = values.get();
    boolean.RBOverideRight(&slot);
    EXPECT_EQ(E_RBRExpr, boolean.RBRvalType());
    EXPECT_EQ(slot, boolean.RBRight());
    EXPECT_EQ("a In (1,2)", taken(boolean.RBPrint()));
    EXPECT_EQ(E_RBRQuery, CZelBoolean(boolean).RBRvalType());
    boolean.RBOverideRight(nullptr);
    EXPECT_EQ(E_RBRQuery, boolean.RBRvalType());
    EXPECT_NE(nullptr, boolean.RBRightQuery());
}

TEST(Boolean, AssignmentReplacesOperandsOfEitherKind) {
    CZelBoolean boolean(col("a"), query(), E_ROIn);
    const CZelBoolean plain(col("x"), val(7), E_ROLess);
    boolean = plain;
    EXPECT_EQ("x < 7", taken(boolean.RBPrint()));
    EXPECT_EQ(nullptr, boolean.RBRightQuery());
    boolean = CZelBoolean(col("a"), query(), E_RONotIn);
    EXPECT_EQ(E_RBRQuery, boolean.RBRvalType());
    boolean = CZelBoolean();
    EXPECT_EQ(E_RONone, boolean.RBOperand());
    EXPECT_EQ(nullptr, boolean.RBLeft());
}

TEST(Boolean, OnlyTwoValuesAreDeterminate) {
    __boolean answer = E_RBFalse;
    EXPECT_EQ(E_RBTrue, CZelBoolean(val(2), val(3), E_ROLess).RBIsDeterminate(&answer));
    EXPECT_EQ(E_RBTrue, answer);
    EXPECT_EQ(E_RBTrue, CZelBoolean(val(3), val(3), E_ROLess).RBIsDeterminate(&answer));
    EXPECT_EQ(E_RBFalse, answer);
    EXPECT_EQ(E_RBFalse, CZelBoolean(col("a"), val(3), E_ROLess).RBIsDeterminate(&answer));
    EXPECT_EQ(E_RBTrue, answer);
    EXPECT_EQ(E_RBFalse, CZelBoolean(col("a"), val(3), E_ROLess).RBIsDeterminate(nullptr));
    const CZelErrorCapture reports;
    EXPECT_EQ(E_RBTrue, CZelBoolean(val(3), none(), E_ROLess).RBIsDeterminate(&answer));
    EXPECT_EQ(E_RBTrue, answer);
    EXPECT_TRUE(reports.Holds(E_RCBadArgument));
}

TEST(Boolean, PrintsSoThatItReadsBack) {
    EXPECT_EQ("a = 1", printed(col("a"), E_ROEqual, val(1)));
    EXPECT_EQ("d.t.a <> 'x'", printed(col("d", "t", "a"), E_RONotEqual, val("x")));
    EXPECT_EQ("a(any)->b >= 2", printed(col("a", {E_RLUAny, "b"}), E_ROGreaterEqual, val(2)));
    EXPECT_EQ("a = NULL", printed(col("a"), E_ROEqual, none()));
    EXPECT_EQ("a Is Null ", printed(col("a"), E_ROIsNull, none()));
    EXPECT_EQ("a Is Not Null ", printed(col("a"), E_ROIsNotNull, none()));
    EXPECT_EQ("a Between [1,5]", printed(col("a"), E_ROBetween, val(list({1, 5}))));
    EXPECT_EQ("a Not Like 'x%'", printed(col("a"), E_RONotLike, val("x%")));
    EXPECT_EQ("a In (1,'x',NULL)", printed(col("a"), E_ROIn, val(list({1, "x", CZelAtom()}))));
    EXPECT_EQ("a In ([1],[2])", printed(col("a"), E_ROIn, val(list({list({1}), list({2})}))));
    EXPECT_EQ("a Not In []", printed(col("a"), E_RONotIn, val(list({}))));
    EXPECT_EQ("3 In (b)", printed(val(3), E_ROIn, col("b")));
    EXPECT_EQ("a In (eval(int,'&x'))", printed(col("a"), E_ROIn, clause("&x")));
    EXPECT_EQ("a = eval(int,'&x')", printed(col("a"), E_ROEqual, clause("&x")));
}

TEST(Boolean, PrintsSubqueriesWithTheirBrackets) {
    const std::unique_ptr<CZelQuery> inner(query());
    const std::string text = taken(inner->RQPrint());
    EXPECT_EQ(" Exists " + text, taken(CZelBoolean(none(), query(), E_ROExists).RBPrint()));
    EXPECT_EQ("a = " + text, taken(CZelBoolean(col("a"), query(), E_ROEqual).RBPrint()));
    EXPECT_EQ("a Not In (" + text + ")", taken(CZelBoolean(col("a"), query(), E_RONotIn).RBPrintResolved()));
}

TEST(Boolean, ResolvedTextHoldsTheValuesOfItsClauses) {
    EXPECT_EQ("'x' = a", resolved(clauseWith("x"), E_ROEqual, col("a")));
    EXPECT_EQ("a = NULL", resolved(col("a"), E_ROEqual, clause("&x")));
    EXPECT_EQ("a In (1,2)", resolved(col("a"), E_ROIn, clauseWith(list({1, 2}))));
    EXPECT_EQ("a In ('[x]','y')", resolved(col("a"), E_ROIn, clauseWith(list({"[x]", "y"}))));
    EXPECT_EQ("a In ('x')", resolved(col("a"), E_ROIn, clauseWith("x")));
    EXPECT_EQ("a In ('')", resolved(col("a"), E_ROIn, clause("&x")));
}

}  // namespace
