#include "oql/CZelUpdate.h"

#include <gtest/gtest.h>

#include "foundations/base/CZelRecord.h"
#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "oql/CZelAssign.h"
#include "support/ExprBuild.h"

namespace {

TEST(UpdateTest, IsPutTogetherByCode) {
    CZelUpdate update;
    const CZelAtom value("x");
    const CZelErrorCapture reports;
    update.RUAddAssignment("a", &value);
    EXPECT_EQ(E_RCBadArgument, reports.LastCode());
    update.RUSetTarget("d", "t", nullptr);
    update.RUAddAssignment("a", &value);
    update.RUAddAssignment("b", nullptr);
    update.RUSetFilter("c", &value);
    EXPECT_EQ("update d.t set d.t.a='x',d.t.b=NULL where c = 'x';", taken(update.RDOAsString()));
    update.RUSetFilter(nullptr, &value);
    EXPECT_EQ(nullptr, update.RUFilter());
    EXPECT_EQ(2U, reports.Count());
}

TEST(UpdateTest, FindsAnAssignmentByItsColumn) {
    const CZelUpdate update(
        entity(nullptr, "t"),
        bagOf({new CZelAssign(column("a"), constant(CZelAtom(1))), new CZelAssign(column("b"), noValue()),
               new CZelAssign(column("c"), nullptr), new CZelAssign(column("e"), constant(CZelAtom(1)))}),
        nullptr);
    __boolean found = E_RBFalse;
    EXPECT_EQ("int 1", shown(update.RUFindColAssignment("a", &found)));
    EXPECT_EQ(E_RBTrue, found);
    EXPECT_EQ(nullptr, update.RUFindColAssignment("b", &found));
    EXPECT_EQ(E_RBTrue, found);
    const CZelErrorCapture reports;
    EXPECT_EQ(nullptr, update.RUFindColAssignment("e", &found)) << "behind an assignment without a value";
    EXPECT_EQ(E_RBFalse, found);
    EXPECT_EQ(E_RCBadValue, reports.LastCode());
}

TEST(UpdateTest, KnowsWhetherARecordWouldChange) {
    CZelRecord record;
    record.RRAddOrSetValue("a", 5);
    const auto changes = [&](const char *name, CZelExpr *value) {
        return CZelUpdate(entity(nullptr, "t"), bagOf({new CZelAssign(column(name), value)}), nullptr)
            .RUWillChangeRecord(&record);
    };
    EXPECT_FALSE(changes("a", constant(CZelAtom(5))));
    EXPECT_TRUE(changes("a", constant(CZelAtom(6))));
    EXPECT_TRUE(changes("a", constant(CZelAtom(5L)))) << "another type";
    EXPECT_TRUE(changes("a", noValue()));
    EXPECT_TRUE(changes("b", constant(CZelAtom(5))));
    const CZelErrorCapture reports;
    EXPECT_FALSE(changes("a", nullptr));
    EXPECT_EQ(E_RCBadValue, reports.LastCode());
    EXPECT_FALSE(CZelUpdate().RUWillChangeRecord(&record));
}

}  // namespace
