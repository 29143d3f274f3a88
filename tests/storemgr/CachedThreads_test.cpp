// Readers and writers on one store with record caches, which readers change too: every row that anybody sees is whole,
// and queries that ask each other's tables don't wait for each other for ever.
#include <atomic>
#include <thread>

#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "tests/support/CacheHome.h"
#include "tests/support/OqlFixture.h"

namespace {

constexpr int ROWS = 20;
constexpr int ROUNDS = 80;
constexpr int THREADS = 8;

class CachedThreadsTest : public testing::TestWithParam<CacheKind> {
protected:
    void SetUp() override {
        write(
            "create database d; create table d.t (id int not null primary key, a int, b int, note text);"
            "create table d.s (id int not null primary key, a int, b int, note text); create index ia on d.t (a);");
        for (int i = 0; i < ROWS; ++i)
            for (const char *table : {"d.t", "d.s"})
                write("insert into " + std::string(table) + " (id, a, b, note) values (" + std::to_string(i) +
                      ", 0, 0, 'a note of some length');");
    }

    void write(const std::string &text) { m_store->RSMProcessOQL(text.c_str(), nullptr, nullptr, nullptr); }

    // Sets both columns of a row to one value, or replaces the row.
    void change(int round, int row, const std::string &table) {
        const std::string id = std::to_string(row), n = std::to_string(round % 7);
        if (round % 5 != 0)
            return write("update " + table + " set a = " + n + ", b = " + n + " where id = " + id + ";");
        write("delete from " + table + " where id = " + id + "; insert into " + table + " (id, a, b, note) values (" +
              id + ", " + n + ", " + n + ", '" + std::string(static_cast<std::size_t>(round * 4), 'x') + "');");
    }

    void check(const char *query, bool asRecords) {
        CZelBag *results = nullptr;
        if (!asRecords) {
            m_store->RSMProcessOQL(query, &results, nullptr, nullptr);
            const CZelBagGuard<CZelAtom> owner(results);
            return;
        }
        m_store->RSMProcessOQLGetRecs(query, &results, nullptr, nullptr);
        const CZelBagGuard<CZelRecord> owner(results);
        for (CZelPointer *node = results->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
            const auto &record = *static_cast<const CZelRecord *>(node->RPData());
            if (record.RRValueOf("a")->RAInt() != record.RRValueOf("b")->RAInt())
                m_torn.store(true);
        }
    }

    void work(int thread) {
        static const char *const QUERIES[] = {
            "select * from d.t;", "select a, b from d.t where a = 3;", "select * from d.s where note like 'a%';",
            "select * from d.t where a in ((select a from d.s where a > 2)) and id < 15;",
            "select * from d.s where a in ((select a from d.t where b > 2)) or id in (1, 2);"};
        for (int round = 0; round < ROUNDS; ++round) {
            if (thread % 2 == 0)
                change(round, (round + thread) % ROWS, thread % 4 == 0 ? "d.t" : "d.s");
            else
                check(QUERIES[(round + thread) % 5], round % 2 == 0);
        }
    }

    CacheHome m_home;
    std::unique_ptr<CZelStoreMgr> m_store = CacheHome::open(GetParam());
    std::atomic<bool> m_torn{false};
};

TEST_P(CachedThreadsTest, EveryRowSeenIsWholeWhileOthersChangeIt) {
    std::vector<std::thread> threads;
    for (int i = 0; i < THREADS; ++i)
        threads.emplace_back([this, i] { work(i); });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_FALSE(m_torn);
    CZelBag *results = nullptr;
    m_store->RSMProcessOQLGetRecs("select * from d.t; select * from d.s;", &results, nullptr, nullptr);
    const CZelBagGuard<CZelRecord> owner(results);
    EXPECT_EQ(2 * ROWS, results->RBLength());
}

INSTANTIATE_TEST_SUITE_P(Kinds, CachedThreadsTest, testing::ValuesIn(CACHE_KINDS), kindName);

}  // namespace
