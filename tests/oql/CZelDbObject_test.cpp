// The texts of statements, blank for blank, and what the command compiler finds in them.
#include "oql/CZelDbObject.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "oql/CZelAssign.h"
#include "oql/CZelDelete.h"
#include "oql/CZelDropIndex.h"
#include "oql/CZelDropObject.h"
#include "oql/CZelExit.h"
#include "oql/CZelIndex.h"
#include "oql/CZelOrder.h"
#include "oql/CZelQryInsert.h"
#include "oql/CZelQuery.h"
#include "oql/CZelShow.h"
#include "oql/CZelUpdate.h"
#include "support/ExprBuild.h"

namespace {

std::string text(CZelDbObject *statement) {
    const std::unique_ptr<CZelDbObject> owner(statement);
    return taken(statement->RDOAsString());
}

// The text, "<null>", and the code of the report that came with it.
std::string refused(CZelDbObject *statement) {
    const CZelErrorCapture reports;
    const std::string written = text(statement);
    return written + ' ' + (reports.Count() == 0 ? "unreported" : ZelCodeName(reports.LastCode()));
}

CZelQuery *query(CZelFilter *where = nullptr) {
    return new CZelQuery(entity("d", "t"), where, nullptr, nullptr, nullptr);
}

CZelQuery *selecting(CZelBag *selection, CZelFilter *where = nullptr) {
    CZelQuery *made = query(where);
    made->RQSetSelection(selection);
    return made;
}

TEST(StatementTextTest, Delete) {
    EXPECT_EQ("delete from t;", text(new CZelDelete(entity(nullptr, "t"), nullptr)));
    EXPECT_EQ("delete from d.t where a = 'x';", text(new CZelDelete(entity("d", "t"), equals("a", CZelAtom("x")))));
    EXPECT_EQ("<null> E_RCNoText", refused(new CZelDelete(nullptr, nullptr)));
    EXPECT_EQ("<null> E_RCBadValue", refused(new CZelDelete(entity(nullptr, "t;"), nullptr)));
}

TEST(StatementTextTest, Update) {
    CZelBag *changes =
        bagOf({new CZelAssign(column("a"), noValue()), new CZelAssign(column("b"), constant(CZelAtom("x"))),
               new CZelAssign(column("c", {CZelAtom(1)}), constant(CZelAtom())),
               new CZelAssign(column("e"), evaluated({CZelAtom(2)}))});
    EXPECT_EQ("update t set a=NULL,b='x',c(1)=NULL,e=2 where a = 1;",
              text(new CZelUpdate(entity(nullptr, "t"), changes, equals("a", CZelAtom(1)))));
    EXPECT_EQ("update t set ;", text(new CZelUpdate(entity(nullptr, "t"), nullptr, nullptr)));
    EXPECT_EQ("<null> E_RCBadValue",
              refused(new CZelUpdate(entity(nullptr, "t"), bagOf({new CZelAssign(column("a"), nullptr)}), nullptr)));
}

TEST(StatementTextTest, Query) {
    EXPECT_EQ("select  *  from d.t\n ;\n", text(query()));
    CZelQuery *counting = query();
    counting->RQSetCountStar(E_RBTrue);
    EXPECT_EQ("select  *  from d.t\n ;\n", text(counting));
    CZelQuery *distinct = selecting(bagOf({columnExpr("a")}));
    distinct->RQSetReturnAll(E_RBFalse);
    EXPECT_EQ("select a from d.t\n ;\n", text(distinct));
    auto *whole =
        new CZelQuery(bagOf({entity("d", "t"), entity("d", "u")}), equals("a", CZelAtom(1)),
                      bagOf({column("a"), column("b")}), equals("b", CZelAtom(2)),
                      bagOf({new CZelOrder(column("a"), E_RODAscending), new CZelOrder(column("b"), E_RODDescending)}));
    whole->RQSetSelection(bagOf({columnExpr("a"), constant(CZelAtom("x"))}));
    EXPECT_EQ(
        "select a , 'x' from d.t , \nd.u\nwhere \n( \na = 1\n) \nGroup by \n\ta , \n\tb\nhaving \n(\nb = 2\n)\n"
        "order by \n\ta ASC  , \n\tb DESC \n ;\n",
        text(new CZelQuery(*whole)));
    delete whole;
}

TEST(StatementTextTest, AQueryWithoutSelectionOrSourceHasNoText) {
    EXPECT_EQ("<null> E_RCNoText",
              refused(new CZelQuery(static_cast<CZelBag *>(nullptr), nullptr, nullptr, nullptr, nullptr)));
    CZelQuery *made = selecting(bagOf({columnExpr("a")}));
    made->RQSetSelection(nullptr);
    EXPECT_EQ(E_RBTrue, made->RQSelectStar());
    EXPECT_EQ("select  *  from d.t\n ;\n", text(made));
    CZelQuery one("a", "d", "t");
    EXPECT_EQ(E_RBTrue, one.RQSelectStar());
    EXPECT_EQ("select  *  from d.t\n ;\n", taken(one.RDOAsString()));
}

TEST(StatementTextTest, ASubqueryStandsInBracketsWithoutItsEnd) {
    auto *in = new CZelFilter(new CZelBoolean(columnExpr("a"), selecting(bagOf({columnExpr("b")})), E_ROIn));
    EXPECT_EQ("delete from t where a In ((select b from d.t\n));", text(new CZelDelete(entity(nullptr, "t"), in)));
}

TEST(StatementTextTest, QueryInsert) {
    const auto insert = [](CZelQuery *source, CZelAtomVector *uniques = nullptr) {
        return new CZelQryInsert(entity("d", "u"), uniques, source);
    };
    EXPECT_EQ("select  *  into d.u\n from d.t\n ;\n", text(insert(query())));
    EXPECT_EQ("select a , b\n into d.u\n unique ( a , b ) \n from d.t\nwhere \n( \na = 1\n) \n ;\n",
              text(insert(selecting(bagOf({columnExpr("a"), columnExpr("b")}), equals("a", CZelAtom(1))),
                          namesOf({"a", "b"}).release())));
    EXPECT_EQ("<null> E_RCNoText", refused(insert(nullptr)));
    EXPECT_EQ("<null> E_RCNull", refused(new CZelQryInsert(entity(nullptr, "u v"), nullptr, query())));
}

TEST(StatementTextTest, Indexes) {
    const auto index = [](CZelExpr *name) {
        return new CZelIndex(name, entity("d", "t"), namesOf({"a", "b"}).release());
    };
    EXPECT_EQ("create index i on d.t ( a , b );\n", text(index(constant(CZelAtom("i")))));
    EXPECT_EQ("create index i on d.t ( a , b );\n", text(index(evaluated({CZelAtom("i")}))));
    EXPECT_EQ("<null> E_RCNull", refused(index(clause("&i"))));
    EXPECT_EQ("<null> E_RCBadValue", refused(index(constant(CZelAtom("i on x")))));
    EXPECT_EQ("<null> E_RCNull", refused(new CZelIndex(ZelStrDup("i"), nullptr, namesOf({"a"}).release())));
    EXPECT_EQ("drop index i ;\n", text(new CZelDropIndex(ZelStrDup("i"))));
    EXPECT_EQ("<null> E_RCNull", refused(new CZelDropIndex(clause("&i"))));
    CZelIndex copied(evaluated({CZelAtom("i")}), entity("d", "t"), namesOf({"a"}).release());
    EXPECT_EQ("create index i on d.t ( a );\n", text(new CZelIndex(copied)));
}

TEST(StatementTextTest, DropShowAndShutdown) {
    EXPECT_EQ("drop database d;\n", text(new CZelDropObject(entity("d", nullptr), E_RDODatabase)));
    auto *drop = new CZelDropObject(entity("d", "t"), E_RDOTable);
    EXPECT_EQ(E_RDOTable, drop->RDOType());
    EXPECT_EQ(E_DODropObject, static_cast<CZelDbObject *>(drop)->RDOType());
    EXPECT_EQ("drop table d.t;\n", text(drop));
    EXPECT_EQ("<null> E_RCNull", refused(new CZelDropObject(new CZelDbEntity, E_RDOTable)));
    EXPECT_EQ("<null> E_RCNoText", refused(new CZelDropObject(entity("d", "t"), static_cast<EZelDropObjectTarget>(2))));
    EXPECT_EQ("show databases  ;\n", text(new CZelShow(nullptr, nullptr)));
    EXPECT_EQ("show tables from d ;\n", text(new CZelShow(ZelStrDup("d"), nullptr)));
    EXPECT_EQ("show table d.t ;\n", text(new CZelShow(ZelStrDup("d"), ZelStrDup("t"))));
    EXPECT_EQ("<null> E_RCNoText", refused(new CZelShow(nullptr, ZelStrDup(""))));
    EXPECT_EQ("shutdown;\n", text(new CZelExit));
}

// --- compilables ---

// Which of the expressions stand in the bag, by their place in the list; "?" for any other.
std::string order(CZelDbObject &statement, std::initializer_list<CZelExpr *> expressions) {
    std::string places;
    const CZelBag *bag = statement.RDOCompilables();
    for (const CZelPointer *node = bag->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        const auto *found = std::find(expressions.begin(), expressions.end(), node->RPData());
        places += found != expressions.end() ? static_cast<char>('0' + (found - expressions.begin())) : '?';
    }
    return places;
}

TEST(CompilablesTest, StandInTheOrderOfEvaluation) {
    CZelExpr *in[] = {clause("&0"), clause("&1"), clause("&2"), clause("&3"), clause("&4"), clause("&5")};
    const auto part = [&](int i) { return new CZelDbEntity(nullptr, nullptr, in[i]); };
    auto *where = new CZelFilter(new CZelBoolean(in[0], constant(CZelAtom(1)), E_ROEqual));
    auto *having = new CZelFilter(new CZelBoolean(constant(CZelAtom(1)), in[1], E_ROEqual));
    CZelQuery query(part(3), where, bagOf({part(4)}), having, bagOf({new CZelOrder(part(5), E_RODAscending)}));
    query.RQSetSelection(bagOf({in[2]}));
    EXPECT_EQ("012345", order(query, {in[0], in[1], in[2], in[3], in[4], in[5]}));

    CZelExpr *of[] = {clause("&0"), clause("&1"), clause("&2"), clause("&3")};
    auto *filter = new CZelFilter(new CZelBoolean(of[1], constant(CZelAtom(1)), E_ROEqual));
    CZelUpdate update(new CZelDbEntity(nullptr, of[0], nullptr),
                      bagOf({new CZelAssign(new CZelDbEntity(nullptr, nullptr, of[2]), of[3])}), filter);
    EXPECT_EQ("0123", order(update, {of[0], of[1], of[2], of[3]}));

    CZelExpr *name = clause("&n");
    CZelIndex index(name, entity("d", "t"), namesOf({"a"}).release());
    EXPECT_EQ("??0", order(index, {name}));
    EXPECT_EQ(nullptr, CZelExit().RDOCompilables());
    EXPECT_EQ(nullptr, CZelShow(nullptr, nullptr).RDOCompilables());
}

TEST(CompilablesTest, FollowWhatIsReplaced) {
    CZelUpdate update(entity("d", "t"), nullptr, equals("a", CZelAtom(1)));
    EXPECT_EQ("???", order(update, {}));
    update.RUSetFilter("a", nullptr);
    update.RUSetTarget(nullptr, "t", nullptr);
    const CZelAtom value(1);
    update.RUAddAssignment("b", &value);
    EXPECT_EQ(5, update.RDOCompilables()->RBLength());
    CZelDelete remove(entity("d", "t"), nullptr);
    EXPECT_EQ(2, remove.RDOCompilables()->RBLength());
    remove.RDSetTarget(entity(nullptr, "u"));
    EXPECT_EQ(remove.RDTarget()->RDETblExpr(), remove.RDOCompilables()->RBFirst()->RPData());
}

}  // namespace
