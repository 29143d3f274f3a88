#include "storemgr/CZelStoreMgr.h"

#include "clause/CZelCmdCmplr.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelSmartRecord.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelDelete.h"
#include "oql/CZelExpr.h"
#include "oql/CZelQuery.h"
#include "oql/CZelSchema.h"
#include "store/CZelBoolean.h"
#include "store/CZelDbCallback.h"
#include "store/CZelFilter.h"
#include "store/CZelStore.h"
#include "store/CZelTblCallback.h"
#include "tests/support/OqlFixture.h"

namespace {

using Rows = std::vector<std::string>;

class StoreMgrTest : public OqlFixture {
protected:
    void SetUp() override {
        run("create database d; create table d.t (name text not null primary key, n int, tag text);");
    }

    static CZelSmartRecord *change(int action, const char *name, int n) {
        auto *record = new CZelSmartRecord();
        record->RRAddOrSetValue("action", action);
        record->RRAddValue("name", name);
        record->RRAddOrSetValue("n", n);
        return record;
    }

    int notify(CZelSmartRecord *record, EZelStoreErrorStatus *status = nullptr) {
        reports.Clear();
        CZelAtomVector keys(1);
        keys.RAVAddToEnd(new CZelAtom("name"));
        const CZelDbEntity table("d", "t", static_cast<const char *>(nullptr));
        return manager.RSMNotifyRecordToDb(record, &table, "action", keys, status);
    }
};

// Refuses what its switch says.
class Guard : public CZelDbCallback {
public:
    bool refuseAdd = false;
    bool refuseDrop = false;
    int live = 0;

    __boolean RDCPreAddTable(CZelDatabase *, CZelTable *) override { return ZelBool(!refuseAdd); }
    void RDCPostAddTable(CZelDatabase *, CZelTable *) override { ++live; }
    __boolean RDCPreDropTable(CZelDatabase *, CZelTable *) override { return ZelBool(!refuseDrop); }
};

}  // namespace

TEST_F(StoreMgrTest, ActionsOfATextRunBeforeItsQueriesAndEachInTextOrder) {
    const Rows expected = {"name=a n=1", "name=b n=2"};
    EXPECT_EQ(expected, rows("select name, n from d.t; insert into d.t (name, n) values ('a', 1);"
                             "insert into d.t (name, n) values ('b', 2);"));
}

TEST_F(StoreMgrTest, ATextOfActionsAloneLeavesNoResults) {
    auto *marker = reinterpret_cast<CZelBag *>(this);
    EZelStoreErrorStatus status = E_RSEUpdateFailed;
    EXPECT_EQ(1, manager.RSMProcessOQL("insert into d.t (name) values ('a');", &marker, &status, nullptr));
    EXPECT_EQ(nullptr, marker);
    EXPECT_EQ(E_RSEOk, status);
}

TEST_F(StoreMgrTest, ASyntaxErrorGivesOneReportAndLeavesTheStatusAlone) {
    EZelStoreErrorStatus status = E_RSENoIndex;
    CZelBag *results = nullptr;
    EXPECT_EQ(1, manager.RSMProcessOQL("select from d.t;\n", &results, &status, nullptr));
    EXPECT_EQ(E_RSENoIndex, status);
    EXPECT_EQ(nullptr, results);
    EXPECT_TRUE(reports.Holds(E_RCSyntax, "\nSyntax error at line 1 of: select from d.t;\n"));
    EXPECT_EQ(1U, reports.Count());
}

TEST_F(StoreMgrTest, RowsComeAsPackedBlocksThatReadBack) {
    run("insert into d.t (name, n) values ('a', 7);");
    CZelBag *results = nullptr;
    manager.RSMProcessOQL("select * from d.t;", &results, nullptr, nullptr);
    const CZelBagGuard<CZelAtom> owner(results);
    ASSERT_EQ(1, results->RBLength());
    unsigned char *data = nullptr;
    int length = 0;
    static_cast<CZelAtom *>(results->RBFirst()->RPData())->RAUChar(&data, &length);
    CZelRecord record;
    EXPECT_EQ(1, record.ROMDecode(data, length));
    EXPECT_EQ("name=a n=7", textOf(record));
}

TEST_F(StoreMgrTest, FailuresCarryTheSentenceOfTheirStatus) {
    EXPECT_EQ(E_RSENoTable, run("delete from d.nothing;"));
    EXPECT_TRUE(reports.Holds(E_RCNoText,
                              "The database action \ndelete from d.nothing; caused the error because  the table you "
                              "attempted to access didn't exist."));
    EXPECT_EQ(E_RSENoIndex, run("drop index nothing;"));
    EXPECT_TRUE(reports.Holds(E_RCNoText, "The database action \ndrop index nothing ;\n failed."));
    std::string text;
    auto unknown = static_cast<EZelStoreErrorStatus>(99);
    CZelStoreMgr::RSMBuildErrorString(nullptr, -1, &unknown, text);
    EXPECT_EQ("The NULL database action  caused the error because  of an unknown problem.", text);
}

TEST_F(StoreMgrTest, WhatIsThereAlreadyOrNotThereAnyMoreIsNoFailure) {
    EXPECT_EQ(E_RSECreateTable, run("create table d.t (x int);"));
    EXPECT_FALSE(reports.Holds(E_RCBadArgument));
    EXPECT_EQ(E_RSENoTable, run("drop table d.nothing;"));
    EXPECT_EQ(E_RSECreateDatabase, run("create database d;"));
    EXPECT_EQ(Rows{"name=a"}, rows("insert into d.t (name) values ('a'); select * from d.t;"));
}

TEST_F(StoreMgrTest, AStatementCompiledOnceRunsManyTimes) {
    CZelBag statements;
    EXPECT_TRUE(CZelCmdCmplr::RCCPrecompileOQL("select n from d.t where name = 'x';", statements));
    const CZelBagGuard<CZelDbObject> owner(new CZelBag(statements));
    auto *query = static_cast<CZelQuery *>(static_cast<CZelDbObject *>(statements.RBFirst()->RPData()));
    run("insert into d.t (name, n) values ('a', 1); insert into d.t (name, n) values ('b', 2);");
    for (const char *key : {"a", "b", "c"}) {
        const CZelAtom atom(key);
        query->RQFilter()->RFKernel()->RBRight()->RESetHeadAtomVal(&atom);
        CZelBag *results = nullptr;
        manager.RSMProcessPrecompiled(&statements, &results, nullptr, nullptr, E_RBTrue);
        const CZelBagGuard<CZelRecord> rowsOwner(results);
        EXPECT_EQ(key[0] == 'c' ? 0 : 1, results->RBLength());
    }
}

TEST_F(StoreMgrTest, ChangeRecordsInsertUpdateAndDelete) {
    EXPECT_EQ(1, notify(change(0, "a", 1)));
    EXPECT_EQ(1, notify(change(1, "a", 2)));
    EXPECT_EQ(1, notify(change(1, "b", 3)));
    EXPECT_EQ((Rows{"action=1 name=a n=2", "action=1 name=b n=3"}), rows("select * from d.t;"));
    EXPECT_EQ(1, notify(change(2, "a", 0)));
    EXPECT_EQ(Rows{"action=1 name=b n=3"}, rows("select * from d.t;"));
    CZelSmartRecord *wrong = change(7, "a", 0);
    EXPECT_EQ(1, notify(wrong));
    EXPECT_TRUE(reports.Holds(E_RCBadType, "7"));
    EXPECT_TRUE(reports.Holds(E_RCBadValue, "Undefined action field -> NOP"));
    wrong->RSRDeleteUser();
}

TEST_F(StoreMgrTest, AnUpdateOrDeleteByAKeyThatTheRecordLacksTouchesNothing) {
    run("insert into d.t (name, n) values ('a', 1);");
    CZelRecord values;
    values.RRAddOrSetValue("n", 9);
    CZelDbEntity table("d", "t", static_cast<const char *>(nullptr));
    EXPECT_EQ(1, manager.RSMUpdate(&values, "name", &table, nullptr));
    EXPECT_EQ(1, manager.RSMDelete(&values, "name", &table, nullptr));
    EXPECT_EQ(Rows{"name=a n=1"}, rows("select * from d.t;"));
}

TEST_F(StoreMgrTest, SimpleFiltersOverSeveralColumnsNeedAllOfThem) {
    CZelRecord values;
    values.RRAddValue("name", "b");
    values.RRAddOrSetValue("n", 2);
    values.RRAddValue("tag", "x");
    CZelAtomVector columns(4);
    for (const char *name : {"name", "absent", "n", "tag"})
        columns.RAVAddToEnd(new CZelAtom(name));
    CZelFilter *filter = CZelStoreMgr::RSMMakeSimpleFilter(columns, &values, E_ROEqual);
    EXPECT_EQ(E_RBTrue, filter->RFFilterRecord(&values));
    values.RRAddOrSetValue("n", 3);
    EXPECT_EQ(E_RBFalse, filter->RFFilterRecord(&values));
    delete filter;
}

TEST_F(StoreMgrTest, EntitiesExistByDatabaseAndTableWhateverTheColumn) {
    const char *none = nullptr;
    const auto exists = [this](const char *database, const char *table, const char *column) {
        CZelDbEntity entity(database, table, column);
        return manager.RSMDbEntityExists(&entity);
    };
    EXPECT_EQ(E_RSENoMatch, manager.RSMDbEntityExists(nullptr));
    EXPECT_EQ(E_RSENoMatch, exists(none, "t", none));
    EXPECT_EQ(E_RSENoDatabase, exists("x", "t", none));
    EXPECT_EQ(E_RSENoTable, exists("d", "x", none));
    EXPECT_EQ(E_RSEOk, exists("d", none, none));
    EXPECT_EQ(E_RSEOk, exists("d", "t", "nocolumn"));
}

TEST_F(StoreMgrTest, ACallbackKeepsTablesOutAndIn) {
    Guard guard;
    CZelDbEntity database("d", static_cast<const char *>(nullptr), static_cast<const char *>(nullptr));
    EXPECT_EQ(E_RSEOk, manager.RSMAddDbCallback(&database, &guard));
    guard.refuseAdd = true;
    EXPECT_EQ(E_RSECreateTable, run("create table d.u (x int);"));
    EXPECT_EQ(0, guard.live);
    guard.refuseAdd = false;
    guard.refuseDrop = true;
    run("create table d.u (x int); drop table d.t;");
    EXPECT_EQ(1, guard.live);
    EXPECT_EQ(Rows{"tables=['t','u']"}, rows("show tables from d;"));
    Guard second;
    manager.RSMAddDbCallback(&database, &second);
    EXPECT_TRUE(reports.Holds(E_RCBadState, "Can not overriden default callback"));
    guard.refuseDrop = false;
    run("drop database d;");  // the callbacks die before the store
}

TEST_F(StoreMgrTest, CopiesHaveTheDefinitionAndNoRows) {
    run("insert into d.t (name, n) values ('a', 1); create index i on d.t (n);");
    char from[] = "d";
    char to[] = "e";
    EXPECT_EQ(1, manager.RSMCopyDatabase(from, to));
    EXPECT_EQ(E_RSEOk, manager.RSMCopyTable("d", "t", "u", nullptr, 0));
    EXPECT_TRUE(rows("select * from e.t;").empty());
    EXPECT_EQ(E_RSEOk, run("insert into d.u (name, n) values ('a', 1);"));
    EXPECT_EQ(E_RSEDuplicateKey, run("insert into d.u (name, n) values ('a', 1);"));
    EXPECT_EQ(E_RSENoTable, manager.RSMCopyTable("d", "x", "y", nullptr, 0));
    EXPECT_EQ(E_RCDuplicate, manager.RSMCopyDatabase(from, to));
}

TEST_F(StoreMgrTest, RowsOfOneOrSeveralTablesGoIntoATable) {
    run("create table d.u (name text); create table d.v (one text, two text);");
    run("insert into d.t (name) values ('a'); select name into d.u from d.t;");
    EXPECT_EQ(Rows{"name=a"}, rows("select * from d.u;"));
    run("select d.t.name, d.u.name into d.v from d.t, d.u where d.t.name = d.u.name;");
    EXPECT_EQ(Rows{"one=a two=a"}, rows("select * from d.v;"));
    EXPECT_EQ(E_RSENoTable, run("select * into d.nowhere from d.t;"));
}
