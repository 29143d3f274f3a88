#include "clause/CZelCmdCmplr.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelVarBind.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/CZelErrorCapture.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelDbObject.h"
#include "store/CZelStore.h"

namespace {

// Texts of a compiler's answers; "null" for null, with the type's name in front of the value.
class CmdCmplrTest : public ::testing::Test {
protected:
    static std::string text(CZelAtom *answer) {
        const std::unique_ptr<CZelAtom> owner(answer);
        if (answer == nullptr)
            return "null";
        return std::string(CZelAtom::RAGetDataTypeString(answer->RAType())) + " " +
               CZelMallocText(answer->RAStrRep()).get();
    }

    std::string dollar(const char *name) { return text(compiler.RCCEvaluateDollar(name)); }
    std::string field(const char *name) { return text(compiler.RCCEvaluateAmpersand(name)); }

    static std::unique_ptr<CZelAtomVector> path(CZelAtom *first, CZelAtom *second = nullptr) {
        auto keys = std::make_unique<CZelAtomVector>(2);
        keys->RAVAddToEnd(first);
        if (second != nullptr)
            keys->RAVAddToEnd(second);
        return keys;
    }

    static void set(CZelRecord &record, const char *name, CZelAtom value) {
        const CZelAtom label(name);
        record.RRAddOrSetValue(&label, &value);
    }

    static CZelAtom list(std::initializer_list<int> numbers) {
        auto *values = new CZelAtomVector();
        for (const int number : numbers)
            values->RAVAddToEnd(new CZelAtom(number));
        return CZelAtom(values);
    }

    CZelErrorCapture reports;
    CZelCmdCmplr compiler;
};

}  // namespace

TEST_F(CmdCmplrTest, ConstantsOfTheProcessComeFirstThenTheCompilersThenTheEnvironment) {
    EXPECT_EQ("text ZELTRONIX.3.0.EVENT.QUERY", dollar("Event"));
    EXPECT_EQ(dollar("Galen"), dollar("Events"));
    EXPECT_EQ("text QMT.SNMPHELPER.QUERY", dollar("SnmpHelper"));
    EXPECT_EQ("int -2", dollar("physical"));
    EXPECT_EQ("int 23", dollar("AF_INET6"));
    EXPECT_EQ("null", dollar("event"));
    EXPECT_EQ(1, compiler.RCCAddToConstStore(new CZelVarBind("Event", 5)));
    CZelAtom name("Event");
    EXPECT_EQ(E_RBTrue, compiler.RCCDoesConstExist(&name));
    EXPECT_EQ("text ZELTRONIX.3.0.EVENT.QUERY", dollar("Event"));
    setenv("QuintorTestVariable", "from outside", 1);
    EXPECT_EQ("text from outside", dollar("QuintorTestVariable"));
    CZelCmdCmplr::RCCSetEnvironmentFilter([](const char *) { return false; });
    EXPECT_EQ("null", dollar("QuintorTestVariable"));
    CZelCmdCmplr::RCCSetEnvironmentFilter(nullptr);
    unsetenv("QuintorTestVariable");
}

TEST_F(CmdCmplrTest, EachFurtherDollarFollowsOneConstant) {
    compiler.RCCAddToConstStore(new CZelVarBind("AA", "BB"));
    compiler.RCCAddToConstStore(new CZelVarBind("BB", 5));
    EXPECT_EQ("text BB", dollar("AA"));
    EXPECT_EQ("int 5", dollar("$AA"));
    EXPECT_EQ("null", dollar("$$AA"));
    EXPECT_EQ("null", dollar("$nothing"));
}

TEST_F(CmdCmplrTest, ConstantsAreAddedOnceAndRemovedByName) {
    auto *constant = new CZelVarBind("K", 1);
    CZelVarBind again("K", 2);
    EXPECT_EQ(1, compiler.RCCAddToConstStore(constant));
    EXPECT_EQ(E_RCDuplicate, compiler.RCCAddToConstStore(&again));
    EXPECT_TRUE(reports.Holds(E_RCDuplicate, "K"));
    EXPECT_EQ("int 1", dollar("K"));
    EXPECT_EQ(1, compiler.RCCRemoveFromConstStore(&again));
    EXPECT_EQ("null", dollar("K"));
    delete constant;
    CZelVarBind empty("E", static_cast<const CZelAtom *>(nullptr));
    EXPECT_EQ(E_RCBadArgument, compiler.RCCAddToConstStore(&empty));
    EXPECT_EQ(E_RCBadArgument, compiler.RCCAddToConstStore(nullptr));
}

TEST_F(CmdCmplrTest, BuiltInNamesTakeAnyCase) {
    EXPECT_EQ("long", dollar("time").substr(0, 4));
    EXPECT_EQ("long64", dollar("FTIME").substr(0, 6));
    EXPECT_EQ("float", dollar("UserCpuTime").substr(0, 5));
    EXPECT_EQ("float", dollar("CPUTIME").substr(0, 5));
    EXPECT_EQ("text System: ", dollar("SOFTWARE_VERSION").substr(0, 13));
    EXPECT_EQ("null", text(compiler.RCCEvaluateDollar(nullptr)));
    EXPECT_TRUE(reports.Holds(E_RCBadArgument));
}

TEST_F(CmdCmplrTest, FieldsAreReadFromTheRecordAtTheirLevel) {
    EXPECT_EQ("null", field("a"));
    CZelRecord outer;
    CZelRecord current;
    set(outer, "a", CZelAtom("outer"));
    set(current, "a", CZelAtom(1));
    set(current, "l", list({7, 8}));
    compiler.RCCSetCurrentRec(&outer, 0);
    compiler.RCCAppendCurrentRec(&current);
    EXPECT_EQ("int 1", field("a"));
    EXPECT_EQ("text outer", field("&a"));
    EXPECT_EQ("null", field("&&a"));
    EXPECT_EQ("null", field("missing"));
    EXPECT_EQ("int 8", text(compiler.RCCEvaluateAmpersand("l", *path(new CZelAtom(1)))));
    CZelAtom name("a");
    EXPECT_EQ("int 1", text(compiler.RCCEvaluateAmpersand(&name)));
    CZelAtom number(3);
    EXPECT_EQ("null", text(compiler.RCCEvaluateAmpersand(&number)));
    EXPECT_EQ(0U, reports.Count());
    EXPECT_EQ("null", text(compiler.RCCEvaluateAmpersand(static_cast<CZelAtom *>(nullptr))));
    EXPECT_TRUE(reports.Holds(E_RCBadArgument));
}

TEST_F(CmdCmplrTest, ListFunctionsCopyAndLeaveTheRecordAlone) {
    CZelRecord record;
    set(record, "l", list({1, 2, 1}));
    set(record, "one", CZelAtom(1));
    set(record, "nine", CZelAtom(9));
    compiler.RCCSetCurrentRec(&record, 0);
    EXPECT_EQ("list [1,2,1,9]", text(compiler.RCCEvaluateAppend("l", "nine")));
    EXPECT_EQ("list [9]", text(compiler.RCCEvaluateAppend("absent", "nine")));
    EXPECT_EQ("null", text(compiler.RCCEvaluateAppend("one", "nine")));
    EXPECT_EQ("null", text(compiler.RCCEvaluateAppend("l", "absent")));
    EXPECT_EQ("list [1,2,1]", text(compiler.RCCEvaluateAppendUnique("l", "one")));
    EXPECT_EQ("list [2,1]", text(compiler.RCCEvaluateDelete("l", "one")));
    EXPECT_EQ("list [1,2,1]", text(compiler.RCCEvaluateDelete("l", "nine")));
    EXPECT_EQ("null", text(compiler.RCCEvaluateDelete("absent", "one")));
    EXPECT_EQ("int 3", text(compiler.RCCEvaluateLength("l")));
    EXPECT_EQ("int 0", text(compiler.RCCEvaluateLength("absent")));
    EXPECT_EQ(0U, reports.Count());
    EXPECT_EQ("int 0", text(compiler.RCCEvaluateLength("one")));
    EXPECT_TRUE(reports.Holds(E_RCBadValue, "Return val is not a list type."));
    EXPECT_EQ("list [[1,2,1],1,9]", text(compiler.RCCEvaluateRecordValues()));
    EXPECT_EQ("list ['l','one','nine']", text(compiler.RCCEvaluateRecordNames()));
}

TEST_F(CmdCmplrTest, CatJoinsTheTextsOfItsParts) {
    CZelAtomVector parts(3);
    EXPECT_EQ("null", text(compiler.RCCEvaluateCat(parts)));
    parts.RAVAddToEnd(new CZelAtom("eth"));
    parts.RAVAddToEnd(new CZelAtom(0));
    parts.RAVAddToEnd(new CZelAtom());
    EXPECT_EQ("text eth0<NULL>", text(compiler.RCCEvaluateCat(parts)));
}

TEST_F(CmdCmplrTest, WithoutAGraphThisIsReported) {
    const CZelAtomVector none(0);
    EXPECT_EQ("null", text(compiler.RCCEvaluateThis(0, 0, "x", 1, none)));
    EXPECT_TRUE(reports.Holds(E_RCNotInTree, "graph not defined"));
}

TEST_F(CmdCmplrTest, StatementsAreSortedAndWrittenActionsFirst) {
    const CZelMallocText oql(
        compiler.RCCCompileOQLToString("show databases; delete from d.t; shutdown; drop table d.t;"));
    EXPECT_STREQ("delete from d.t;\ndrop table d.t;\nshow databases  ;\n\nshutdown;\n", oql.get());
    EXPECT_EQ(2, compiler.RCCActions()->RBLength());
    EXPECT_EQ(2, compiler.RCCQueries()->RBLength());
    compiler.RCCPurge(E_RBFalse);
    EXPECT_EQ(0, compiler.RCCActions()->RBLength());
    EXPECT_EQ(1, compiler.RCCCompileOQL("this does not parse"));
    EXPECT_EQ(0, compiler.RCCQueries()->RBLength());
    EXPECT_TRUE(reports.Holds(E_RCSyntax));
}

TEST_F(CmdCmplrTest, WhatPassesToTheStoreCanNotBeCompiledTwice) {
    CZelBag repeatable;
    EXPECT_TRUE(CZelCmdCmplr::RCCPrecompileOQL("delete from d.t; select * from d.t;", repeatable));
    CZelBag once;
    EXPECT_FALSE(CZelCmdCmplr::RCCPrecompileOQL("create table d.t (a int);", once));
    compiler.RCCCompileOQL(&once, false);
    EXPECT_TRUE(reports.Holds(E_RCBadValue, "CZelCmdCmplr::RCCCompileOQL"));
    compiler.RCCPurge(E_RBTrue);
    for (CZelPointer *node = repeatable.RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        delete static_cast<CZelDbObject *>(node->RPData());
}

TEST_F(CmdCmplrTest, ActionsRunStraightOnAStoreWhichKeepsWhatItAdopts) {
    CZelStore store;
    compiler.RCCCompileOQL(
        "create database d; create database d; create table d.t (a int not null unique);"
        "insert into d.t (a) values (1); insert into d.t (a) values (2);"
        "delete from d.t where a = 1; create index i on d.t (a);");
    EXPECT_EQ(1, compiler.RCCExecuteOQL(&store, E_RBFalse));
    EXPECT_TRUE(reports.Holds(E_RCDuplicateDatabase));
    compiler.RCCPurge(E_RBFalse);
    CZelDbEntity table("d", "t", static_cast<const char *>(nullptr));
    EXPECT_EQ(1, store.RSTotalRecordCount(&table, nullptr, E_RBTrue));
}

TEST_F(CmdCmplrTest, FieldsOfARecordThatAreClausesAreReplacedByTheirValues) {
    CZelRecord current;
    set(current, "Name", CZelAtom("eth0"));
    compiler.RCCSetCurrentRec(&current, 0);
    CZelRecord record;
    set(record, "a", CZelAtom("eval(int,'1+2')"));
    set(record, "b", CZelAtom("eval(text,'&Missing')"));
    auto *members = new CZelVBList();
    auto *inner = new CZelVBList();
    inner->RVBLAddToListEnd(new CZelVarBind("c", "eval(text,'&Name')"));
    members->RVBLAddToListEnd(new CZelVarBind("x", 1));
    members->RVBLAddToListEnd(new CZelVarBind(CZelAtom("o"), CZelAtom(inner)));
    members->RVBLAddToListEnd(new CZelVarBind("d", "eval(int,'2 * 3')"));
    set(record, "o", CZelAtom(members));
    set(record, "e", CZelAtom(7));
    EXPECT_EQ(1, compiler.RCCCompileClausesInRec(&record));
    EXPECT_EQ(3, record.RRValueOf("a")->RAInt());
    EXPECT_EQ(E_RDTInt, record.RRValueOf("a")->RAType());
    EXPECT_STREQ("No Value", record.RRValueOf("b")->RAString());
    EXPECT_EQ("object {x=1,o={c='eth0'},d=6}", text(new CZelAtom(*record.RRValueOf("o"))));
    EXPECT_EQ(7, record.RRValueOf("e")->RAInt());
    EXPECT_EQ(0U, reports.Count());
}

TEST_F(CmdCmplrTest, StatementsCompiledOnceServeManyRecords) {
    CZelBag statements;
    ASSERT_TRUE(CZelCmdCmplr::RCCPrecompileOQL(
        "insert into d.eval(text,'&Table') (a, b) values (eval(int,'&Count * 2'), [eval(int,'&Count'), 1]);"
        "delete from d.t where a > eval(int,'&Count');",
        statements));
    compiler.RCCCompileOQL(&statements, false);
    for (const int count : {1, 20}) {
        CZelRecord record;
        set(record, "Table", CZelAtom(count == 1 ? "t" : "u"));
        set(record, "Count", CZelAtom(count));
        compiler.RCCInitClauses();
        compiler.RCCSetCurrentRec(&record, 0);
        EXPECT_EQ(1, compiler.RCCCompileClauses());
        std::string written;
        for (CZelPointer *node = statements.RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
            written += CZelMallocText(static_cast<CZelDbObject *>(node->RPData())->RDOAsString()).get();
        const std::string number = std::to_string(count);
        EXPECT_NE(std::string::npos, written.find(count == 1 ? "d.t" : "d.u")) << written;
        EXPECT_NE(std::string::npos, written.find("[" + number + ",1]")) << written;
        EXPECT_NE(std::string::npos, written.find("a > " + number)) << written;
    }
    EXPECT_EQ(0U, reports.Count());
    compiler.RCCPurge(E_RBFalse);
    for (CZelPointer *node = statements.RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        delete static_cast<CZelDbObject *>(node->RPData());
}

TEST_F(CmdCmplrTest, AFieldThatSaysEvalByChanceStaysAsItIs) {
    CZelRecord record;
    set(record, "evaluation", CZelAtom(3));
    set(record, "note", CZelAtom("an eval of sorts"));
    EXPECT_EQ(1, compiler.RCCCompileClausesInRec(&record));
    EXPECT_EQ(3, record.RRValueOf("evaluation")->RAInt());
    EXPECT_STREQ("an eval of sorts", record.RRValueOf("note")->RAString());
}

TEST_F(CmdCmplrTest, ANameThatIsNotKnownYetIsWrittenAsItsClause) {
    CZelBag statements;
    CZelCmdCmplr::RCCPrecompileOQL("create database eval(text,'&name');", statements);
    const std::unique_ptr<CZelDbObject> database(static_cast<CZelDbObject *>(statements.RBFirst()->RPData()));
    EXPECT_STREQ("create database eval(text,'&name');\n", CZelMallocText(database->RDOAsString()).get());
}
