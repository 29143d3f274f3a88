#include "oql/CZelExpr.h"

#include <gtest/gtest.h>

#include <climits>
#include <limits>

#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "foundations/port/ZelDebug.h"
#include "support/ExprBuild.h"

namespace {

std::string shown(CZelBag *bag) {
    if (bag == nullptr)
        return "no bag";
    std::string text;
    for (const CZelPointer *node = bag->RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        text += '<' + ::shown(static_cast<const CZelAtom *>(node->RPData())) + '>';
    delete bag;
    return text;
}

// Head, bag and count of the values must tell the same of each kind of expression.
struct Reading {
    const char *what;
    CZelExpr *expression;
    const char *head;
    const char *bag;
    int count;
};

TEST(ExprTest, EachKindOfExpressionReadsByItsOwnRule) {
    const CZelAtom override(3);
    CZelExpr *overridden = columnExpr("a");
    overridden->RESetOverride(&override);
    CZelExpr *overriddenByNothing = clause("&x");
    overriddenByNothing->RESetOverride(nullptr);
    const Reading readings[] = {
        {"constant", constant(CZelAtom(7)), "int 7", "<int 7>", 1},
        {"NULL", noValue(), "null", "<null>", 1},
        {"undefined constant", constant(CZelAtom()), "undefined undefined", "<undefined undefined>", 1},
        {"entity", columnExpr("a"), "null", "no bag", -1},
        {"function", new CZelExpr, "null", "no bag", -1},
        {"clause without result", clause("&x"), "null", "no bag", -1},
        {"clause without values", evaluated({}), "null", "", 0},
        {"clause with two values", evaluated({CZelAtom("x"), CZelAtom(2)}), "text x", "<text x><int 2>", 2},
        {"override", overridden, "int 3", "<int 3>", 1},
        {"override by nothing", overriddenByNothing, "null", "<null>", 1},
    };
    for (const Reading &reading : readings) {
        SCOPED_TRACE(reading.what);
        EXPECT_EQ(reading.head, ::shown(reading.expression->REHeadAtomVal()));
        EXPECT_EQ(reading.count, reading.expression->REValueCount());
        EXPECT_EQ(reading.bag, shown(reading.expression->REBagVal()));
        delete reading.expression;
    }
}

TEST(ExprTest, AResultThatIsNoListIsReportedAndHasNoValue) {
    const std::unique_ptr<CZelExpr> expression(clause("&x"));
    expression->RESetClauseVal(new CZelVarBind("", 5));
    const CZelErrorCapture reports;
    EXPECT_EQ(nullptr, expression->REHeadAtomVal());
    EXPECT_EQ(E_RCBadType, reports.LastCode());
    EXPECT_EQ("", shown(expression->REBagVal()));
    EXPECT_EQ(1U, reports.Count());
}

TEST(ExprTest, ResultsComeAndGoWithoutTheClause) {
    const std::unique_ptr<CZelExpr> expression(evaluated({CZelAtom(1)}));
    const std::unique_ptr<CZelVarBind> result(expression->RETakeClauseVal());
    EXPECT_EQ(nullptr, expression->REHeadAtomVal());
    const CZelAtom next = listOf({CZelAtom(2)});
    expression->RESetClauseVal(new CZelVarBind("", &next));
    expression->RESetClauseVal(new CZelVarBind("", &next));
    EXPECT_EQ("int 2", ::shown(expression->REHeadAtomVal()));
    const std::unique_ptr<CZelEvalClause> taken(expression->RETakeEvalClause());
    EXPECT_STREQ("&x", taken->RECCompileable());
    EXPECT_EQ(E_RETClause, expression->REType());
    EXPECT_EQ("", ::taken(expression->REPrint()));
}

TEST(ExprTest, AClauseResultTurnsAnEntityIntoAClause) {
    const std::unique_ptr<CZelExpr> expression(columnExpr("a"));
    const CZelAtom list = listOf({CZelAtom(2)});
    expression->RESetClauseVal(new CZelVarBind("", &list));
    EXPECT_EQ(E_RETClause, expression->REType());
    EXPECT_EQ(nullptr, expression->REClauseVal());
    EXPECT_EQ("int 2", ::shown(expression->REAtomVal()));
}

TEST(ExprTest, TheFirstValueIsReplacedWhereThereIsAPlaceForIt) {
    const CZelErrorCapture reports;
    const CZelAtom five(5);
    const CZelAtom other(6);
    const std::unique_ptr<CZelExpr> atom(noValue());
    const std::unique_ptr<CZelExpr> result(evaluated({CZelAtom(1), CZelAtom(2)}));
    const std::unique_ptr<CZelExpr> overridden(constant(CZelAtom(1)));
    overridden->RESetOverride(&other);
    for (CZelExpr *expression : {atom.get(), result.get(), overridden.get()}) {
        EXPECT_EQ(1, expression->RESetHeadAtomVal(&five));
        EXPECT_EQ("int 5", ::shown(expression->REHeadAtomVal()));
    }
    EXPECT_EQ(&five, overridden->REHeadAtomVal());
    EXPECT_EQ("<int 5><int 2>", shown(result->REBagVal()));
    EXPECT_EQ(1, atom->RESetHeadAtomVal(static_cast<const CZelAtom *>(nullptr)));
    EXPECT_EQ(nullptr, atom->REHeadAtomVal());
    EXPECT_EQ(E_RCBadValue, std::unique_ptr<CZelExpr>(columnExpr("a"))->RESetHeadAtomVal(&five));
    EXPECT_EQ(0U, reports.Count());
    EXPECT_EQ(E_RCNull, std::unique_ptr<CZelExpr>(clause("&x"))->RESetHeadAtomVal(&five));
    EXPECT_EQ(E_RCNull, result->RESetHeadAtomVal(static_cast<const CZelAtom *>(nullptr)));
    EXPECT_EQ(2U, reports.Count());
}

TEST(ExprTest, ACopyHasValueEntityOrClauseButNoResultAndNoOverride) {
    const std::unique_ptr<CZelExpr> result(evaluated({CZelAtom(1)}));
    const CZelExpr clauseCopy(*result);
    EXPECT_EQ(-1, clauseCopy.REValueCount());
    EXPECT_STREQ("&x", clauseCopy.REClauseVal()->RECCompileable());
    const CZelAtom override(3);
    const std::unique_ptr<CZelExpr> atom(constant(CZelAtom("kept")));
    atom->RESetOverride(&override);
    EXPECT_EQ("text kept", ::shown(CZelExpr(*atom).REHeadAtomVal()));
    const std::unique_ptr<CZelExpr> entityExpr(columnExpr("a"));
    CZelExpr entityCopy(*entityExpr);
    EXPECT_NE(entityExpr->REEntityVal(), entityCopy.REEntityVal());
    EXPECT_EQ(1, entityCopy.RESetInternal(column("b")));
    EXPECT_EQ("b", ::taken(entityCopy.REPrint()));
    EXPECT_EQ("a", ::taken(entityExpr->REPrint()));
}

TEST(ExprTest, PrintsAsOql) {
    EXPECT_EQ("'it'", ::taken(std::unique_ptr<CZelExpr>(constant(CZelAtom("it")))->REPrint()));
    EXPECT_EQ("[1,'x']", ::taken(std::unique_ptr<CZelExpr>(constant(listOf({CZelAtom(1), CZelAtom("x")})))->REPrint()));
    EXPECT_EQ("NULL", ::taken(std::unique_ptr<CZelExpr>(noValue())->REPrint()));
    EXPECT_EQ("", ::taken(CZelExpr().REPrint()));
    EXPECT_EQ("eval(text,'&x')", ::taken(std::unique_ptr<CZelExpr>(evaluated({CZelAtom(1)}))->REPrint()));
    auto *element = new CZelColDef(nullptr, E_RDTInt, nullptr, -1);
    auto *named = new CZelColDef;
    named->RCDSetNamedTypeName("part");
    CZelExpr list(new CZelEvalClause(new CZelColDef(nullptr, E_RDTList, element, -1), ZelStrDup("a 'b'")));
    EXPECT_EQ("eval(list type int,\"a 'b'\")", ::taken(list.REPrint()));
    CZelExpr object(new CZelEvalClause(new CZelColDef(nullptr, E_RDTObject, named, -1), nullptr));
    EXPECT_EQ("eval(object type part,'')", ::taken(object.REPrint()));
}

TEST(ExprTest, BagsOfAtomsAreCopiedAndEmptied) {
    CZelExpr expression;
    CZelBag atoms;
    atoms.RBAdd(static_cast<void *>(new CZelAtom(1)));
    atoms.RBAdd(static_cast<void *>(nullptr));
    const CZelErrorCapture reports;
    const CZelBagGuard<CZelAtom> copies(expression.RECopyAtomBag(&atoms));
    EXPECT_EQ(1, copies->RBLength());
    EXPECT_EQ(E_RCBadArgument, reports.LastCode());
    EXPECT_EQ(nullptr, expression.RECopyAtomBag(nullptr));
    expression.REDeleteAtomBag(&atoms);
}

// --- folding ---

using Fold = void (CZelExpr::*)(const CZelAtom *);

std::string folded(const CZelAtom &left, Fold fold, const CZelAtom &right) {
    CZelExpr expression(&left);
    (expression.*fold)(&right);
    return ::shown(expression.REHeadAtomVal());
}

constexpr Fold ADD = &CZelExpr::REAddVal;
constexpr Fold SUB = &CZelExpr::RESubVal;
constexpr Fold MUL = &CZelExpr::REMulVal;
constexpr Fold DIV = &CZelExpr::REDivVal;

TEST(ExprFoldTest, TheTypesOfBothSidesGiveTheTypeOfTheResult) {
    const CZelAtom numbers[] = {CZelAtom(7), CZelAtom(7L), CZelAtom(7.0F), CZelAtom(7LL)};
    const CZelAtom divisors[] = {CZelAtom(2), CZelAtom(2L), CZelAtom(2.0F), CZelAtom(2LL)};
    const char *const types[4][4] = {{"int ", "int ", "float ", "long64 "},
                                     {"int ", "int ", "float ", "long64 "},
                                     {"float ", "float ", "float ", "float "},
                                     {"long64 ", "long64 ", "float ", "long64 "}};
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) {
            const std::string type = types[i][j];
            const bool isFloat = type == "float ";
            EXPECT_EQ(type + (isFloat ? "9.0" : "9"), folded(numbers[i], ADD, divisors[j])) << i << j;
            EXPECT_EQ(type + (isFloat ? "5.0" : "5"), folded(numbers[i], SUB, divisors[j])) << i << j;
            EXPECT_EQ(type + (isFloat ? "14.0" : "14"), folded(numbers[i], MUL, divisors[j])) << i << j;
            EXPECT_EQ(type + (isFloat ? "3.5" : "3"), folded(numbers[i], DIV, divisors[j])) << i << j;
        }
}

TEST(ExprFoldTest, WholeNumbersWrapAtTheirRange) {
    EXPECT_EQ("int -2147483648", folded(CZelAtom(INT_MAX), ADD, CZelAtom(1)));
    EXPECT_EQ("int 2147483647", folded(CZelAtom(INT_MIN), SUB, CZelAtom(1)));
    EXPECT_EQ("int -2147483648", folded(CZelAtom(INT_MIN), DIV, CZelAtom(-1)));
    EXPECT_EQ("int 0", folded(CZelAtom(65536), MUL, CZelAtom(65536)));
    EXPECT_EQ("int -3", folded(CZelAtom(-7), DIV, CZelAtom(2)));
    EXPECT_EQ("long64 -9223372036854775808", folded(CZelAtom(LLONG_MAX), ADD, CZelAtom(1)));
    EXPECT_EQ("long64 -9223372036854775808", folded(CZelAtom(LLONG_MIN), DIV, CZelAtom(-1LL)));
    EXPECT_EQ("long64 4294967296", folded(CZelAtom(65536), MUL, CZelAtom(65536LL)));
}

TEST(ExprFoldTest, DivisionByZeroAndOtherTypesLeaveTheValue) {
    const CZelErrorCapture reports;
    // Of a long the low 32 bits are computed with, and those of the last one are zero.
    for (const CZelAtom &zero :
         {CZelAtom(0), CZelAtom(0L), CZelAtom(0LL), CZelAtom(0.0F), CZelAtom(-0.0F), CZelAtom(1L << 32)})
        EXPECT_EQ("int 7", folded(CZelAtom(7), DIV, zero));
    for (const CZelAtom &bad : {CZelAtom("2"), CZelAtom(), listOf({CZelAtom(1)}), objectOf({})}) {
        EXPECT_EQ("int 7", folded(CZelAtom(7), ADD, bad));
        EXPECT_EQ(::shown(&bad), folded(bad, MUL, CZelAtom(7)));
    }
    EXPECT_EQ(0U, reports.Count());
}

TEST(ExprFoldTest, OnlyAConstantOfItsOwnFolds) {
    const CZelAtom one(1);
    const std::unique_ptr<CZelExpr> column(columnExpr("a"));
    const std::unique_ptr<CZelExpr> null(noValue());
    const std::unique_ptr<CZelExpr> result(evaluated({CZelAtom(1)}));
    const std::unique_ptr<CZelExpr> overridden(constant(CZelAtom(5)));
    overridden->RESetOverride(&one);
    for (CZelExpr *expression : {column.get(), null.get(), result.get(), overridden.get()}) {
        const std::string before = ::shown(expression->REHeadAtomVal());
        expression->REAddVal(&one);
        expression->RENegativise();
        EXPECT_EQ(before, ::shown(expression->REHeadAtomVal()));
    }
    EXPECT_EQ("int 1", ::shown(&one));
}

TEST(ExprFoldTest, SignsKeepTheType) {
    const auto negated = [](const CZelAtom &value) {
        CZelExpr expression(&value);
        expression.REPositivise();
        expression.RENegativise();
        return ::shown(expression.REHeadAtomVal());
    };
    EXPECT_EQ("int -5", negated(CZelAtom(5)));
    EXPECT_EQ("int -2147483648", negated(CZelAtom(INT_MIN)));
    EXPECT_EQ("long -5000000000", negated(CZelAtom(5000000000L)));
    EXPECT_EQ("long64 -9223372036854775808", negated(CZelAtom(LLONG_MIN)));
    EXPECT_EQ("float -0.5", negated(CZelAtom(0.5F)));
    EXPECT_EQ("text x", negated(CZelAtom("x")));
}

TEST(ExprFoldTest, BadTypesAreTracedAtDebugLevelFour) {
    const int before = __Zeltronix_Debug_Level;
    for (const int level : {3, 4}) {
        __Zeltronix_Debug_Level = level;
        testing::internal::CaptureStdout();
        folded(CZelAtom("x"), ADD, CZelAtom(1));
        EXPECT_EQ(level == 4 ? "Attempt to evaluate bad expression\n" : "", testing::internal::GetCapturedStdout());
    }
    __Zeltronix_Debug_Level = before;
}

}  // namespace
