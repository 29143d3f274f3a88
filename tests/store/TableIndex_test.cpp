#include "foundations/base/CZelTreeList.h"
#include "tests/store/TableTest.h"

namespace {

class TableIndexTest : public TableTest {
protected:
    int create(const char *name, std::initializer_list<const char *> columns) {
        const CZelIndex index(ZelStrDup(name), target(), names(columns));
        return m_table->RTAddIndex(&index);
    }
    int drop(const char *name) {
        CZelDropIndex statement(ZelStrDup(name));
        return m_table->RTDropIndex(&statement);
    }
    bool isIndexed(const char *column) { return m_table->RTIndexedColumns()->RTLGet(column) != nullptr; }
    CZelErrorCapture m_reports;
};

TEST_F(TableIndexTest, AnIndexHoldsTheRowsThatWereThereAndThoseThatCome) {
    make({column("a", E_RDTInt), column("b", E_RDTText)});
    insert({{"a", 2}, {"b", "x"}});
    insert({{"b", "y"}});
    EXPECT_EQ(1, create("i", {"a", "b"}));
    insert({{"a", 1}, {"b", "x"}});
    EXPECT_EQ((Texts{"a=1 b=x", "a=2 b=x"}), select(leaf(col("a"), E_ROLess, val(9))));  // in tree order
    EXPECT_EQ((Texts{"a=2 b=x", "a=1 b=x"}), select(where("b", "x")));
    EXPECT_EQ(Texts{"b=y"}, select(where("a", CZelAtom())));
    EXPECT_EQ(1, drop("i"));
    EXPECT_FALSE(isIndexed("a"));
    EXPECT_EQ(1, erase(where("a", 2)));
    EXPECT_EQ(1, create("i", {"a"}));
    EXPECT_EQ(Texts{"a=1 b=x"}, select(leaf(col("a"), E_ROLess, val(9))));
    EXPECT_EQ(0U, m_reports.Count());
}

TEST_F(TableIndexTest, AColumnKeepsItsTreeUntilTheLastIndexGoes) {
    make({column("a", E_RDTInt), column("k", E_RDTInt, KEY)});
    insert({{"a", 1}, {"k", 1}});
    EXPECT_EQ(1, create("i", {"a", "k"}));
    EXPECT_EQ(1, create("j", {"a", "a"}));
    EXPECT_EQ(1, drop("j"));
    EXPECT_TRUE(isIndexed("a"));
    EXPECT_EQ(Texts{"a=1 k=1"}, select(where("a", 1)));
    EXPECT_EQ(1, drop("i"));
    EXPECT_FALSE(isIndexed("a"));
    EXPECT_TRUE(isIndexed("k"));
    EXPECT_EQ(E_RCKeyExists, insert({{"a", 1}, {"k", 1}}));
    EXPECT_EQ(0, m_table->RTIndices()->RTLLength());
    EXPECT_EQ(1, drop("i"));
    EXPECT_EQ(0U, m_reports.Count());
}

TEST_F(TableIndexTest, ABadIndexLeavesNothingBehind) {
    make({column("a", E_RDTInt)});
    EXPECT_EQ(E_RCNoText, create("i", {"a", "nowhere"}));
    EXPECT_FALSE(isIndexed("a"));
    EXPECT_EQ(1, create("i", {"a"}));
    EXPECT_EQ(E_RCNoText, create("i", {"a"}));
    EXPECT_TRUE(m_reports.Holds(E_RCBadArgument));
    EXPECT_EQ(1, drop("i"));
    EXPECT_FALSE(isIndexed("a"));
    EXPECT_EQ(1, m_table->RTAddIndex(nullptr));
}

TEST_F(TableIndexTest, AnIndexOnACounterIsCountedOnly) {
    make({column("n", E_RDTInt), counters({"n"}), column("a", E_RDTInt)});
    insert({{"n", 1}, {"a", 1}});
    EXPECT_EQ(1, create("i", {"n"}));
    EXPECT_FALSE(isIndexed("n"));
    EXPECT_EQ(E_RCDuplicate, insertUnique({{"a", 1}}, {"a"}));
    EXPECT_EQ(Texts{"n=2 a=1"}, select(where("n", 2)));
    EXPECT_EQ(1, drop("i"));
    EXPECT_EQ(0U, m_reports.Count());
}

TEST_F(TableIndexTest, AnIndexedColumnThatNoTreeCanHoldAnswersNothing) {
    make({new CZelColDef(ZelStrDup("l"), E_RDTList, nullptr, -1), column("a", E_RDTInt, UNIQUE)});
    insert({{"l", list({1})}, {"a", 1}});
    EXPECT_EQ(1, create("i", {"l", "a"}));
    EXPECT_TRUE(select(leaf(col("l"), E_RONotEqual, val(5))).empty());
    EXPECT_EQ(E_RCKeyExists, insert({{"l", list({2})}, {"a", 1}}));
    EXPECT_EQ(1, erase(nullptr));
    EXPECT_EQ(0U, m_reports.Count());
}

}  // namespace
