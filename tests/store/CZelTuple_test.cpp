#include "store/CZelTuple.h"

#include <gtest/gtest.h>

#include "foundations/base/CZelTreeList.h"
#include "foundations/port/CZelErrorCapture.h"
#include "tests/store/Conditions.h"

using namespace conditions;

namespace {

std::string text(const CZelRecord &row) {
    std::string all;
    const CZelVBList *values = row.RRVbIterator();
    for (const CZelVarBind *pair = values->RVBLHead(); pair != nullptr; pair = values->RVBLGetNext(pair))
        all += (all.empty() ? "" : " ") + taken(pair->RVBVbAsString());
    return all;
}

std::string decoded(unsigned char *block, int length) {
    CZelRecord record;
    EXPECT_EQ(1, record.RRConsumeAndDecode(block, length));
    return text(record);
}

class TupleTest : public testing::Test {
protected:
    const CZelAtom m_a{"d_a"}, m_b{"d_b"}, m_sameA{"d_a"};
    std::unique_ptr<CZelRecord> m_rowA{record({{"x", 1}, {"l", list({7, 8})}})};
    std::unique_ptr<CZelRecord> m_rowB{record({{"x", 2}, {"name", "two"}})};
    const CZelErrorCapture m_reports;
};

TEST_F(TupleTest, ATableStandsOnceInTheOrderOfItsName) {
    CZelTuple tuple(&m_b, m_rowB.get());
    EXPECT_EQ(1, tuple.RTAddRecord(&m_a, m_rowA.get()));
    EXPECT_EQ(E_RCDuplicate, tuple.RTAddRecord(&m_sameA, m_rowB.get()));
    EXPECT_EQ(E_RCBadArgument, tuple.RTAddRecord(&m_a, nullptr));
    EXPECT_EQ(0U, CZelTuple(&m_a, nullptr).RTLength());
    EXPECT_EQ(m_rowA.get(), tuple.RTEntries()[0].m_record);
    EXPECT_EQ(m_rowB.get(), tuple.RTEntries()[1].m_record);
    EXPECT_EQ(m_rowA.get(), tuple.RTRecordOf(&m_sameA));
    EXPECT_EQ("x=1 l=[7,8] x=2 name=two", text(*std::unique_ptr<CZelRecord>(CZelTuple(tuple).RTRecord())));
}

TEST_F(TupleTest, MoreTablesThanUsualFitToo) {
    const CZelAtom names[] = {"t5", "t3", "t1", "t4", "t2", "t0", "t6"};
    CZelTuple tuple(&names[0], m_rowA.get());
    for (const CZelAtom &name : names)
        tuple.RTAddRecord(&name, m_rowB.get());
    const CZelTuple copy(tuple);
    ASSERT_EQ(7U, copy.RTLength());
    for (int i = 0; i < 7; ++i)
        EXPECT_EQ("t" + std::to_string(i), copy.RTEntries()[i].m_table->RAString());
    EXPECT_EQ(m_rowA.get(), copy.RTRecordOf("t5"));
}

TEST_F(TupleTest, FoundTellsOfTheTableNotOfTheValue) {
    CZelTuple tuple(&m_a, m_rowA.get());
    const CZelAtom x("x"), nothing("nothing"), l("l");
    const std::unique_ptr<CZelDoubleList> second(keys({1}));
    EXPECT_EQ(1, tuple.RTValueOf(&m_sameA, &x)->RAInt());
    EXPECT_EQ(8, tuple.RTValueOf("d_a", &l, second.get())->RAInt());
    EXPECT_EQ(8, tuple.RTValueOf(&m_a, &l, second.get())->RAInt());
    EXPECT_EQ(nullptr, tuple.RTValueOf("d_b", &x));
    EXPECT_EQ(nullptr, tuple.RTValueOf(static_cast<const char *>(nullptr), &x));
    const CZelAtom *value = &nothing;
    __boolean found = E_RBTrue;
    tuple.RTValueOf("d_b", &x, &value, &found);
    EXPECT_EQ(E_RBFalse, found);
    EXPECT_EQ(&nothing, value);
    tuple.RTValueOf("d_a", &nothing, &value, &found);
    EXPECT_EQ(E_RBTrue, found);
    EXPECT_EQ(nullptr, value);
}

TEST_F(TupleTest, TheBlockIsKeptUntilTheTupleChangesOrGivesItAway) {
    CZelTuple tuple(&m_a, m_rowA.get());
    EXPECT_EQ(0, tuple.ROMLength());
    const unsigned char *block = tuple.ROMEncode();
    EXPECT_EQ(block, tuple.ROMEncode());
    EXPECT_GT(tuple.ROMLength(), 0);
    EXPECT_EQ(0, CZelTuple(tuple).ROMLength());
    tuple.RTAddRecord(&m_b, m_rowB.get());
    int length = 0;
    unsigned char *whole = tuple.RRTakeROMP(length);
    EXPECT_EQ("x=1 l=[7,8] x=2 name=two", decoded(whole, length));
    EXPECT_EQ(0, tuple.ROMLength());
    EXPECT_EQ(1, tuple.ROMDecode(nullptr, 0));
}

TEST_F(TupleTest, SelectedColumnsComeUnderTheirLastName) {
    CZelTuple tuple(&m_a, m_rowA.get());
    tuple.RTAddRecord(&m_b, m_rowB.get());
    CZelDbEntity name("d", "b", "name"), first("d", "a", "l"), absent("d", "a", "y"), stranger("d", "c", "z");
    first.RDESetColSpec(keys({0}));
    CZelBag columns;
    for (CZelDbEntity *column : {&name, &first, &absent, &stranger})
        columns.RBAdd(static_cast<void *>(column));
    const std::unique_ptr<CZelRecord> selected(tuple.RTRecord(&columns));
    EXPECT_EQ("name=two 0=7", text(*selected));
    EXPECT_TRUE(m_reports.Holds(E_RCNotFound));
    EXPECT_EQ("z", m_reports.LastText());
    int length = 0;
    unsigned char *block = tuple.RRTakeROMP(length, &columns);
    EXPECT_EQ("name=two 0=7", decoded(block, length));
    CZelBag none;
    block = tuple.RRTakeROMP(length, &none);
    EXPECT_EQ("", decoded(block, length));
}

TEST_F(TupleTest, RecordsAreScannedOnceAndTakenOffTheList) {
    CZelTuple one(&m_a, m_rowA.get()), two(&m_a, m_rowA.get());
    two.RTAddRecord(&m_b, m_rowB.get());
    CZelTreeList records(E_RBFalse);
    one.RTScanRecords(&records);
    two.RTScanRecords(&records);
    ASSERT_EQ(2, records.RTLLength());
    const CZelDoubleList *nodes = records.RTLIterator();
    for (CZelListable *node = nodes->RDLHead(); node != nullptr; node = nodes->RDLGetNext(node))
        std::free(static_cast<CZelPointer *>(node)->RPData());
    one.RTEliminateRecordsFromList(&records);
    int left = 0;
    for (CZelListable *node = nodes->RDLHead(); node != nullptr; node = nodes->RDLGetNext(node))
        left += static_cast<CZelPointer *>(node)->RPData() != nullptr ? 1 : 0;
    EXPECT_EQ(1, left);
    one.RTEliminateRecordsFromList(nullptr);
    EXPECT_TRUE(m_reports.Holds(E_RCBadArgument));
}

}  // namespace
