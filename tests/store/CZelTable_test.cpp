#include "store/CZelTable.h"

#include <filesystem>
#include <fstream>

#include "foundations/base/CZelEnv.h"
#include "foundations/base/CZelSmartRecord.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/CZelTreeList.h"
#include "tests/store/TableTest.h"

namespace {

class TableLifeTest : public TableTest {
protected:
    std::string schemaOf(const char *name) {
        const std::unique_ptr<CZelRecord> schema(m_table->RTGetSchema());
        const CZelVarBind *member = schema->RRValueOf("Schema")->RASubVarBind(name);
        return member != nullptr ? taken(member->RVBValue()->RAStrRep()) : "none";
    }
};

TEST_F(TableLifeTest, TextReadsBackInNameOrderWithItsSystemColumns) {
    make({column("b", E_RDTText, NOT_NULL), column("a", E_RDTInt, KEY), column("n", E_RDTInt), counters({"n", "m"}),
          timestamps({"w"}), uniques({"b"})});
    EXPECT_EQ(
        "create table d.t (\na int  primary key  , \nb text  not null  , \nn int  , \n counter ( n , m )  , \n"
        " timestamp ( w ) \n); \n",
        taken(m_table->RDOAsString()));
    const std::unique_ptr<CZelTable> bare(parsed({counters({"n"})}));
    EXPECT_EQ("create table d.t (\n counter ( n ) \n); \n", taken(bare->RDOAsString()));
}

TEST_F(TableLifeTest, TheLastOfTwoColumnsOfOneNameStays) {
    make({column("a", E_RDTInt, UNIQUE), column("a", E_RDTText)});
    EXPECT_EQ("{DataType='text',NotNull='N',PrimaryKey='N',Indexed='N',Unique='N'}", schemaOf("a"));
}

TEST_F(TableLifeTest, ConstraintsStandAnywhereAndTheLaterOfAKindReplaces) {
    make({uniques({"a", "nowhere"}), counters({"n"}), column("a", E_RDTInt), keyOf({"k"}), column("k", E_RDTInt),
          column("n", E_RDTInt), counters({"a"})});
    EXPECT_EQ("{DataType='int',NotNull='N',PrimaryKey='N',Indexed='N',Unique='Y'}", schemaOf("a"));
    EXPECT_EQ("{DataType='int',NotNull='N',PrimaryKey='Y',Indexed='N',Unique='N'}", schemaOf("k"));
    EXPECT_EQ(1U, m_table->RTCounters()->RAVSize());
    EXPECT_EQ(1, m_table->RTUniques()->RTLLength());
    EXPECT_EQ(1, m_table->RTIndexedColumns()->RTLLength());  // k; a is a counter
}

TEST_F(TableLifeTest, SchemaTellsTypeDefaultAndCreatedIndex) {
    CZelColDef *column = new CZelColDef(ZelStrDup("c"), E_RDTInt, nullptr, -1);
    const CZelAtom five(5);
    column->RCDSetDefault(&five);
    make({column, new CZelColDef(ZelStrDup("l"), E_RDTList, new CZelColDef(nullptr, E_RDTInt, nullptr, -1), -1)});
    addIndex(*m_table, "c");
    EXPECT_EQ("{DataType='int',Default=5,NotNull='N',PrimaryKey='N',Indexed='Y',Unique='N'}", schemaOf("c"));
    EXPECT_EQ("{DataType='list type int',NotNull='N',PrimaryKey='N',Indexed='N',Unique='N'}", schemaOf("l"));
}

TEST_F(TableLifeTest, ACopyHasTheDefinitionAndNothingElse) {
    make({column("a", E_RDTInt, UNIQUE), column("k", E_RDTInt, KEY), column("n", E_RDTInt), counters({"n"})});
    EventLog log;
    m_table->RTAddActive(&log, 1);
    addIndex(*m_table, "a");
    insert({{"a", 1}, {"k", 1}});
    const CZelAtom elsewhere("e");
    const std::unique_ptr<CZelTable> copy(new CZelTable(m_table, &elsewhere, nullptr));
    EXPECT_STREQ("e_t", copy->RTIdentifier()->RAString());
    EXPECT_EQ(nullptr, copy->RTGetActive());
    EXPECT_EQ(0, copy->RTTotalRecordCount());
    EXPECT_EQ(1, copy->RTIndices()->RTLLength());
    EXPECT_EQ(copy->RTColumns()->RTLData("a"), copy->RTUniques()->RTLData("a"));
    std::string expected = taken(m_table->RDOAsString());
    expected.replace(expected.find("d.t"), 3, "e.t");
    EXPECT_EQ(expected, taken(copy->RDOAsString()));
    m_table->RTAddActive(nullptr, 0);
}

TEST_F(TableLifeTest, ATableThatIsNotLiveTakesNoRows) {
    CZelErrorCapture reports;
    m_table = parsed({column("a", E_RDTInt)}, "u");
    const std::unique_ptr<CZelTable> owner(m_table);
    EXPECT_EQ(E_RCBadArgument, insert({{"a", 1}}));
    EXPECT_EQ("CZelTable::RTAddRow: the table is not live", reports.LastText());
    EXPECT_EQ(E_RCBadArgument, update({{"a", 1}}, nullptr));
    EXPECT_EQ(E_RCBadArgument, erase(nullptr));
    EXPECT_EQ(0, m_table->RTTotalRecordCount());
    EXPECT_TRUE(rows().empty());
    CZelStore empty;
    EXPECT_EQ(E_RCNotFound, m_table->RDOInitialise(&empty));
    EXPECT_EQ(E_RCBadArgument, insert({{"a", 1}}));
}

TEST_F(TableLifeTest, EventsOfLifeCarryTheArgument) {
    EventLog log;
    m_table = parsed({column("a", E_RDTInt)});
    m_table->RTAddActive(&log, 7);
    m_store.RSAddTbl(m_table, E_RBTrue);
    m_table->RDOInitialise(&m_store);
    m_store.RSDropDatabase(m_table->RTDatabase());
    EXPECT_EQ((Texts{"initialised 7", "destroyed 7"}), log.events);
}

TEST_F(TableLifeTest, SharedRowsAreReleasedOnceWhenTheTableGoes) {
    make({column("a", E_RDTInt, KEY)});
    auto *shared = new CZelSmartRecord(*std::unique_ptr<CZelRecord>(record({{"a", 1}})));
    EXPECT_EQ(1, m_table->RTAddRow(shared, E_RBFalse));
    EXPECT_EQ(2, shared->RSRUsers());
    EXPECT_EQ(E_RCKeyExists, insert({{"a", 1}}));
    EXPECT_EQ(1, erase(where("a", 1)));
    EXPECT_EQ(1, shared->RSRUsers());
    EXPECT_EQ(1, m_table->RTAddRow(shared, E_RBFalse));
    EXPECT_EQ(1, m_table->RDOInitialise(&m_store));  // a second life starts without rows
    EXPECT_EQ(1, shared->RSRUsers());
    EXPECT_EQ(1, m_table->RTAddRow(shared, E_RBFalse));
    m_store.RSDropDatabase(m_table->RTDatabase());
    EXPECT_EQ(1, shared->RSRUsers());
    shared->RSRDeleteUser();
}

}  // namespace
