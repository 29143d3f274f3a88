// Records through the keys of a name.
#include <gtest/gtest.h>

#include "foundations/base/CZelRecord.h"
#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "support/ExprBuild.h"

namespace {

class RecordColumnsTest : public testing::Test {
protected:
    RecordColumnsTest() {
        const CZelAtom value =
            listOf({CZelAtom(1), objectOf({{"m", listOf({CZelAtom("x"), CZelAtom("y")})}, {"n", CZelAtom(2)}})});
        m_record.RRAddOrSetValue(&m_name, &value);
        m_record.RRAddOrSetValue("b", 7);
    }

    std::string at(std::initializer_list<CZelAtom> keys) {
        const std::unique_ptr<CZelDbEntity> entity(column("a", keys));
        return shown(m_record.RRValueOfExprList(entity->RDEColNameAtom(), entity->RDEColSpec()));
    }
    int set(std::initializer_list<CZelAtom> keys, const CZelAtom &value) {
        const std::unique_ptr<CZelDbEntity> entity(column("a", keys));
        return m_record.RRAddOrSetValueExprList(*entity->RDEColNameAtom(), entity->RDEColSpec(), &value);
    }
    std::string packed(std::initializer_list<CZelDbEntity *> columns) {
        const CZelBagGuard<CZelDbEntity> bag(bagOf(columns));
        unsigned char *data = nullptr;
        int length = 0;
        m_record.ROMEncodeSubSet(&data, &length, bag.get());
        CZelRecord read;
        EXPECT_EQ(1, read.RRConsumeAndDecode(data, length));
        return taken(std::unique_ptr<CZelAtom>(read.RRRecordAsAtom())->RAStrRep());
    }

    const CZelAtom m_name{"a"};
    CZelRecord m_record;
};

TEST_F(RecordColumnsTest, KeysLeadInwards) {
    EXPECT_EQ("int 1", at({CZelAtom(0)}));
    EXPECT_EQ("text y", at({CZelAtom(1), CZelAtom("m"), CZelAtom(1)}));
    EXPECT_EQ("text x", at({CZelAtom(1), CZelAtom("m"), CZelAtom(-4)}));
    for (const auto &missing : {at({CZelAtom(2)}), at({CZelAtom("m")}), at({CZelAtom(0), CZelAtom(0)}),
                                at({CZelAtom(1), CZelAtom("m"), CZelAtom(-2)}), at({CZelAtom(1), CZelAtom("q")})})
        EXPECT_EQ("null", missing);
    EXPECT_EQ(nullptr, m_record.RRValueOfExprList(nullptr, nullptr));
    EXPECT_EQ(m_record.RRValueOf("a"), m_record.RRValueOfExprList(&m_name, nullptr));
}

TEST_F(RecordColumnsTest, AKeyWithoutAValueIsPassedOver) {
    auto *keys = new CZelDoubleList;
    keys->RDLAddToListEnd(clause("&x"));
    keys->RDLAddToListEnd(constant(CZelAtom(0)));
    EXPECT_EQ("int 1", shown(m_record.RRValueOfExprList(&m_name, keys)));
    delete keys;
}

TEST_F(RecordColumnsTest, WhatIsWrittenIsReadByTheSameKeys) {
    EXPECT_EQ(1, set({CZelAtom(1), CZelAtom("m"), CZelAtom(0)}, CZelAtom("z")));
    EXPECT_EQ(1, set({CZelAtom(1), CZelAtom("new"), CZelAtom(-2)}, CZelAtom(9)));
    EXPECT_EQ("list [1,{m=['z','y'],n=2,new=[9]}]", at({}));
    EXPECT_EQ(E_RCBadType, set({CZelAtom("m")}, CZelAtom(1)));
    EXPECT_EQ(1, set({}, CZelAtom(5)));
    EXPECT_EQ("int 5", at({}));
}

TEST_F(RecordColumnsTest, ASubsetIsNamedByTheLastKeys) {
    EXPECT_EQ("{b=7,n=2}", packed({column("b"), column("a", {CZelAtom(1), CZelAtom("n")}), column("absent")}));
    EXPECT_EQ("{}", packed({column("absent")}));
    m_record.RRAddOrSetValue("0", 1);
    const std::unique_ptr<CZelDbEntity> first(column("a", {CZelAtom(0)}));
    CZelBag columns;
    columns.RBAdd(first.get());
    unsigned char *data = nullptr;
    int length = 0;
    m_record.ROMEncodeSubSet(&data, &length, &columns);
    CZelRecord read;
    EXPECT_EQ(1, read.RRConsumeAndDecode(data, length));
    EXPECT_EQ("int 1", shown(read.RRValueOf("0"))) << "an element is named by its index";
    const CZelErrorCapture reports;
    m_record.ROMEncodeSubSet(nullptr, &length, &columns);
    EXPECT_EQ(E_RCNull, reports.LastCode());
}

}  // namespace
