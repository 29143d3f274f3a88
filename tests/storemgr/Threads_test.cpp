// Readers and writers on one store: every row that anybody sees is whole.
#include <atomic>
#include <thread>

#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "tests/support/OqlFixture.h"

namespace {

constexpr int ROWS = 20;
constexpr int ROUNDS = 150;
constexpr int THREADS = 8;

class ThreadsTest : public OqlFixture {
protected:
    void SetUp() override {
        run("create database d; create table d.t (id int not null primary key, a int, b int, note text);"
            "create index ia on d.t (a);");
        for (int i = 0; i < ROWS; ++i)
            write("insert into d.t (id, a, b, note) values (" + std::to_string(i) +
                  ", 0, 0, 'a note of some length');");
    }

    void write(const std::string &text) { manager.RSMProcessOQL(text.c_str(), nullptr, nullptr, nullptr); }

    // Sets both columns of a row to one value, or replaces the row.
    void change(unsigned round, int row) {
        const std::string id = std::to_string(row);
        const std::string n = std::to_string(round % 7);
        if (round % 5 != 0)
            return write("update d.t set a = " + n + ", b = " + n + " where id = " + id + ";");
        write("delete from d.t where id = " + id + "; insert into d.t (id, a, b, note) values (" + id + ", " + n +
              ", " + n + ", 'a note of some length');");
    }

    // In each row both columns are equal, however it was found.
    void check(const char *query, bool asRecords) {
        CZelBag *results = nullptr;
        if (!asRecords) {
            manager.RSMProcessOQL(query, &results, nullptr, nullptr);
            const CZelBagGuard<CZelAtom> owner(results);
            return;
        }
        manager.RSMProcessOQLGetRecs(query, &results, nullptr, nullptr);
        const CZelBagGuard<CZelRecord> owner(results);
        for (CZelPointer *node = results->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
            const auto &record = *static_cast<const CZelRecord *>(node->RPData());
            if (record.RRValueOf("a")->RAInt() != record.RRValueOf("b")->RAInt())
                torn.store(true);
        }
    }

    std::atomic<bool> torn{false};
};

}  // namespace

TEST_F(ThreadsTest, EveryRowSeenIsWholeWhileOthersChangeIt) {
    std::vector<std::thread> threads;
    for (int t = 0; t < THREADS; ++t)
        threads.emplace_back([this, t] {
            for (unsigned round = 0; round < ROUNDS; ++round) {
                if (t % 2 == 0)
                    change(round + static_cast<unsigned>(t),
                           static_cast<int>(round * 7 + static_cast<unsigned>(t)) % ROWS);
                else
                    check(round % 2 == 0 ? "select * from d.t where a >= 2;"
                                         : "select a, b from d.t where note like 'a%';",
                          round % 3 != 0);
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_FALSE(torn.load());
    EXPECT_EQ(ROWS, std::stoi(value("select count(*) from d.t;")));
}

TEST_F(ThreadsTest, TablesComeAndGoWhileOthersReadThem) {
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([this, t] {
            const std::string table = "d.x" + std::to_string(t / 2);
            for (int round = 0; round < ROUNDS; ++round) {
                if (t % 2 == 0)
                    write("create table " + table + " (k int not null unique); insert into " + table +
                          " (k) values (1); drop table " + table + ";");
                else
                    check(("select * from " + table + ";").c_str(), false);
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ("['t']", value("show tables from d;"));
}
