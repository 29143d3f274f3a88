#include <climits>
#include <ctime>

#include "tests/store/TableTest.h"

namespace {

class TableRowsTest : public TableTest {};

TEST_F(TableRowsTest, InsertCorrectsTheRecordToItsColumns) {
    CZelColDef *number = column("n", E_RDTInt, NOT_NULL);
    const CZelAtom five(5);
    number->RCDSetDefault(&five);
    make({column("a", E_RDTInt), number, column("t", E_RDTText, PLAIN, 3)});
    EXPECT_EQ(1, insert({{"t", "abcd"}, {"a", "12"}}));
    EXPECT_EQ(1, insert({{"t", "abc"}}));
    EXPECT_EQ((Texts{"t=abc a=12 n=5", "t=abc n=5"}), rows());
}

TEST_F(TableRowsTest, ARejectedValueIsToldWordForWord) {
    CZelErrorCapture reports;
    make({column("a", E_RDTInt, NOT_NULL), column("b", E_RDTText)});
    EXPECT_EQ(E_RCBadColumnValue, insert({{"a", "x"}}));
    EXPECT_TRUE(
        reports.Holds(E_RCBadColumnValue,
                      "The operation is attempting to set column a which is of type int not null  with the value "
                      "x, which is of type text for the table d.t"));
    EXPECT_EQ(E_RCBadColumnValue, insert({{"b", "x"}}));
    EXPECT_TRUE(
        reports.Holds(E_RCBadColumnValue,
                      "The operation is attempting to set column a which is of type int not null  with the value "
                      "<NULL>, which is of type undefined for the table d.t"));
    EXPECT_EQ(E_RCBadColumnValue, insert({{"a", 1}, {"b", 2}}));
    EXPECT_TRUE(
        reports.Holds(E_RCBadColumnValue,
                      "The operation is attempting to set column b which is of type text with the value 2, which "
                      "is of type int for the table d.t"));
    EXPECT_TRUE(rows().empty());
}

TEST_F(TableRowsTest, ARejectedListTellsWhichElementsAreBad) {
    CZelErrorCapture reports;
    make({new CZelColDef(ZelStrDup("l"), E_RDTList, new CZelColDef(nullptr, E_RDTInt, nullptr, -1), -1)});
    EXPECT_EQ(E_RCBadColumnValue, insert({{"l", list({1, "x", 2})}}));
    EXPECT_TRUE(
        reports.Holds(E_RCBadColumnValue,
                      "The operation is attempting to set column l which is of type list which has a subtype of "
                      "int with the value [1,'x',2], which is of type list containing atoms of type int , text "
                      "BAD  , int for the table d.t"));
    EXPECT_EQ(1, insert({{"l", list({1, "2"})}}));
    EXPECT_EQ(Texts{"l=[1,2]"}, rows());
}

TEST_F(TableRowsTest, KeysRefuseARowAndLeaveItToTheCaller) {
    CZelErrorCapture reports;
    make({column("k", E_RDTInt, KEY), column("u", E_RDTText), uniques({"u"})});
    EXPECT_EQ(1, insert({{"k", 1}, {"u", "x"}}));
    EXPECT_EQ(E_RCKeyExists, insert({{"k", 1}, {"u", "y"}}));
    EXPECT_EQ(E_RCKeyExists, insert({{"k", 2}, {"u", "x"}}));
    EXPECT_EQ(1, insert({{"k", 2}}));
    EXPECT_EQ(1, insert({{"k", 3}}));  // without a value there is nothing to be unique
    EXPECT_EQ(0U, reports.Count());
    EXPECT_EQ((Texts{"k=1 u=x", "k=2", "k=3"}), rows());
    EXPECT_EQ(Texts{"k=2"}, select(where("k", 2)));
}

TEST_F(TableRowsTest, AKeyOfTheTableNeedsItsValues) {
    CZelErrorCapture reports;
    make({column("a", E_RDTInt), column("b", E_RDTInt), keyOf({"b", "a"})});
    EXPECT_EQ(E_RCKeyMissing, insert({{"a", 1}}));
    EXPECT_TRUE(reports.Holds(E_RCKeyMissing, "CZelTable::RTAddToIndexBags: no value for the key column b"));
    EXPECT_EQ(1, insert({{"a", 1}, {"b", 1}}));
    EXPECT_EQ(1, insert({{"a", 1}, {"b", 2}}));
    EXPECT_EQ(E_RCKeyExists, insert({{"b", 2}, {"a", 1}}));
    EXPECT_EQ(2, m_table->RTTotalRecordCount());
}

TEST_F(TableRowsTest, ASingleKeyWithoutAValueStandsOnce) {
    make({column("a", E_RDTInt), keyOf({"a"})});
    EXPECT_EQ(1, insert({{"a", CZelAtom()}}));
    EXPECT_EQ(E_RCKeyExists, insert({{"a", CZelAtom()}}));
}

TEST_F(TableRowsTest, DuplicateRaisesCountersAndSetsTimestampsOfTheFirstRow) {
    make({column("a", E_RDTInt), column("i", E_RDTInt), column("f", E_RDTFloat), column("x", E_RDTText),
          column("w", E_RDTLong), column("never", E_RDTLong), column("big", E_RDTLong64), uniques({"i"}),
          counters({"i", "f", "x", "big", "absent"}), timestamps({"w", "never", "x"})});
    const long before = static_cast<long>(std::time(nullptr));
    for (int i : {INT_MAX, 4})
        EXPECT_EQ(1, insert({{"a", 1}, {"i", i}, {"f", 1.5F}, {"x", "7"}, {"w", 0L}, {"big", LLONG_MAX}}));
    EXPECT_EQ(E_RCDuplicate, insertUnique({{"a", 1}}, {"a", "x"}));
    const std::unique_ptr<CZelBag> all(m_table->RTReturnRows(nullptr));
    const CZelRecord *hit = contents<CZelRecord>(all.get())[0];
    EXPECT_EQ(INT_MIN, hit->RRValueOf("i")->RAInt());
    EXPECT_EQ(2.5F, hit->RRValueOf("f")->RAFloat());
    EXPECT_STREQ("7", hit->RRValueOf("x")->RAString());
    EXPECT_EQ(LLONG_MIN, hit->RRValueOf("big")->RALongLong());
    EXPECT_GE(hit->RRValueOf("w")->RALong(), before);
    EXPECT_EQ(nullptr, hit->RRValueOf("never"));
    EXPECT_EQ(4, contents<CZelRecord>(all.get())[1]->RRValueOf("i")->RAInt());
}

TEST_F(TableRowsTest, UniqueOfAnInsertAsksOnlyForWhatTheRowHas) {
    make({column("a", E_RDTInt), column("b", E_RDTInt), column("n", E_RDTInt), counters({"n"})});
    EXPECT_EQ(1, insert({{"a", 1}, {"b", 2}, {"n", 0}}));
    EXPECT_EQ(1, insertUnique({{"a", 1}, {"b", 3}}, {"a", "b"}));
    EXPECT_EQ(E_RCDuplicate, insertUnique({{"a", 1}}, {"a", "b"}));
    EXPECT_EQ(1, insertUnique({{"n", 9}}, {"a", "b"}));
    EXPECT_EQ((Texts{"a=1 b=2 n=1", "a=1 b=3", "n=9"}), rows());
}

TEST_F(TableRowsTest, DeleteTakesRowsOutOfListAndTrees) {
    make({column("k", E_RDTInt, KEY), column("a", E_RDTInt)});
    addIndex(*m_table, "a");
    for (int k = 0; k < 6; ++k)
        insert({{"k", k}, {"a", k % 2}});
    EXPECT_EQ(1, erase(where("a", 1)));
    EXPECT_EQ((Texts{"k=0 a=0", "k=2 a=0", "k=4 a=0"}), rows());
    EXPECT_EQ(E_RCNotFound, erase(where("a", 1)));
    EXPECT_EQ(1, insert({{"k", 1}, {"a", 1}}));
    EXPECT_EQ(Texts{"k=1 a=1"}, select(where("a", 1)));
    EXPECT_EQ(1, erase(nullptr));
    EXPECT_EQ(0, m_table->RTTotalRecordCount());
}

TEST_F(TableRowsTest, ACounterNeverKeepsAKey) {
    make({column("a", E_RDTInt, KEY), counters({"a"})});
    EXPECT_EQ(1, insert({{"a", 1}}));
    EXPECT_EQ(1, insert({{"a", 1}}));
    EXPECT_EQ(2U, select(where("a", 1)).size());
}

}  // namespace
