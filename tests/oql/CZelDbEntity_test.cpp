#include "oql/CZelDbEntity.h"

#include <gtest/gtest.h>

#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "support/ExprBuild.h"

namespace {

using Entity = std::unique_ptr<CZelDbEntity>;

std::string printed(CZelDbEntity *entity) {
    const Entity owner(entity);
    return taken(entity->RDEPrint());
}

Entity computed(CZelExpr *database, CZelExpr *table, CZelExpr *column) {
    return std::make_unique<CZelDbEntity>(database, table, column);
}

void evaluate(CZelExpr *part, const char *value) {
    const CZelAtom list = listOf({CZelAtom(value)});
    part->RESetClauseVal(new CZelVarBind("", &list));
}

TEST(DbEntityTest, PrintsThePartsThatAreThere) {
    EXPECT_EQ("d.t.a", printed(entity("d", "t", "a")));
    EXPECT_EQ("d.t", printed(entity("d", "t")));
    EXPECT_EQ("t.a", printed(entity(nullptr, "t", "a")));
    EXPECT_EQ("d", printed(entity("d", nullptr)));
    EXPECT_EQ("", printed(new CZelDbEntity));
    EXPECT_EQ("d.t.a", printed(new CZelDbEntity(ZelStrDup("d"), ZelStrDup("t"), ZelStrDup("a"))));
}

TEST(DbEntityTest, PrintsKeysAsTheyAreWritten) {
    EXPECT_EQ("a(1)->b(next)", printed(column("a", {CZelAtom(1), CZelAtom("b"), CZelAtom(-2)})));
    EXPECT_EQ("a(*)(any)(0)", printed(column("a", {CZelAtom(-1), CZelAtom(-4), CZelAtom(0)})));
    Entity keys(column("a"));
    auto *list = new CZelDoubleList;
    list->RDLAddToListEnd(clause("&i", E_RDTInt));
    list->RDLAddToListEnd(clause("&m", E_RDTText));
    list->RDLAddToListEnd(evaluated({CZelAtom(3)}, E_RDTInt));
    keys->RDESetColSpec(list);
    EXPECT_EQ("a(eval(int,'&i'))->eval(text,'&m')(3)", taken(keys->RDEPrint()));
}

TEST(DbEntityTest, AKeyThatIsNoneLeavesTheNameWithoutText) {
    const CZelErrorCapture reports;
    for (const int selector : {-3, -5}) {
        EXPECT_EQ("<null>", printed(column("a", {CZelAtom(selector)})));
        EXPECT_EQ("Unsupported or invalid column selector", reports.LastText());
    }
    for (const CZelAtom &key : {CZelAtom(1.0F), CZelAtom(), CZelAtom(1LL)}) {
        EXPECT_EQ("<null>", printed(column("a", {key})));
        EXPECT_EQ("Unsupported or invalid data type", reports.LastText());
    }
    EXPECT_EQ(E_RCBadValue, reports.LastCode());
}

TEST(DbEntityTest, OddNamesAreQuotedOrRefused) {
    EXPECT_EQ("'my d'.'t'", printed(entity("my d", "t")));
    EXPECT_EQ("'d'.\"it's\"", printed(entity("d", "it's")));
    EXPECT_EQ("'1'", printed(entity("1", nullptr)));
    const CZelErrorCapture reports;
    EXPECT_EQ("<null>", printed(entity(nullptr, "t; drop table u")));
    EXPECT_EQ("<null>", printed(entity("d", "t", "a b")));
    EXPECT_EQ("<null>", printed(column("a", {CZelAtom("b c")})));
    EXPECT_EQ(3U, reports.Count());
    EXPECT_EQ("A statement can't be written with the name b c", reports.LastText());
}

TEST(DbEntityTest, TheIdentIsSplitAtTheFirstUnderscore) {
    CZelDbEntity made("Db_Table_x");
    EXPECT_STREQ("Db", made.RDEDbName());
    EXPECT_STREQ("Table_x", made.RDETblName());
    EXPECT_STREQ("Db_Table_x", made.RDEIdent());
    EXPECT_EQ("Db.Table_x", taken(made.RDEPrint()));
    CZelDbEntity empty("none");
    EXPECT_EQ(nullptr, empty.RDEDbName());
    EXPECT_EQ(nullptr, empty.RDEIdent());
}

TEST(DbEntityTest, AComputedNameIsKnownOnceItsClauseHasAValue) {
    CZelExpr *table = clause("&t");
    const Entity entity = computed(constant(CZelAtom("d")), table, nullptr);
    EXPECT_EQ(E_RBTrue, entity->RDEEvalsInside());
    EXPECT_EQ(nullptr, entity->RDETblName());
    EXPECT_EQ(nullptr, entity->RDEIdent());
    EXPECT_EQ("d.eval(text,'&t')", taken(entity->RDEPrint()));
    evaluate(table, "t");
    EXPECT_STREQ("d_t", entity->RDEIdent());
    EXPECT_EQ("d.t", taken(entity->RDEPrint()));
    evaluate(table, "u");
    EXPECT_STREQ("d_u", entity->RDEIdent());
    CZelDbEntity copy(*entity);
    EXPECT_EQ(nullptr, copy.RDEIdent());
}

TEST(DbEntityTest, APartMayBeAnEntityItself) {
    const Entity outer = computed(nullptr, nullptr, new CZelExpr(entity("d", "t", "inner")));
    EXPECT_STREQ("inner", outer->RDEColName());
    EXPECT_EQ(nullptr, outer->RDETblName());
    EXPECT_EQ(nullptr, computed(nullptr, nullptr, new CZelExpr)->RDEColName());
}

TEST(DbEntityTest, ReplacedPartsShowInIdentAndClauses) {
    const Entity made(entity("d", "t"));
    EXPECT_STREQ("d_t", made->RDEIdent());
    EXPECT_EQ(2, made->RDEClauses()->RBLength());
    EXPECT_EQ(1, made->RDESetTblName(CZelAtom("u")));
    EXPECT_EQ(1, made->RDESetDbName(CZelAtom("e")));
    EXPECT_EQ(1, made->RDESetColName(CZelAtom("a")));
    EXPECT_STREQ("e_u", made->RDEIdent());
    EXPECT_EQ("e.u.a", taken(made->RDEPrint()));
    EXPECT_EQ(3, made->RDEClauses()->RBLength());
    EXPECT_EQ(made->RDEDbExpr(), made->RDEClauses()->RBFirst()->RPData());
}

TEST(DbEntityTest, ClausesArePartsThenKeys) {
    const Entity made(column("a", {CZelAtom(1), CZelAtom("b")}));
    const CZelBag *clauses = made->RDEClauses();
    ASSERT_EQ(3, clauses->RBLength());
    EXPECT_EQ(made->RDEColExpr(), clauses->RBFirst()->RPData());
    made->RDESetColSpec(nullptr);
    EXPECT_EQ(1, made->RDEClauses()->RBLength());
    EXPECT_EQ(E_RBFalse, made->RDEEvalsInside());
}

TEST(DbEntityTest, OnlyASelectorAtTheEndIsWild) {
    EZelListUpdateType selector = E_RLUNext;
    EXPECT_EQ(E_RBFalse, Entity(column("a"))->RDEIsColSpecWild(&selector));
    EXPECT_EQ(E_RBFalse, Entity(column("a", {CZelAtom(-1), CZelAtom(3)}))->RDEIsColSpecWild(&selector));
    EXPECT_EQ(E_RBFalse, Entity(column("a", {CZelAtom("b")}))->RDEIsColSpecWild(&selector));
    EXPECT_EQ(E_RBFalse, Entity(column("a", {CZelAtom(-5)}))->RDEIsColSpecWild(&selector));
    EXPECT_EQ(E_RLUNext, selector);
    EXPECT_EQ(E_RBTrue, Entity(column("a", {CZelAtom("b"), CZelAtom(-4)}))->RDEIsColSpecWild(&selector));
    EXPECT_EQ(E_RLUAny, selector);
}

}  // namespace
