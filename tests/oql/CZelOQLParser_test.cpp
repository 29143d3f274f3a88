#include "oql/CZelOQLParser.h"

#include <gtest/gtest.h>

#include "Statements.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/ZelEscape.h"
#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelDelete.h"
#include "oql/CZelExpr.h"
#include "oql/CZelQuery.h"
#include "oql/CZelUpdate.h"
#include "port/ScratchDirectory.h"
#include "store/CZelBoolean.h"
#include "store/CZelFilter.h"

namespace {

class OQLParserTest : public testing::Test {
protected:
    ~OQLParserTest() override { ZelSetEscape(false); }

    int parse(const char *text) { return m_parser.ROPParse(text, E_RBTrue); }
    int count() { return m_parser.ROPResults()->RSLength(); }

    // The statement parsed last, which stays the parser's.
    template <class Statement>
    Statement *last() {
        return dynamic_cast<Statement *>(static_cast<CZelDbObject *>(m_parser.ROPResults()->RSPeek(count() - 1)));
    }
    CZelFilter *where(const std::string &condition) {
        EXPECT_EQ(1, parse(("delete from t where " + condition + ";").c_str())) << condition;
        return last<CZelDelete>()->RDFilter();
    }

    CZelOQLParser m_parser;
    CZelErrorCapture m_reports;
};

TEST_F(OQLParserTest, SyntaxErrorsAreReportedWithLineAndTextAndPlaced) {
    const struct {
        const char *text;
        int counter, line, column;
    } cases[] = {{"", 1, 1, 1},
                 {"select a from t", 1, 1, 16},
                 {"select a from x.y.z;", 1, 1, 18},
                 {"select a.b.c.d from t;", 1, 1, 13},
                 {"select a from t;\n  bad;", 2, 2, 3},
                 {"delete from t where a = 'x\ny' or\n\n  ;", 3, 4, 3},
                 {"select a from t where a+1 = 2;", 1, 1, 24},
                 {"delete from t where a in (select b from u);", 1, 1, 27},
                 {"delete from t where a = any ((select b from u));", 1, 1, 30},
                 {"delete from t where a = 1 and 'x;", 1, 1, 31},
                 {"delete from t where a = \xc3\xa9;", 1, 1, 25},
                 {"delete from t where none;", 1, 1, 25},
                 {"insert into t values ([1,);", 1, 1, 26},
                 {"insert into t unique (a) (b) unique (c) values (1);", 1, 1, 30},
                 {"select COUNT( * ) from t;", 1, 1, 15},
                 {"_;", 1, 1, 1}};
    for (const auto &c : cases) {
        m_reports.Clear();
        EXPECT_EQ(E_RCSyntax, parse(c.text)) << c.text;
        const std::string report = "\nSyntax error at line " + std::to_string(c.counter) + " of: " + c.text;
        EXPECT_TRUE(m_reports.Holds(E_RCSyntax, report.c_str())) << c.text << m_reports.LastText();
        EXPECT_EQ(c.line, m_parser.ROPErrorLine()) << c.text;
        EXPECT_EQ(c.column, m_parser.ROPErrorColumn()) << c.text;
    }
    EXPECT_EQ(1, parse(";"));
    EXPECT_EQ(0, m_parser.ROPErrorLine());
    EXPECT_EQ(0, count());
}

TEST_F(OQLParserTest, WhatWasWholeBeforeAnErrorMovesToTheFailedStack) {
    EXPECT_EQ(nullptr, m_parser.ROPParseFailRetObjects());
    EXPECT_EQ(1, m_parser.ROPParse("select a from t; bad; select b from t;", E_RBFalse));
    EXPECT_EQ(0, count());
    ASSERT_NE(nullptr, m_parser.ROPParseFailRetObjects());
    EXPECT_EQ(1, m_parser.ROPParseFailRetObjects()->RSLength());
    EXPECT_EQ(1, parse("shutdown; show; shutdown;"));
    EXPECT_EQ(E_RCSyntax, parse("show databases; bad"));
    CZelStack *failed = m_parser.ROPTakeParseFailRetObjects();
    EXPECT_EQ(4, failed->RSLength());
    EXPECT_EQ(nullptr, m_parser.ROPParseFailRetObjects());
    while (failed->RSLength() > 0)
        delete static_cast<CZelDbObject *>(failed->RSPop());
    delete failed;
}

TEST_F(OQLParserTest, ResultsGatherUntilTheyAreTakenOrPurged) {
    EXPECT_EQ(1, parse("delete from t;"));
    EXPECT_EQ(1, parse("update t set; show;"));
    EXPECT_EQ(3, count());
    EXPECT_EQ(E_DOShow, static_cast<CZelDbObject *>(m_parser.ROPResults()->RSPeek(2))->RDOType());
    m_parser.ROPPurge();
    EXPECT_EQ(0, count());
    EXPECT_EQ(1, parse("shutdown;"));
    CZelStack *taken = m_parser.ROPTakeResults();
    EXPECT_EQ(1, taken->RSLength());
    EXPECT_EQ(0, count());
    delete static_cast<CZelDbObject *>(taken->RSPop());
    delete taken;
    EXPECT_EQ(E_RCNull, parse(nullptr));
}

TEST_F(OQLParserTest, FilesAreReadWholeOrRefused) {
    const ScratchDirectory directory;
    const std::string good = directory.Write("good.oql", "delete from t;\nshow;\n");
    EXPECT_EQ(1, m_parser.ROPParseFromFile(good.c_str(), E_RBTrue));
    EXPECT_EQ(2, count());
    EXPECT_EQ(E_RCNull, m_parser.ROPParseFromFile(nullptr, E_RBFalse));
    EXPECT_EQ(E_RCOpenFailed, m_parser.ROPParseFromFile(directory.Path("none").c_str(), E_RBFalse));
    const std::string cut = directory.Write("cut.oql", std::string("show;\0 bad", 10));
    EXPECT_EQ(E_RCNull, m_parser.ROPParseFromFile(cut.c_str(), E_RBFalse));
    const std::string empty = directory.Write("empty.oql", "");
    EXPECT_EQ(E_RCSyntax, m_parser.ROPParseFromFile(empty.c_str(), E_RBTrue));
    EXPECT_EQ(1, m_parser.ROPParseFromFile(empty.c_str(), E_RBFalse));
}

TEST_F(OQLParserTest, StatementsPrintAsWhatTheyWereReadAs) {
    const std::pair<const char *, const char *> cases[] = {
        {"create table t (a int) create table u (b int);", "create table t ( a int ); create table u ( b int );"},
        {"create table t (a int not null unique default 3 default 4);",
         "create table t ( a int not null unique default 3 );"},
        {"create table t (a char(10), b int type text, c array type list type ipaddress, volatile);",
         "create table t ( a text , b int type text , c list type list type long );"},
        {"data type x is external y;", ""},
        {"drop database 'x'; drop database x;", "drop database x; drop database x;"},
        {"drop table 'x'.'y';", "drop table x.y;"},
        {"show; show databases; show tables from x; show table a.b;",
         "? show databases ; show tables from x ; show table a.b ;"},
        {"select MIN(a) from t;", "select a from t ;"},
        {"select a(1)(2)->b, d.t.c(*)(next)(), a(any)(all)(eval(int,'&x')) from t;",
         "select a(1)(2)->b , d.t.c(*)(next)(*) , a(any)(*)(eval(int,'&x')) from t ;"},
        {"select eval(char,'x'), eval(list type int,'y') from eval(text,'d').t;",
         "select eval(text,'x') , eval(list type int,'y') from eval(text,'d').t ;"},
        {"select a from t order by 2;", "select a from t ;"},
        {"select a from t order by 2, b desc, 3;", "select a from t order by b DESC ;"},
        {"update t set where a = 1;", "update t set where a = 1;"},
        {"update t set , a=1, b->c=NULL;", "update t set a=1,b->c=NULL;"},
        {"insert into t unique (a) (a,b) values (1,'x');", "insert into t ( a, b ) unique ( a ) values ( 1, \"x\" ) ;"},
        {"insert into t (a,b) unique (a) values (1,{c=[1,2.5],d={}});",
         "insert into t ( a, b ) unique ( a ) values ( 1, {c=[1,2.5],d={}} ) ;"},
        {"insert into t values ();", "insert into t values ( ) ;"},
        {"select a into d.t unique (a) from u group by b, c having c=1;",
         "select a into d.t unique ( a ) from u Group by b , c having ( c = 1 ) ;"}};
    for (const auto &[text, form] : cases)
        EXPECT_EQ(form, printed(text)) << text;
}

TEST_F(OQLParserTest, TablesStandInTheQueryFromTheLastToTheFirst) {
    ASSERT_EQ(1, parse("select distinct * from t, d.u;"));
    const CZelQuery *query = last<CZelQuery>();
    EXPECT_EQ(E_RBFalse, query->RQReturnAll());
    EXPECT_EQ(nullptr, query->RQSelection());
    ASSERT_EQ(2, query->RQSource()->RBLength());
    const auto *first = static_cast<CZelDbEntity *>(query->RQSource()->RBFirst()->RPData());
    EXPECT_STREQ("u", first->RDETblName());
    EXPECT_STREQ("d", first->RDEDbName());
    ASSERT_EQ(1, parse("select count(*) from t where a = 1;"));
    EXPECT_EQ(E_RBTrue, last<CZelQuery>()->RQCountStar());
}

TEST_F(OQLParserTest, ANullInAListIsAnUndefinedAtom) {
    for (const char *values : {"[NULL,1]", "(NULL,1)"}) {
        const CZelAtom *list = where(std::string("a in ") + values)->RFKernel()->RBRight()->REHeadAtomVal();
        ASSERT_EQ(2U, list->RAList()->RAVSize());
        ASSERT_NE(nullptr, list->RAList()->RAVGetValue(0));
        EXPECT_TRUE(list->RAList()->RAVGetValue(0)->RAIsUndefined());
    }
}

TEST_F(OQLParserTest, AnEvalIsAValueOrANameByItsPlace) {
    EXPECT_EQ(E_RETClause, where("eval(text,'x') = 1")->RFKernel()->RBLeft()->REType());
    EXPECT_EQ(E_RETClause, where("a in (eval(list type int,'x'))")->RFKernel()->RBRight()->REType());
    EXPECT_EQ(E_RETEntity, where("a not in (eval(list type int,'x'))")->RFKernel()->RBRight()->REType());
    EXPECT_EQ(E_RETEntity, where("eval(text,'x') is null")->RFKernel()->RBLeft()->REType());
    EXPECT_EQ(E_RETEntity, where("eval(text,'x')->m = 1")->RFKernel()->RBLeft()->REType());
    EXPECT_EQ(E_RETEntity, where("eval(text,'x').eval(text,'y') = 1")->RFKernel()->RBLeft()->REType());
}

TEST_F(OQLParserTest, ConstantsAreFoldedIntoTheLeftOperand) {
    const std::pair<const char *, const char *> cases[] = {
        {"1 + 2 * 3", "7"}, {"(1 + 2) * 3", "9"}, {"8 - 3 - 2", "3"}, {"7 / 2", "3"},
        {"7.0 / 2", "3.5"}, {"7 / 0", "7"},       {"- 5", "-5"},      {"- - 5", "5"},
        {"2 * - 3", "-6"},  {"a + 1", "a"},       {"- 'x'", "'x'"},   {"4294967296 + 1", "4294967297"}};
    for (const auto &[text, value] : cases)
        EXPECT_EQ(std::string("delete from t where b = ") + value + ";",
                  printed(std::string("delete from t where b = ") + text + ";"));
    EXPECT_EQ(0U, m_reports.Count());
    EXPECT_EQ("delete from t where b = 1;", printed("delete from t where b = 1 + a;"));
    EXPECT_EQ(E_RCNull, m_reports.LastCode());
}

TEST_F(OQLParserTest, BetweenKeepsConstantBoundsAndNeedsTheirValues) {
    const std::pair<const char *, const char *> cases[] = {
        {"a between 1 and 5", "a Between [1,5]"},
        {"a not between 1 + 1 and 5", "a Not Between [2,5]"},
        {"a between b and 5", "a Between [5]"},
        {"a between [1,5] and b = 2", "(a Between [1,5] And b = 2)"}};
    for (const auto &[text, form] : cases)
        EXPECT_EQ(std::string("delete from t where ") + form + ";",
                  printed(std::string("delete from t where ") + text + ";"));
    EXPECT_EQ(0U, m_reports.Count());
    EXPECT_EQ(nullptr, where("a between NULL and 5"));
    EXPECT_EQ(nullptr, where("a between 1 and NULL"));
    EXPECT_EQ(2U, m_reports.Count());
    EXPECT_EQ(E_RCNull, m_reports.LastCode());
    const CZelFilter *half = where("a between 1 and NULL or b = 1");
    EXPECT_EQ(nullptr, half->RFLeft());
    EXPECT_NE(nullptr, half->RFRight());
}

TEST_F(OQLParserTest, LikeTakesALoneLiteralAsPatternAndDropsTheEscape) {
    EXPECT_EQ("delete from t where (a Like 'x%' And a Not Like 'y');",
              printed("delete from t where a like 'x%' escape '!' and a not like 'y' escape NULL;"));
    EXPECT_EQ("delete from t where (a Like 5 And a Like b);",
              printed("delete from t where a like 2 + 3 and a like b;"));
    EXPECT_EQ(nullptr, where("a like NULL"));
    ASSERT_NE(nullptr, where("a like (NULL)"));
    EXPECT_EQ(E_ROLike, where("a like (NULL)")->RFKernel()->RBOperand());
}

TEST_F(OQLParserTest, SetEscapeActsOnTheVeryNextToken) {
    EXPECT_EQ("delete from t where a = 'x\"y';", printed("set escape on; delete from t where a = 'x\\\"y';"));
    EXPECT_TRUE(ZelEscapeIsOn());
    EXPECT_EQ(1, parse("set escape off; delete from t where a = 'x\\';"));
    EXPECT_STREQ("x\\", last<CZelDelete>()->RDFilter()->RFKernel()->RBRight()->REHeadAtomVal()->RAString());
    EXPECT_FALSE(ZelEscapeIsOn());
}

}  // namespace
