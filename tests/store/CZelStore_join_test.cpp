// Joins and select ... into through a store: both forms of the result, caches, refusals, and many threads at once.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "oql/CZelQryInsert.h"
#include "oql/CZelQuery.h"
#include "tests/store/Joins.h"
#include "tests/store/TableTest.h"
#include "tests/support/CacheHome.h"
#include "tests/support/OqlFixture.h"
#include "tests/support/SplitAll.h"

namespace {

class OpenStore : public LiveStore {
public:
    using CZelStore::RSExecJoinedQuery;
    using CZelStore::RSPurgeJoinedQuery;
};

class StoreJoinTest : public testing::Test {
protected:
    StoreJoinTest() {
        for (int i = 1; i <= 4; ++i)
            conditions::insert(a, record({{"id", i}, {"k", i % 2}}));
        conditions::insert(b, record({{"id", 7}, {"k", 1}}));
    }

    static std::unique_ptr<CZelQuery> queryOf(std::initializer_list<const char *> tables, CZelFilter *where,
                                              std::initializer_list<CZelExpr *> items = {}) {
        auto *source = new CZelBag;
        for (const char *name : tables)
            source->RBAdd(static_cast<void *>(new CZelDbEntity("d", name, nullptr)));
        auto query = std::make_unique<CZelQuery>(source, where, nullptr, nullptr, nullptr);
        auto *selection = items.size() != 0 ? new CZelBag : nullptr;
        for (CZelExpr *item : items)
            selection->RBAdd(static_cast<void *>(item));
        if (selection != nullptr)
            query->RQSetSelection(selection);
        return query;
    }
    static CZelFilter *sameKey() { return leaf(col("d", "a", "k"), E_ROEqual, col("d", "b", "k")); }

    // The rows, which both forms give alike.
    Texts rows(CZelQuery &query) {
        const CZelBagGuard<CZelRecord> records(store.RSQueryGetRecs(&query, &status, E_RBFalse));
        const CZelBagGuard<CZelAtom> blocks(store.RSQuery(&query, &status, E_RBFalse));
        Texts asRecords, asBlocks;
        for (const CZelRecord *row : contents<CZelRecord>(records.get()))
            asRecords.push_back(text(*row));
        for (const CZelAtom *block : contents<CZelAtom>(blocks.get())) {
            int length = 0;
            unsigned char *data = nullptr;
            block->RAUChar(&data, &length);
            CZelRecord row;
            row.ROMDecode(data, length);
            asBlocks.push_back(text(row));
        }
        EXPECT_EQ(asRecords, asBlocks);
        return asRecords;
    }

    static void removeFrom(OpenTable &table, CZelFilter *where) {
        CZelDelete statement(new CZelDbEntity("d", "a", nullptr), where);
        table.RTDeleteRows(&statement, E_RBFalse);
    }

    // By nested loops. Where there is no row of a, its k is null.
    Texts pairsOfOneKey() const {
        Texts pairs;
        const std::unique_ptr<CZelBag> mine(a.RTReturnRows(nullptr)), others(b.RTReturnRows(nullptr));
        if (mine->RBLength() == 0)
            mine->RBAdd(static_cast<void *>(nullptr));
        for (const CZelRecord *row : contents<CZelRecord>(mine.get())) {
            for (const CZelRecord *other : contents<CZelRecord>(others.get())) {
                const CZelAtom *key = row != nullptr ? row->RRValueOf("k") : nullptr;
                if (CZelAtom::RACompare(key, other->RRValueOf("k")) == 0)
                    pairs.push_back((row != nullptr ? text(*row) + " " : "") + text(*other));
            }
        }
        return pairs;
    }

    void compareWithLoops();

    const CZelErrorCapture reports;
    OpenStore store;
    OpenTable &a = *store.add(table("d", "a", {{"id", E_RDTInt}, {"k", E_RDTInt}}));
    OpenTable &b = *store.add(table("d", "b", {{"id", E_RDTInt}, {"k", E_RDTInt}}));
    OpenTable &t = *store.add(table("d", "t", {{"one", E_RDTInt, true}, {"two", E_RDTInt}}));
    EZelStoreErrorStatus status = E_RSEOk;
};

}  // namespace

TEST_F(StoreJoinTest, RecordsAndBlocksTellTheSame) {
    EXPECT_EQ((Texts{"id=1 k=1 id=7 k=1", "id=3 k=1 id=7 k=1"}), rows(*queryOf({"a", "b"}, sameKey())));
    EXPECT_EQ((Texts{"id=7 id=1", "id=7 id=3"}),
              rows(*queryOf({"a", "b"}, sameKey(), {col("d", "b", "id"), col("d", "a", "id")})));
    const auto count = queryOf({"a", "b"}, nullptr);
    count->RQSetCountStar(E_RBTrue);
    EXPECT_EQ(Texts{"Count=4"}, rows(*count));
    EXPECT_EQ(Texts{}, rows(*queryOf({"t", "t"}, nullptr)));
    EXPECT_EQ(E_RSEOk, status);
    EXPECT_EQ((Texts{"id=7", "id=7"}), rows(*queryOf({"a", "b"}, sameKey(), {val(3), col("d", "b", "id")})));
    EXPECT_TRUE(reports.Holds(E_RCBadArgument));  // a constant names no column
}

// Keys that occur twice, that are null on both sides and that nobody has; rows deleted in between.
void StoreJoinTest::compareWithLoops() {
    constexpr int TOGETHER = CZelJoinWalk::TOGETHER;
    addIndex(b, "k");
    for (int i = 10; i < 30; ++i)
        conditions::insert(b, i % 9 == 0 ? record({{"id", i}}) : record({{"id", i}, {"k", i % 10 + 2}}));
    int next = 5;
    for (const int length : {0, 1, TOGETHER - 1, TOGETHER, TOGETHER + 1, 2 * TOGETHER}) {
        removeFrom(a, leaf(col("d", "a", "id"), E_ROLessEqual, val(length == 0 ? next : next / 3)));
        for (; a.RTTotalRecordCount() < length; ++next)
            conditions::insert(a,
                               next % 13 == 12 ? record({{"id", next}}) : record({{"id", next}, {"k", next % 13 + 1}}));
        const Texts expected = pairsOfOneKey();
        const auto query = queryOf({"a", "b"}, sameKey());
        EXPECT_EQ(expected, rows(*query)) << length;
        query->RQSetCountStar(E_RBTrue);
        EXPECT_EQ(Texts{"Count=" + std::to_string(expected.size())}, rows(*query));
    }
    EXPECT_EQ(0U, reports.Count());
}

TEST_F(StoreJoinTest, AnyNumberOfRowsComesWholeAndInOrder) {
    compareWithLoops();
}

TEST_F(StoreJoinTest, AnyNumberOfRowsComesWholeAndInOrderFromTwoThreads) {
    const SplitAll split;
    compareWithLoops();
}

// A row without a key has no partner, and a column of the table that is missing is reported.
TEST_F(StoreJoinTest, TwoThreadsReportWhatOneDoes) {
    addIndex(b, "k");
    for (int id = 5; id < 300; ++id)
        conditions::insert(a, id % 3 == 0 ? record({{"id", id}}) : record({{"id", id}, {"k", 1}}));
    const auto query = queryOf({"a", "b"}, sameKey(), {col("d", "a", "id"), col("d", "b", "id")});
    const CZelErrorCapture ofOne;
    const Texts expected = rows(*query);
    const SplitAll split;
    const CZelErrorCapture ofTwo;
    EXPECT_EQ(expected, rows(*query));
    EXPECT_EQ(2U * 98, ofOne.Count());
    EXPECT_EQ(ofOne.Count(), ofTwo.Count());
    EXPECT_TRUE(ofTwo.Holds(E_RCNotFound, "id"));
}

TEST_F(StoreJoinTest, AMissingTableGivesAnEmptyResultAndAStatus) {
    EXPECT_EQ(Texts{}, rows(*queryOf({"a", "nowhere"}, nullptr)));
    EXPECT_EQ(E_RSENoTable, status);
    const auto count = queryOf({"nowhere", "a"}, nullptr);
    count->RQSetCountStar(E_RBTrue);
    EXPECT_EQ(Texts{"Count=0"}, rows(*count));
    EXPECT_EQ(E_RSENoTable, status);
    EXPECT_EQ(nullptr, store.RSExecJoinedQuery(count.get(), &status, E_RBTrue));
    EXPECT_EQ(nullptr, store.RSJoinedQuery(nullptr, nullptr, E_RBFalse));
}

TEST_F(StoreJoinTest, TuplesLiveUntilTheNextJoinOfTheTableOrThePurge) {
    const auto query = queryOf({"a", "b"}, sameKey());
    const std::unique_ptr<CZelBag> tuples(store.RSExecJoinedQuery(query.get(), &status, E_RBTrue));
    ASSERT_EQ(2, tuples->RBLength());
    EXPECT_EQ((Texts{"d_a:1 d_b:7", "d_a:3 d_b:7"}), joins::textsOf(*tuples));
    store.RSTidyAfterJoinedQryFromCache(tuples.get());  // plain rows stay
    EXPECT_EQ((Texts{"d_a:1 d_b:7", "d_a:3 d_b:7"}), joins::textsOf(*tuples));
    store.RSPurgeJoinedQuery(query.get());
    store.RSTidyAfterJoinedQryFromCache(nullptr);
    EXPECT_EQ(2, std::unique_ptr<CZelBag>(store.RSExecJoinedQuery(query.get(), &status, E_RBTrue))->RBLength());
}

TEST_F(StoreJoinTest, RowsThatAreRefusedDoNotStopAnInsert) {
    conditions::insert(t, record({{"one", 3}}));
    EventLog log;
    t.RTAddActive(&log, 0);
    log.refused = "preAdd";
    const auto into = [&](CZelFilter *where, std::initializer_list<CZelExpr *> items) {
        CZelQryInsert statement(new CZelDbEntity("d", "t", nullptr), nullptr,
                                queryOf({"a", "b"}, where, items).release());
        return store.RSQueryInsert(&statement, &status, E_RBFalse, E_RBTrue);
    };
    EXPECT_EQ(1, into(nullptr, {col("d", "a", "id"), col("d", "b", "id")}));
    EXPECT_EQ(4U, log.events.size());
    EXPECT_EQ(1, t.RTTotalRecordCount());
    t.RTAddActive(nullptr, 0);
    EXPECT_EQ(1, into(nullptr, {col("d", "a", "id"), col("d", "b", "id")}));
    EXPECT_EQ(4, t.RTTotalRecordCount());  // 3 was there
    EXPECT_EQ(0U, reports.Count());
    EXPECT_EQ(1, into(nullptr, {}));
    EXPECT_EQ(4U, reports.Count());
    EXPECT_EQ("Query insert failed to create a valid insert.", reports.LastText());
    CZelQryInsert empty(new CZelDbEntity("d", "t", nullptr), nullptr, queryOf({}, nullptr).release());
    EXPECT_EQ(E_RCNull, store.RSQueryInsert(&empty, &status, E_RBFalse, E_RBTrue));
    EXPECT_EQ(E_RCNoText, store.RSQueryInsert(nullptr, &status, E_RBFalse, E_RBTrue));
    EXPECT_EQ(E_RSENoDatabase, status);
}

// Copies of rows are freed once each, which memory checkers see.
TEST(CachedJoinTest, CachedTablesJoinAsPlainOnesDo) {
    const auto runAll = [](CZelStoreMgr &manager) {
        const auto run = [&](const char *oql) {
            CZelBag *found = nullptr;
            manager.RSMProcessOQLGetRecs(oql, &found, nullptr, nullptr);
            const CZelBagGuard<CZelRecord> owner(found);
            Texts texts;
            for (const CZelRecord *row : contents<CZelRecord>(found))
                texts.push_back(text(*row));
            std::sort(texts.begin(), texts.end());
            return texts;
        };
        run("create database a_b; create table a_b.x (id int, k int, name text); create table a_b.y (id int, k int, m "
            "int); create table a_b.empty (id int); create table a_b.into_it (p int, q int);"
            "create index IdxY on a_b.y (k);");
        for (int i = 0; i < 12; ++i) {
            const std::string n = std::to_string(i), k = std::to_string(i % 5);
            run(("insert into a_b.x (id, k, name) values (" + n + ", " + k + ", '" + std::string(60, 'n') + n + "');")
                    .c_str());
            run(("insert into a_b.y (id, k, m) values (" + n + ", " + k + ", 3);").c_str());
        }
        std::vector<Texts> all;
        for (const char *query :
             {"select * from a_b.x, a_b.y where a_b.x.k = a_b.y.k;", "select count(*) from a_b.x, a_b.y;",
              "select a_b.x.name, a_b.y.id from a_b.x, a_b.y where a_b.x.id = a_b.y.id and a_b.y.k < a_b.y.m;",
              "select a_b.x.id from a_b.y, a_b.empty, a_b.x where a_b.y.id = 40 or a_b.x.k = 2 and a_b.y.k = 3;",
              "select a_b.y.id into a_b.into_it from a_b.x, a_b.y where a_b.x.k = a_b.y.k and a_b.x.id < 3;",
              "select p from a_b.into_it;",
              "select id, k into a_b.into_it from a_b.y where k in ((select p from "
              "a_b.into_it));",
              "select * from a_b.into_it;",
              "select a_b.x.id from a_b.x, a_b.y where a_b.x.k in ((select q from a_b.into_it)) and a_b.y.id = 1;"})
            all.push_back(run(query));
        return all;
    };
    CZelStoreMgr plain(static_cast<CZelEngine *>(nullptr), nullptr);
    const std::vector<Texts> expected = runAll(plain);
    EXPECT_EQ(30U, expected[0].size());
    for (const CacheKind &kind : CACHE_KINDS) {
        const CacheHome home;
        const auto manager = CacheHome::open(kind);
        EXPECT_EQ(expected, runAll(*manager)) << kind.name;
    }
}

// A row of x stands in the result with its row of y or not at all, and the bags of the first table mix up no queries.
class JoinThreadsTest : public OqlFixture {};

TEST_F(JoinThreadsTest, JoinsThatStartAtOneTableRunWhileOthersDelete) {
    constexpr int ROWS = 12, ROUNDS = 60, THREADS = 8;
    run("create database d; create table d.x (id int not null primary key, k int);"
        "create table d.y (id int, k int); create index IdxK on d.y (k);");
    const auto change = [this](const std::string &oql) {
        manager.RSMProcessOQL(oql.c_str(), nullptr, nullptr, nullptr);
    };
    for (int i = 0; i < ROWS; ++i)
        change("insert into d.x (id, k) values (" + std::to_string(i) + ", " + std::to_string(i) +
               "); insert into d.y (id, k) values (" + std::to_string(i) + ", " + std::to_string(i) + ");");
    std::atomic<int> wrong{0}, seen{0};
    const auto look = [&](const char *query) {
        CZelBag *found = nullptr;
        manager.RSMProcessOQLGetRecs(query, &found, nullptr, nullptr);
        const CZelBagGuard<CZelRecord> owner(found);
        for (const CZelRecord *row : contents<CZelRecord>(found)) {
            const CZelVarBind *first = row->RRVbIterator()->RVBLHead();
            const CZelVarBind *second = row->RRVbIterator()->RVBLTail();
            wrong += first == second || first->RVBValue()->RAInt() != second->RVBValue()->RAInt() ? 1 : 0;
            ++seen;
        }
    };
    std::vector<std::thread> threads;
    for (int n = 0; n < THREADS; ++n)
        threads.emplace_back([&, n] {
            for (int round = 0; round < ROUNDS; ++round) {
                const std::string id = std::to_string((n * 5 + round) % ROWS);
                if (n < 2)
                    change("delete from d.x where id = " + id + "; insert into d.x (id, k) values (" + id + ", " + id +
                           ");");
                else
                    look(n % 2 == 0 ? "select d.x.id, d.y.id from d.y, d.x where d.x.k = d.y.k;"
                                    : "select d.x.k, d.y.k from d.y, d.x where d.x.id = d.y.id and d.x.id in ((select "
                                      "id from d.x));");
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(0, wrong.load());
    EXPECT_GT(seen.load(), ROUNDS * THREADS);
    EXPECT_EQ("12", value("select count(*) from d.x, d.y where d.x.k = d.y.k;"));
}
