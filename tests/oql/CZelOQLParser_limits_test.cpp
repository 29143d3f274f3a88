// What a text can do at most: its length costs linear time, its depth a report, its end never a leak.
#include <gtest/gtest.h>

#include <memory>

#include "Statements.h"
#include "foundations/base/CZelAtom.h"
#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "oql/CZelAtomParser.h"
#include "oql/CZelDelete.h"
#include "oql/CZelFilterParser.h"
#include "store/CZelFilter.h"

namespace {

std::string repeated(const std::string &piece, int count) {
    std::string all;
    for (int i = 0; i < count; ++i)
        all += piece;
    return all;
}

int parse(const std::string &text) {
    const CZelErrorCapture quiet;
    CZelOQLParser parser;
    return parser.ROPParse(text.c_str(), E_RBTrue);
}

int parseFilter(const std::string &text) {
    const CZelErrorCapture quiet;
    int status = 0;
    delete CZelFilterParser().RFPParse(text.c_str(), &status);
    return status;
}

int parseAtom(const std::string &text) {
    int status = 0;
    testing::internal::CaptureStderr();
    delete CZelAtomParser().RAPParse(text.c_str(), &status);
    testing::internal::GetCapturedStderr();
    return status;
}

// A statement, a condition and a literal with something nested `depth` deep.
std::string nestedList(int depth) {
    return "insert into t values (" + repeated("[", depth) + "1" + repeated("]", depth) + ");";
}

std::string nestedObject(int depth) {
    return "a = " + repeated("{a=", depth) + "1" + repeated("}", depth);
}

std::string nestedQuery(int depth) {
    return "a = 1 or " + repeated("a = (select b from t where ", depth) + "a = 1" + repeated(")", depth);
}

std::string nestedType(int depth) {
    return "create table t (a " + repeated("list type ", depth) + "int);";
}

TEST(OQLLimitsTest, LiteralsTypesAndSubqueriesNestToALimit) {
    onSmallStack([] {
        EXPECT_EQ(1, parse(nestedList(1000)));
        EXPECT_EQ(E_RCSyntax, parse(nestedList(1001)));
        EXPECT_EQ(1, parseFilter(nestedObject(1000)));
        EXPECT_EQ(E_RCSyntax, parseFilter(nestedObject(1001)));
        EXPECT_EQ(1, parse("delete from t where " + nestedObject(1000) + ";"));
        EXPECT_EQ(1, parseAtom(repeated("[", 1000) + repeated("]", 1000)));
        EXPECT_EQ(E_RCSyntax, parseAtom(repeated("[", 1001) + repeated("]", 1001)));
        EXPECT_EQ(1, parseFilter(nestedQuery(100)));
        EXPECT_EQ(E_RCSyntax, parseFilter(nestedQuery(101)));
        EXPECT_EQ(1, parse(nestedType(1000)));
        EXPECT_EQ(E_RCSyntax, parse(nestedType(1001)));
    });
}

TEST(OQLLimitsTest, WhatStandsSideBySideDoesNotCountAsNested) {
    EXPECT_EQ(1, parse("insert into t values (" + repeated("[[]],", 2000) + "{a={}});"));
    EXPECT_EQ(1, parseFilter("a = 1" + repeated(" or a = (select b from t)", 200)));
    EXPECT_EQ(1, parse("create table t (a int" + repeated(", a list type int", 2000) + ");"));
}

TEST(OQLLimitsTest, DepthEndsAtTheStackOfTheParserNotAtThatOfTheThread) {
    onSmallStack([] {
        EXPECT_EQ(1, parseFilter(repeated("(", 9000) + "a=1" + repeated(")", 9000)));
        EXPECT_EQ(E_RCSyntax, parseFilter(repeated("(", 10000) + "a=1" + repeated(")", 10000)));
        EXPECT_EQ(1, parseFilter(repeated("not ", 9000) + "a=1"));
        EXPECT_EQ(1, parseFilter("a=" + repeated("- ", 9000) + "1"));
        for (const char *piece : {"(", "[", "{a=", "not ", "- ", "a=(select ", "1*(", "avg("})
            EXPECT_EQ(E_RCSyntax, parse("delete from t where " + repeated(piece, 200000))) << piece;
    });
}

TEST(OQLLimitsTest, LongChainsAreReadPrintedCopiedAndDeletedOnASmallStack) {
    onSmallStack([] {
        for (const char *joiner : {" or ", " and "}) {
            CZelOQLParser parser;
            const std::string text = "delete from t where a=1" + repeated(joiner + std::string("a=1"), 149999) + ";";
            ASSERT_EQ(1, parser.ROPParse(text.c_str(), E_RBTrue));
            auto *statement = static_cast<CZelDelete *>(parser.ROPResults()->RSPeek(0));
            const CZelMallocText form(statement->RDOAsString());
            const std::unique_ptr<CZelFilter> copy(new CZelFilter(*statement->RDFilter()));
            EXPECT_LT(150000U * 5, std::string(form.get()).size());
            CZelOQLParser again;
            // Its brackets make it deeper than the parser goes: a report, nothing worse.
            const CZelErrorCapture quiet;
            EXPECT_EQ(E_RCSyntax, again.ROPParse(form.get(), E_RBTrue));
        }
        EXPECT_EQ(1, parse("select a from t where b in (1" + repeated(",1", 200000) + ");"));
        EXPECT_EQ(1, parse("select a" + repeated("->b(1)", 100000) + repeated(", c", 100000) + " from t;"));
        EXPECT_EQ(1, parse("delete from t where a = 1" + repeated(" + 1", 100000) + ";"));
        EXPECT_EQ(1, parse(repeated(";", 1000000)));
    });
}

TEST(OQLLimitsTest, ALiteralMayBeOfAnyLength) {
    const std::string text = "insert into t values ('" + std::string(64U << 20, 'x') + "');";
    CZelOQLParser parser;
    EXPECT_EQ(1, parser.ROPParse(text.c_str(), E_RBTrue));
    EXPECT_EQ(E_RCSyntax, parse(text.substr(0, text.size() - 4)));
    EXPECT_EQ(E_RCSyntax, parse("select " + std::string(1U << 20, '9') + "e" + std::string(1U << 20, 'a')));
}

// Every symbol of the grammar stands on the stack at some cut; the leak check of the sanitizer sees what is left.
TEST(OQLLimitsTest, ATextCutAnywhereIsWholeOrASyntaxErrorAndLeavesNothing) {
    const char *statements[] = {
        "create table d.t (a char(10) not null unique default [1,{x='y'}], b list type list type named, unique (a, b), "
        "primary key (a), counter (b), timestamp (b), volatile, c int not null primary key) create database e;",
        "create index eval(text,'i') on eval(text,'d').t (a, b); drop index i; drop table 'd'.'t'; drop database 'd';",
        "create database eval(text,'x'); drop database eval(text,'x'); drop database x; data type x is external y;",
        "show table a.b; show tables from d; show databases; show; shutdown; set escape off;",
        "insert into d.t unique (a) (a, eval(text,'b')) values (1, [eval(int,'x'), {m='y', n=[]}], NULL, 1.5, {});",
        "insert into t (a, b) unique (a, b) values (9223372036854775807, 'x'); insert into t unique (a) values ();",
        "select all a, d.t.b->c(1)(next)(*)()(all)(any)(eval(int,'1')), avg(*), avg(distinct a), avg(all b), avg(c), "
        "- 1 * (2 + 3) - 4 / + 5 from t, d.u where a = 1 or not b <> (select * from v) and c in (1, 'x', NULL, [1]) "
        "group by a, b having a = 1 order by a desc, 2 asc, t.b;",
        "select distinct * into d.t unique (a) from u where exists (select a from t) and a is not null or b is null;",
        "select count(*) from t where a like 'x' escape '!' and b not like c and d like 'x' + 'y' and e not like NULL;",
        "delete from t where a between 1 and 2 * 3 or b not between c and [1] or d between [1,2] and e in [1] and "
        "f not in [2];",
        "delete from t where a in ((select b from t where c >= any (select d from u))) and x not in ((select y from "
        "z));",
        "delete from t where a in (eval(list type int,'x')) and b not in (eval(list type int,'x')) and c in (d.t.e->f) "
        "and eval(text,'x') = eval(text,'y').b and g < 1 and h > all (select i from j) and k <= some (select l from "
        "m);",
        "update d.t set a = 1, b->c = {x=NULL,y={z=-1}}, d(next) = eval(text,'x') where a = 1;"};
    for (const std::string text : statements) {
        ASSERT_EQ(1, parse(text)) << text;
        for (std::size_t length = 0; length < text.size(); ++length) {
            const int status = parse(text.substr(0, length));
            EXPECT_TRUE(status == 1 || status == E_RCSyntax) << status << text.substr(0, length);
        }
    }
}

TEST(OQLLimitsTest, AConditionOrLiteralCutAnywhereLeavesNothing) {
    const std::string condition =
        "none and a in ((b)) or c not in eval(list type object type x,'y') and eval(char,'x')->d(eval(int,'1')) = "
        "eval(array type int,'z') and e in ((select distinct a, {x=[1,NULL]} from t group by b order by c)) or g is "
        "null";
    ASSERT_EQ(1, parseFilter(condition));
    for (std::size_t length = 0; length < condition.size(); ++length)
        parseFilter(condition.substr(0, length));
    const std::string literal = "{a=[1,2.5,'x',{b=TRUE}],c={d=[]}}";
    ASSERT_EQ(1, parseAtom(literal));
    for (std::size_t length = 0; length < literal.size(); ++length)
        EXPECT_EQ(E_RCSyntax, parseAtom(literal.substr(0, length)));
}

}  // namespace
