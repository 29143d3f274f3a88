#include "oql/CZelInsert.h"

#include <gtest/gtest.h>

#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "support/ExprBuild.h"

namespace {

// The columns a and b, in the tree of a table.
class InsertTest : public testing::Test {
protected:
    InsertTest() {
        for (CZelColDef *column : {&m_a, &m_b})
            m_columns.RTLAdd(column->RCDName(), column, true);
    }

    static std::string shownRecord(CZelRecord *made) {
        const std::unique_ptr<CZelRecord> record(made);
        if (record == nullptr)
            return "no record";
        std::string text;
        const CZelVBList *values = record->RRVbIterator();
        for (const CZelVarBind *pair = values->RVBLHead(); pair != nullptr; pair = values->RVBLGetNext(pair))
            text += taken(pair->RVBVbAsString()) + ' ';
        return text;
    }
    std::string positional(CZelInsert &insert) { return shownRecord(insert.RICreateRecord(&m_columns)); }
    static std::string named(CZelInsert &insert) { return shownRecord(insert.RICreateRecord(nullptr)); }

    static std::unique_ptr<CZelInsert> parsed(CZelBag *columns, CZelBag *values) {
        return std::make_unique<CZelInsert>(entity(nullptr, "t"), nullptr, columns, values);
    }
    static std::unique_ptr<CZelInsert> coded(CZelAtomVector *labels, CZelAtomVector *values,
                                             CZelBag *clauses = nullptr) {
        return std::make_unique<CZelInsert>(entity("d", "t"), nullptr, labels, values, clauses);
    }
    static CZelBag *ab() { return bagOf({constant(CZelAtom("a")), constant(CZelAtom("b"))}); }
    static CZelBag *oneAndX() { return bagOf({valueOf(constant(CZelAtom(1))), valueOf(constant(CZelAtom("x")))}); }

    CZelColDef m_a{ZelStrDup("a"), E_RDTInt, nullptr, -1};
    CZelColDef m_b{ZelStrDup("b"), E_RDTText, nullptr, -1};
    CZelTreeList m_columns{E_RBFalse};
};

TEST_F(InsertTest, NamesComeFromTheStatementOrFromTheTable) {
    const auto bare = parsed(nullptr, oneAndX());
    EXPECT_EQ("a=1 b=x ", positional(*bare));
    EXPECT_EQ("no record", named(*bare));
    const auto backwards = parsed(bagOf({constant(CZelAtom("b")), constant(CZelAtom("a"))}), oneAndX());
    EXPECT_EQ("b=1 a=x ", positional(*backwards));
    EXPECT_EQ("b=1 a=x ", named(*backwards));
    EXPECT_EQ("no record", positional(*parsed(ab(), nullptr)));
}

TEST_F(InsertTest, AStatementCanMakeManyRecords) {
    CZelExpr *computed = evaluated({CZelAtom(1)});
    const auto insert = parsed(nullptr, bagOf({valueOf(computed), listValue({valueOf(constant(CZelAtom(2)))})}));
    EXPECT_EQ("a=1 b=[2] ", positional(*insert));
    const CZelAtom next = listOf({CZelAtom(7)});
    computed->RESetClauseVal(new CZelVarBind("", &next));
    EXPECT_EQ("a=7 b=[2] ", positional(*insert));
}

TEST_F(InsertTest, ValuesThatAreNullLeaveTheirColumnsOut) {
    EXPECT_EQ("b=2 ", named(*parsed(ab(), bagOf({valueOf(noValue()), valueOf(constant(CZelAtom(2)))}))));
    EXPECT_EQ("a=2 ", named(*parsed(ab(), bagOf({valueOf(constant(CZelAtom(2))), valueOf(evaluated({}))}))));
    EXPECT_EQ("no record", named(*parsed(ab(), bagOf({valueOf(noValue()), valueOf(constant(CZelAtom()))}))));
    EXPECT_EQ("b=2 ", named(*parsed(bagOf({noValue(), constant(CZelAtom("b"))}),
                                    bagOf({valueOf(constant(CZelAtom(1))), valueOf(constant(CZelAtom(2)))}))));
}

// Both roads to a record, in step and by lists, must give the same.
TEST_F(InsertTest, SeveralValuesOfOneExpressionTakeSeveralPlaces) {
    const auto twoInOne = [] { return evaluated({CZelAtom("a"), CZelAtom("b")}); };
    EXPECT_EQ("a=1 b=x ", named(*parsed(bagOf({twoInOne()}), oneAndX())));
    EXPECT_EQ("a=a b=b ", named(*parsed(ab(), bagOf({valueOf(twoInOne())}))));
    EXPECT_EQ("a=a b=b ", positional(*parsed(nullptr, bagOf({valueOf(twoInOne())}))));
    EXPECT_EQ("a=a b=b ", named(*parsed(bagOf({twoInOne()}), bagOf({valueOf(twoInOne())}))));
    CZelExpr *broken = clause("&x");
    broken->RESetClauseVal(new CZelVarBind("", 5));
    EXPECT_EQ("b=2 ", named(*parsed(ab(), bagOf({valueOf(broken), valueOf(constant(CZelAtom(2)))}))));
}

TEST_F(InsertTest, DifferentLengthsAreReportedAndGiveNoRecord) {
    const CZelErrorCapture reports;
    EXPECT_EQ("no record", named(*parsed(ab(), bagOf({valueOf(constant(CZelAtom(1)))}))));
    EXPECT_TRUE(reports.Holds(E_RCBadColumnValue,
                              "Column and values lists different lengths, can not construct record from insert. Column "
                              "list length: 2 value list length: 1"));
    EXPECT_EQ(1U, reports.Count());
    EXPECT_EQ("no record", positional(*parsed(nullptr, bagOf({valueOf(evaluated({CZelAtom(1), CZelAtom(2)})),
                                                              valueOf(constant(CZelAtom(1)))}))));
    EXPECT_EQ(2U, reports.Count());
}

TEST_F(InsertTest, AnUnevaluatedClauseIsReportedOnce) {
    const CZelErrorCapture reports;
    EXPECT_EQ("no record", named(*parsed(ab(), bagOf({valueOf(clause("&x")), valueOf(constant(CZelAtom(1)))}))));
    ASSERT_EQ(2U, reports.Count());
    EXPECT_EQ(E_RCBadArgument, reports.Reports()[0].m_code);
    EXPECT_EQ(E_RCBadColumnValue, reports.Reports()[1].m_code);
}

TEST_F(InsertTest, LabelsAndValuesOfCode) {
    auto values = std::make_unique<CZelAtomVector>(0);
    values->RAVAddToEnd(new CZelAtom(1));
    const auto labelled = coded(namesOf({"a", "b"}).release(), new CZelAtomVector(*values));
    EXPECT_EQ("a=1 b=NULL ", named(*labelled));
    const auto bare = coded(nullptr, values.release());
    EXPECT_EQ("a=1 ", positional(*bare));
    EXPECT_EQ("no record", named(*bare));
    EXPECT_EQ("no record", positional(*coded(nullptr, nullptr)));
}

TEST_F(InsertTest, ClausesOfCode) {
    const auto clauses = [] { return bagOf({evaluated({CZelAtom(1)}), constant(CZelAtom(2))}); };
    EXPECT_EQ("b=1 a=2 ", named(*coded(namesOf({"b", "a"}).release(), nullptr, clauses())));
    const auto bare = coded(nullptr, nullptr, clauses());
    EXPECT_EQ("a=1 b=2 ", positional(*bare));
    EXPECT_EQ("no record", named(*bare));
    const CZelErrorCapture reports;
    coded(nullptr, namesOf({"x"}).release(), clauses());
    EXPECT_TRUE(reports.Holds(E_RCBadArgument, "Values in insert implies no clauses"));
}

TEST_F(InsertTest, PrintsNamesUniquesAndValues) {
    EXPECT_EQ("insert into t ( a, b )  values ( 1, \"x\" ) ;", taken(parsed(ab(), oneAndX())->RDOAsString()));
    EXPECT_EQ("insert into t values ( 1, \"x\" ) ;", taken(parsed(nullptr, oneAndX())->RDOAsString()));
    CZelInsert unique(entity("d", "t"), namesOf({"a", "b"}).release(), ab(),
                      bagOf({valueOf(noValue()), listValue({valueOf(constant(CZelAtom("y")))})}));
    EXPECT_EQ("insert into d.t ( a, b )  unique ( a, b )  values (  NULL , ['y'] ) ;", taken(unique.RDOAsString()));
    const auto columns = bagOf({evaluated({CZelAtom("a"), CZelAtom("b")})});
    EXPECT_EQ("insert into t ( a, b )  values ( 1, \"x\" ) ;", taken(parsed(columns, oneAndX())->RDOAsString()));
    EXPECT_EQ("insert into d.t values ( \"x\", \"y\" ) ;",
              taken(coded(nullptr, namesOf({"x", "y"}).release())->RDOAsString()));
    EXPECT_EQ("insert into d.t ( a )  values ( \"x\" ) ;",
              taken(coded(namesOf({"a"}).release(), namesOf({"x"}).release())->RDOAsString()));
}

TEST_F(InsertTest, PlainValuesKeepTheirPlaces) {
    const auto insert = parsed(nullptr, bagOf({valueOf(noValue()), valueOf(evaluated({})), valueOf(clause("&x")),
                                               valueOf(evaluated({CZelAtom(1), CZelAtom(2)}))}));
    EXPECT_EQ("insert into t values ( NULL, NULL, eval(text,'&x'), 1, 2 ) ;", taken(insert->RDOAsString()));
    const auto clauses = coded(nullptr, nullptr, bagOf({clause("&x"), evaluated({CZelAtom("y")})}));
    EXPECT_EQ("insert into d.t values ( eval(text,'&x'), \"y\" ) ;", taken(clauses->RDOAsString()));
}

TEST_F(InsertTest, WhatCanNotBeWrittenIsReported) {
    const CZelErrorCapture reports;
    EXPECT_EQ("insert into t ( a, b ) ;",
              taken(parsed(ab(), bagOf({valueOf(noValue()), valueOf(noValue())}))->RDOAsString()));
    EXPECT_TRUE(reports.Holds(E_RCNull, "The insert was unable to produce a record"));
    EXPECT_EQ("<null>",
              taken(parsed(bagOf({evaluated({CZelAtom("a) values (1); x")})}), bagOf({valueOf(constant(CZelAtom(1)))}))
                        ->RDOAsString()));
    EXPECT_EQ("<null>", taken(CZelInsert(nullptr, nullptr, ab(), oneAndX()).RDOAsString()));
    EXPECT_EQ(E_RCNoText, reports.LastCode());
}

TEST_F(InsertTest, CompilablesAreTargetValuesThenColumns) {
    CZelExpr *name = clause("&n");
    CZelExpr *value = clause("&v");
    const auto insert = parsed(bagOf({name}), bagOf({listValue({valueOf(value)})}));
    const CZelBag *bag = insert->RDOCompilables();
    ASSERT_EQ(3, bag->RBLength());
    EXPECT_EQ(insert->RITarget()->RDETblExpr(), bag->RBFirst()->RPData());
    EXPECT_EQ(value, CZelBag::RBNext(bag->RBFirst())->RPData());
    EXPECT_EQ(name, CZelBag::RBNext(CZelBag::RBNext(bag->RBFirst()))->RPData());
    insert->RISetTarget(entity("d", "u"));
    EXPECT_EQ(4, insert->RDOCompilables()->RBLength());
}

}  // namespace
