// The forms in which rows leave the store.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "clause/CZelEvalClause.h"
#include "foundations/port/CZelErrorCapture.h"
#include "tests/store/LiveTable.h"

using namespace conditions;

namespace {

using Query = std::unique_ptr<CZelQuery>;

CZelExpr *computed(const char *name) {
    auto *type = new CZelColDef(nullptr, E_RDTText, nullptr, -1);
    auto *expression = new CZelExpr(new CZelEvalClause(type, ZelStrDup("&x")));
    expression->RESetClauseVal(new CZelVarBind(CZelAtom(""), list({name})));
    return expression;
}

class StoreQueryTest : public ::testing::Test {
protected:
    StoreQueryTest() : t(*store.add(table("d", "t", {{"k", E_RDTInt}, {"s", E_RDTText}, {"l", E_RDTList}}))) {
        for (int i = 0; i < 3; ++i)
            insert(t, record({{"k", i}, {"s", i == 1 ? "one" : "other"}, {"l", list({i, i + 10})}}));
        insert(t, record({{"s", "no key"}}));
    }

    // "name=value name=value" per record.
    static std::string textOf(const CZelRecord &row) {
        std::string text;
        const CZelVBList *values = row.RRVbIterator();
        for (const CZelVarBind *at = values->RVBLHead(); at != nullptr; at = values->RVBLGetNext(at))
            text += (text.empty() ? "" : " ") + taken(at->RVBVbAsString());
        return text;
    }

    using Texts = std::vector<std::string>;

    Texts records(CZelQuery *query) {
        const Query owner(query);
        const CZelBagGuard<CZelRecord> rows(store.RSQueryGetRecs(query, &status, E_RBFalse));
        Texts texts;
        for (const CZelRecord *row : contents<CZelRecord>(rows.get()))
            texts.push_back(textOf(*row));
        return texts;
    }

    Texts blocks(CZelQuery *query) {
        const Query owner(query);
        const CZelBagGuard<CZelAtom> rows(store.RSQuery(query, &status, E_RBFalse));
        Texts texts;
        for (const CZelAtom *block : contents<CZelAtom>(rows.get())) {
            unsigned char *data = nullptr;
            int length = 0;
            block->RAUChar(&data, &length);
            CZelRecord row;
            EXPECT_EQ(1, row.ROMDecode(data, length));
            texts.push_back(textOf(row));
        }
        return texts;
    }

    static CZelQuery *counting(CZelQuery *query) {
        query->RQSetCountStar(E_RBTrue);
        return query;
    }

    LiveStore store;
    OpenTable &t;
    EZelStoreErrorStatus status = E_RSEPermission;
};

TEST_F(StoreQueryTest, StarGivesCopiesOfWholeRows) {
    const Texts expected{"k=1 s=one l=[1,11]"};
    EXPECT_EQ(expected, records(select("t", {}, leaf(col("s"), E_ROEqual, val("one")))));
    EXPECT_EQ(E_RSEOk, status);
    EXPECT_EQ(expected, blocks(select("t", {}, leaf(col("s"), E_ROEqual, val("one")))));
    EXPECT_EQ(4U, records(select("t", {}, nullptr)).size());
    EXPECT_EQ(4, t.RTTotalRecordCount());
}

TEST_F(StoreQueryTest, ASelectionGivesTheColumnsThatARowHas) {
    const Texts expected{"s=other k=0", "s=one k=1", "s=other k=2", "s=no key"};
    EXPECT_EQ(expected, records(select("t", {col("s"), col("k")}, nullptr)));
    EXPECT_EQ(expected, blocks(select("t", {col("s"), col("k")}, nullptr)));
    EXPECT_EQ((Texts{"k=0", "k=1", "k=2", ""}), records(select("t", {col("k")}, nullptr)));
    EXPECT_EQ((Texts{"k=0", "k=1", "k=2", ""}), blocks(select("t", {col("k")}, nullptr)));
}

TEST_F(StoreQueryTest, ANestedColumnTakesTheNameOfItsLastKey) {
    auto *inner = new CZelVBList;
    inner->RVBLAddToListEnd(new CZelVarBind("b", 7));
    auto *row = new CZelRecord;
    row->RRAddValue(new CZelVarBind(CZelAtom("o"), CZelAtom(inner)));
    insert(*store.add(table("d", "u", {{"o", E_RDTObject}})), row);
    EXPECT_EQ((Texts{"b=7"}), records(select("u", {col("o", {"b"})}, nullptr)));
    EXPECT_EQ((Texts{"1=11"}), records(select("t", {col("l", {1})}, leaf(col("k"), E_ROEqual, val(1)))));
}

TEST_F(StoreQueryTest, ValuesOfClausesAndConstantsNameColumns) {
    const auto one = [] { return leaf(col("k"), E_ROEqual, val(1)); };
    EXPECT_EQ((Texts{"s=one k=1"}), records(select("t", {computed("s"), val("k")}, one())));
    CZelErrorCapture reports;
    EXPECT_EQ((Texts{"k=1"}), blocks(select("t", {computed("s"), col("k")}, one())));
    EXPECT_EQ((Texts{"k=1"}), records(select("t", {new CZelExpr, val(5), col("k")}, one())));
    EXPECT_EQ(3U, reports.Count());
    EXPECT_TRUE(reports.Holds(E_RCBadArgument));
}

TEST_F(StoreQueryTest, CountIsOneRecord) {
    EXPECT_EQ((Texts{"Count=4"}), records(counting(select("t", {}, nullptr))));
    EXPECT_EQ((Texts{"Count=4"}), blocks(counting(select("t", {}, nullptr))));
    EXPECT_EQ((Texts{"Count=2"}), records(counting(select("t", {}, leaf(col("s"), E_ROEqual, val("other"))))));
    EXPECT_EQ((Texts{"Count=0"}), blocks(counting(select("t", {}, leaf(col("s"), E_ROEqual, val("none"))))));
    EXPECT_EQ((Texts{"Count=0"}), records(counting(select("t", {}, leaf(col("d", "z", "x"), E_ROEqual, val(1))))));
}

TEST_F(StoreQueryTest, MissingTablesAreToldByTheStatus) {
    EXPECT_TRUE(records(select("nowhere", {}, nullptr)).empty());
    EXPECT_EQ(E_RSENoTable, status);
    EXPECT_TRUE(blocks(new CZelQuery("a", "nowhere", "t")).empty());
    EXPECT_EQ(E_RSENoDatabase, status);
    EXPECT_TRUE(records(select("t", {}, leaf(col("d", "other", "x"), E_ROEqual, val(1)))).empty());
    EXPECT_EQ(E_RSEOk, status);
}

TEST_F(StoreQueryTest, QueriesOfNoTableAreRefused) {
    const CZelErrorCapture reports;
    auto *sources = new CZelBag;
    EXPECT_EQ(nullptr,
              store.RSQuery(Query(new CZelQuery(sources, nullptr, nullptr, nullptr, nullptr)).get(), &status, 0));
    EXPECT_EQ(nullptr, store.RSQueryGetRecs(nullptr, nullptr, E_RBFalse));
    EXPECT_TRUE(reports.Holds(E_RCBadArgument));
}

TEST_F(StoreQueryTest, PointersAreThoseOfTheStoredRows) {
    const Query all(select("t", {}, nullptr));
    const std::unique_ptr<CZelBag> rows(store.RSSimpleQueryGetRecPtrs(all.get(), &status, E_RBFalse));
    const std::unique_ptr<CZelBag> stored(t.RTReturnRows(nullptr));
    EXPECT_EQ(contents<CZelRecord>(stored.get()), contents<CZelRecord>(rows.get()));
    EXPECT_FALSE(store.RSOwnResultsOfSimpleQry(all.get()));
    EXPECT_FALSE(store.RSOwnResultsOfSimpleQry(nullptr));

    const Query some(select("t", {col("k")}, nullptr));
    CZelErrorCapture reports;
    EXPECT_EQ(nullptr, store.RSSimpleQueryGetRecPtrs(some.get(), &status, E_RBFalse));
    EXPECT_TRUE(reports.Holds(E_RCBadArgument, "This type of query MUST be select *"));
    EXPECT_EQ(nullptr, store.RSSimpleQueryGetRecPtrs(all.get(), &status, E_RBTrue));
    EXPECT_TRUE(reports.Holds(E_RCBadArgument, "This type of query MUST NOT have a cache"));
    CZelStore cached(0.5F, "cache");
    EXPECT_EQ(nullptr, cached.RSSimpleQueryGetRecPtrs(all.get(), &status, E_RBFalse));
    EXPECT_TRUE(reports.Holds(E_RCBadArgument, "This type of query MUST not have a cache"));
}

}  // namespace
