#include "foundations/base/CZelRecord.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "base/RandomValues.h"
#include "foundations/base/CZelPointer.h"
#include "foundations/base/CZelRecordVector.h"
#include "foundations/base/CZelSmartRecord.h"
#include "foundations/base/CZelUChar.h"
#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"

namespace {

struct Packed {
    explicit Packed(const CZelBaseRecord &record) { record.ROMEncode(&m_data, &m_length); }
    Packed(const Packed &) = delete;
    ~Packed() { std::free(m_data); }

    unsigned char *m_data = nullptr;
    int m_length = 0;
};

class DeathWatch : public CZelRecord {
public:
    explicit DeathWatch(bool *dead) : m_dead(dead) {}
    ~DeathWatch() override { *m_dead = true; }

private:
    bool *m_dead;
};

std::string listed(const CZelRecordVector &vector, CZelRecord *first) {
    std::string text;
    for (int i = 0; i < vector.RRVSize(); ++i) {
        const CZelRecord *record = vector.RRVGetValue(i);
        text += record == nullptr ? "." : std::to_string(record - first);
    }
    return text;
}

}  // namespace

TEST(Record, RandomRecordsPackAndUnpack) {
    RandomValues values;
    for (int i = 0; i < 2000; ++i) {
        CZelRecord record(values.Members(3));
        Packed packed(record);
        CZelRecord read;
        read.RRAddOrSetValue("former", 1);
        ASSERT_EQ(E_RCOk, read.ROMDecode(packed.m_data, packed.m_length));
        EXPECT_TRUE(IsSame(*record.RRVbIterator(), *read.RRVbIterator()));
    }
}

TEST(Record, DamageLeavesItEmptyAndIsReported) {
    CZelRecord record;
    record.RRAddOrSetValue("a", 1);
    Packed packed(record);
    packed.m_data[packed.m_length - 1] ^= 1;
    CZelErrorCapture reports;
    EXPECT_EQ(E_RCBadValue, record.ROMDecode(packed.m_data, packed.m_length));
    EXPECT_EQ(0, record.RRVbIterator()->RVBLLength());
    EXPECT_TRUE(reports.Holds(E_RCBadValue));
    record.RRAddOrSetValue("a", 1);
    EXPECT_EQ(E_RCBadArgument, record.ROMDecode(nullptr, 5));
    EXPECT_EQ(1, record.RRVbIterator()->RVBLLength());
    record.ROMEncode(nullptr, nullptr);
    EXPECT_EQ(E_RCNull, reports.LastCode());
}

TEST(Record, ConsumesTheAtomOfAPointer) {
    CZelRecord record, read;
    record.RRAddOrSetValue("a", 1);
    CZelPointer pointer(nullptr);
    EXPECT_EQ(E_RCOk, read.RRConsumeAndDecode(pointer));
    CZelAtom text("no data");
    pointer.RPSetData(&text);
    EXPECT_EQ(E_RCBadType, read.RRConsumeAndDecode(pointer));
    EXPECT_EQ(&text, pointer.RPData());

    Packed packed(record);
    pointer.RPSetData(new CZelAtom(static_cast<const unsigned char *>(packed.m_data), packed.m_length));
    EXPECT_EQ(E_RCOk, read.RRConsumeAndDecode(pointer));
    EXPECT_EQ(nullptr, pointer.RPData());
    EXPECT_EQ(1, read.RRValueOf("a")->RAInt());

    CZelAtom *bare = new CZelAtom(static_cast<const unsigned char *>(packed.m_data), packed.m_length);
    std::free(bare->RAUChar()->RUCTakeData(nullptr));
    pointer.RPSetData(bare);
    EXPECT_EQ(E_RCOk, read.RRConsumeAndDecode(pointer));
    EXPECT_EQ(nullptr, pointer.RPData());
}

TEST(Record, DiesWhenTheDatabaseDropsIt) {
    bool dead = false;
    CZelRecord *row = new DeathWatch(&dead);
    row->UsedByDatabase();
    row->DroppedFromDatabase();
    EXPECT_TRUE(dead);
}

TEST(SmartRecord, LivesAsLongAsItHasUsers) {
    CZelSmartRecord *row = new CZelSmartRecord;
    row->RRAddOrSetValue("b", 2);
    row->RRAddOrSetValue("a", 1);
    row->UsedByDatabase();
    EXPECT_EQ(2, row->RSRUsers());
    row->RSRDeleteUser();
    row->RSRSortRecord();
    EXPECT_STREQ("a", row->RRVbIterator()->RVBLHead()->RVBName().RAString());

    CZelListable *copy = row->RLTargetDeepCopy(row);
    EXPECT_EQ(nullptr, dynamic_cast<CZelSmartRecord *>(copy));
    EXPECT_EQ(2, static_cast<CZelRecord *>(copy)->RRValueOf("b")->RAInt());
    delete copy;
    row->DroppedFromDatabase();
}

TEST(SmartRecord, IsCountedAndLockedAcrossThreads) {
    CZelSmartRecord *row = new CZelSmartRecord;
    row->RRAddOrSetValue("n", 0);
    auto work = [row] {
        for (int i = 0; i < 5000; ++i) {
            row->RSRAddUser();
            row->BeginWrite();
            row->RRAddOrSetValue("n", row->RRValueOf("n")->RAInt() + 1);
            row->EndWrite();
            row->RSRDeleteUser();
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(10000, row->RRValueOf("n")->RAInt());
    EXPECT_EQ(1, row->RSRUsers());
    row->RSRDeleteUser();
}

TEST(RecordVector, MovesAndForgetsEntries) {
    CZelRecord records[6];
    CZelRecordVector vector;
    EXPECT_EQ(nullptr, vector.RRVGetLast());
    vector.RRVRemoveLast();
    vector.RRVSetLast(records);
    vector.RRVSetValue(-1, records);
    EXPECT_EQ(0, vector.RRVSize());

    vector.RRVSetValue(5, &records[5]);
    EXPECT_EQ(".....5", listed(vector, records));
    EXPECT_EQ(10, vector.RRVCapacity());
    vector.RRVReset();
    for (int i = 0; i < 4; ++i)
        vector.RRVAddToBeginning(&records[i]);
    EXPECT_EQ("3210", listed(vector, records));
    vector.RRVRemovePos(0);
    vector.RRVRemovePos(7);
    EXPECT_EQ("210", listed(vector, records));
    vector.RRVRemoveLast();
    vector.RRVSetLast(&records[4]);
    vector.RRVSetValue(3, &records[3]);
    EXPECT_EQ("24.3", listed(vector, records));
    EXPECT_EQ(&records[3], vector.RRVGetValueFromEnd(0));
    EXPECT_EQ(nullptr, vector.RRVGetValueFromEnd(4));
    for (int i = 0; i < 17; ++i)
        vector.RRVAddToEnd(&records[5]);
    EXPECT_EQ(40, vector.RRVCapacity());
    EXPECT_EQ("24.3" + std::string(17, '5'), listed(CZelRecordVector(vector), records));
}
