#include "oql/CZelQryInsert.h"

#include <gtest/gtest.h>

#include "foundations/base/CZelRecord.h"
#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "oql/CZelInsert.h"
#include "oql/CZelQuery.h"
#include "support/ExprBuild.h"

namespace {

// Source columns a, b, c; target columns x, y. The row has a and c.
class QryInsertTest : public testing::Test {
protected:
    QryInsertTest() {
        for (CZelColDef *column : {&m_a, &m_b, &m_c})
            m_source.RBAdd(column);
        for (CZelColDef *column : {&m_x, &m_y})
            m_target.RBAdd(column);
        m_row.RRAddOrSetValue("a", 1);
        m_row.RRAddOrSetValue("c", 3);
    }

    std::string inserted(CZelBag *selection, CZelAtomVector *uniques = nullptr) {
        auto *query = new CZelQuery(entity("d", "s"), nullptr, nullptr, nullptr, nullptr);
        query->RQSetSelection(selection);
        CZelQryInsert statement(entity("d", "t"), uniques, query);
        const std::unique_ptr<CZelInsert> insert(
            statement.RQICreateRecord(&m_row, m_source.RBIterator(), m_target.RBIterator()));
        return insert != nullptr ? taken(insert->RDOAsString()) : "none";
    }

    CZelColDef m_a{ZelStrDup("a"), E_RDTInt, nullptr, -1};
    CZelColDef m_b{ZelStrDup("b"), E_RDTInt, nullptr, -1};
    CZelColDef m_c{ZelStrDup("c"), E_RDTInt, nullptr, -1};
    CZelColDef m_x{ZelStrDup("x"), E_RDTInt, nullptr, -1};
    CZelColDef m_y{ZelStrDup("y"), E_RDTInt, nullptr, -1};
    CZelBag m_source;
    CZelBag m_target;
    CZelRecord m_row;
};

TEST_F(QryInsertTest, AllColumnsGoInStepUntilEitherListEnds) {
    EXPECT_EQ("insert into d.t ( x )  values ( 1 ) ;", inserted(nullptr));
    m_row.RRAddOrSetValue("b", 2);
    EXPECT_EQ("insert into d.t ( x, y )  unique ( x )  values ( 1, 2 ) ;", inserted(nullptr, namesOf({"x"}).release()));
}

TEST_F(QryInsertTest, ASelectionGivesValuesByPlace) {
    EXPECT_EQ("insert into d.t values ( 3, 1 ) ;", inserted(bagOf({columnExpr("c"), constant(CZelAtom("a"))})));
    EXPECT_EQ("none", inserted(bagOf({columnExpr("a"), columnExpr("b")}))) << "the row lacks b";
    EXPECT_EQ("none", inserted(bagOf({constant(CZelAtom("b"))})));
    const CZelErrorCapture reports;
    EXPECT_EQ("insert into d.t values ( 1 ) ;", inserted(bagOf({new CZelExpr, columnExpr("a")})));
    EXPECT_TRUE(reports.Holds(E_RCBadArgument, "CZelQryInsert::RQICreateRecord"));
}

}  // namespace
