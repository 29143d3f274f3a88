#include "oql/CZelFilterParser.h"

#include <gtest/gtest.h>

#include <memory>

#include "Statements.h"
#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "oql/CZelExpr.h"
#include "store/CZelBoolean.h"
#include "store/CZelFilter.h"

namespace {

std::unique_ptr<CZelFilter> parse(const std::string &text, int expected = 1) {
    int status = 0;
    std::unique_ptr<CZelFilter> filter(CZelFilterParser().RFPParse(text.c_str(), &status));
    EXPECT_EQ(expected, status) << text;
    return filter;
}

std::string printedFilter(const std::string &text) {
    const CZelErrorCapture quiet;
    const std::unique_ptr<CZelFilter> filter = parse(text);
    const CZelMallocText form(filter != nullptr ? filter->RFPrint() : nullptr);
    return oneLine(form.get());
}

TEST(FilterParserTest, JoinersBindByPrecedenceAndToTheLeft) {
    const std::pair<const char *, const char *> cases[] = {{"a=1 or b=2 and c=3", "(a = 1 Or (b = 2 And c = 3))"},
                                                           {"a=1 and b=2 or c=3", "((a = 1 And b = 2) Or c = 3)"},
                                                           {"a=1 or b=2 or c=3", "((a = 1 Or b = 2) Or c = 3)"},
                                                           {"not a=1 and b=2", "(( Not a = 1) And b = 2)"},
                                                           {"not (a=1 or b=2)", "( Not (a = 1 Or b = 2))"},
                                                           {"not not a<>1", "( Not ( Not a <> 1))"},
                                                           {"((((a != 1))))", "a <> 1"}};
    for (const auto &[text, form] : cases)
        EXPECT_EQ(oneLine(form), printedFilter(text)) << text;
}

TEST(FilterParserTest, PredicatesReadBackAsTheyPrint) {
    const std::pair<const char *, const char *> cases[] = {
        {"a < b", "a < b"},
        {"1 <= d.t.a->m(2)", "1 <= d.t.a->m(2)"},
        {"a in ((b))", "a In (b)"},
        {"a not in b", "a Not In (b)"},
        {"a in (1,'x',NULL)", "a In (1,'x',NULL)"},
        {"a in [1,2]", "a In (1,2)"},
        {"a in ([1,2])", "a In ([1,2])"},
        {"a not in []", "a Not In []"},
        {"a in eval(list type int,'&x')", "a In (eval(list type int,'&x'))"},
        {"a in ((eval(object type text,'&x')))", "a In (eval(object type text,'&x'))"},
        {"a(eval(int,'1')) = 1", "a(eval(int,'1')) = 1"},
        {"a is null and b is not null", "(a Is Null And b Is Not Null )"},
        {"counter = 1 and table = 2", "(counter = 1 And table = 2)"},
        {"a in ((select b from t where c > 1))", "a In ((select b from t where ( c > 1 ) ))"},
        {"exists (select * from d.t)", "Exists (select * from d.t )"},
        {"a = some (select all b from t)", "a = (select b from t )"},
        {"a between {x=1} and {}", "a Between [{x=1},{}]"}};
    for (const auto &[text, form] : cases) {
        EXPECT_EQ(oneLine(form), printedFilter(text)) << text;
        EXPECT_EQ(form, printedFilter(form)) << text;
    }
}

TEST(FilterParserTest, AnEvalOfCharIsANameAndAnyOtherOneAValue) {
    const std::unique_ptr<CZelFilter> filter = parse("eval(char,'x') = eval(text,'y')");
    EXPECT_EQ(E_RETEntity, filter->RFKernel()->RBLeft()->REType());
    EXPECT_EQ(E_RETClause, filter->RFKernel()->RBRight()->REType());
    EXPECT_EQ(E_RETClause, parse("eval(char(10),'x') = 1")->RFKernel()->RBLeft()->REType());
    EXPECT_EQ(E_RBEColumnColumn, parse("eval(char,'x').a = b")->RFKernel()->RBEvalType());
}

TEST(FilterParserTest, NoneIsTrueOfEveryRow) {
    EXPECT_EQ(E_RONone, parse("NONE")->RFKernel()->RBOperand());
    EXPECT_EQ(E_RONone, parse("none and a=1")->RFLeft()->RFKernel()->RBOperand());
}

TEST(FilterParserTest, TextsThatAreNoConditionAreReported) {
    for (const char *text : {"a=1;", "a", "a in eval(int,'x')", "a(eval(long,'1')) = 1", "a in (select b from t)",
                             "a = 1 or", "select a from t", "a = 'x", "count(*) = 1", "(a = 1", "a=1 b=1"}) {
        const CZelErrorCapture reports;
        EXPECT_EQ(nullptr, parse(text, E_RCSyntax));
        EXPECT_TRUE(reports.Holds(E_RCSyntax, (std::string("\nSyntax error at line 1 of: ") + text).c_str()));
    }
    const CZelErrorCapture reports;
    EXPECT_EQ(nullptr, parse("a = 1\n or\n", E_RCSyntax));
    EXPECT_TRUE(reports.Holds(E_RCSyntax, "\nSyntax error at line 3 of: a = 1\n or\n"));
    EXPECT_EQ(nullptr, CZelFilterParser().RFPParse("bad", nullptr));
}

TEST(FilterParserTest, AnEmptyTextIsNoCondition) {
    const CZelErrorCapture reports;
    EXPECT_EQ(nullptr, parse("", 1));
    EXPECT_EQ(0U, reports.Count());
    EXPECT_EQ(nullptr, parse(" ", E_RCSyntax));
}

TEST(FilterParserTest, OperatorsHaveTexts) {
    EXPECT_STREQ(" = ", CZelFilterParser::RFPOperatorToString(E_ROEqual));
    EXPECT_STREQ(" Not Between ", CZelFilterParser::RFPOperatorToString(E_RONotBetween));
    EXPECT_STREQ(" None ", CZelFilterParser::RFPOperatorToString(E_RONone));
    EXPECT_STREQ(" UNKNOWN OPERATOR! ", CZelFilterParser::RFPOperatorToString(static_cast<EZelOper>(16)));
    EXPECT_STREQ(" NoOp ", CZelFilterParser::RFPAlgebraicToString(E_RANoOp));
    EXPECT_STREQ(" UNKNOWN ALGEBRAIC! ", CZelFilterParser::RFPAlgebraicToString(static_cast<EZelAlgebraic>(-1)));
}

}  // namespace
