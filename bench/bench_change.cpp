// Updates and deletes by key, and of all rows, on 200,000 rows.
#include "bench/OurStore.h"
#include "bench/PairTable.h"
#include "bench/Sqlite.h"
#include "bench/works.h"
#include "foundations/base/CZelAtom.h"

namespace {

constexpr int UPDATES = 50000;
constexpr int DELETES = 20000;

std::string updateText(const char *table, const std::string &key) {
    return std::string("update ") + table + " set Load = 1.5, Status = 2 where EntityName = '" + key + "';";
}

std::string deleteText(const char *table, const std::string &key) {
    return std::string("delete from ") + table + " where EntityName = '" + key + "';";
}

const std::vector<std::string> &updated() {
    static const std::vector<std::string> keys = keysAt(randomPositions(UPDATES, BENCH_ROWS, 13));
    return keys;
}

const std::vector<int> &deletedPositions() {
    static const std::vector<int> positions = randomPositions(DELETES, BENCH_ROWS, 17);
    return positions;
}

const std::vector<std::string> &deleted() {
    static const std::vector<std::string> keys = keysAt(deletedPositions());
    return keys;
}

std::vector<BenchRow> deletedRows() {
    std::vector<BenchRow> rows;
    for (const int position : deletedPositions())
        rows.push_back(benchRows()[static_cast<std::size_t>(position)]);
    return rows;
}

void runOurs(const std::string &text) {
    OurStore::loaded().manager().RSMProcessOQL(text.c_str(), nullptr, nullptr, nullptr);
}

void runTheirs(const std::string &text) {
    SqliteStatement(Sqlite::loaded().get(), text).step();
}

BenchRun updateOurs() {
    OurStore::loaded();
    return {UPDATES, secondsOf([] {
                for (const std::string &key : updated())
                    runOurs(updateText("b.t", key));
            })};
}

BenchRun updateTheirs() {
    Sqlite::loaded();
    return {UPDATES, secondsOf([] {
                Sqlite::loaded().run("begin");
                for (const std::string &key : updated())
                    runTheirs(updateText("t", key));
                Sqlite::loaded().run("commit");
            })};
}

BenchRun updateCompiledOurs() {
    OurStore &store = OurStore::loaded();
    OurStatement statement("update b.t set Load = 1.5, Status = 2 where EntityName = '';");
    return {UPDATES, secondsOf([&] {
                for (const std::string &key : updated()) {
                    statement.setKey(CZelAtom(key.c_str()));
                    store.select(statement.statements());
                }
            })};
}

BenchRun updateCompiledTheirs() {
    Sqlite &database = Sqlite::loaded();
    SqliteStatement statement(database.get(), "update t set Load = 1.5, Status = 2 where EntityName = ?");
    return {UPDATES, secondsOf([&] {
                database.run("begin");
                for (const std::string &key : updated()) {
                    statement.bind(1, key);
                    statement.step();
                    statement.reset();
                }
                database.run("commit");
            })};
}

BenchRun updateAllOurs() {
    OurStore::loaded();
    return {BENCH_ROWS, secondsOf([] { runOurs("update b.t set Status = 1;"); })};
}

BenchRun updateAllTheirs() {
    Sqlite::loaded();
    return {BENCH_ROWS, secondsOf([] { runTheirs("update t set Status = 1;"); })};
}

BenchRun deleteOurs() {
    OurStore &store = OurStore::loaded();
    const double seconds = secondsOf([] {
        for (const std::string &key : deleted())
            runOurs(deleteText("b.t", key));
    });
    store.insertAll(deletedRows());
    return {DELETES, seconds};
}

BenchRun deleteTheirs() {
    Sqlite &database = Sqlite::loaded();
    const double seconds = secondsOf([&] {
        database.run("begin");
        for (const std::string &key : deleted())
            runTheirs(deleteText("t", key));
        database.run("commit");
    });
    database.insertAll(deletedRows());
    return {DELETES, seconds};
}

}  // namespace

void addChangeWorks() {
    addPair("update: by key, text", "statement", updateOurs, updateTheirs);
    addPair("update: by key, compiled once", "statement", updateCompiledOurs, updateCompiledTheirs);
    addPair("update: one column of all rows", "row", updateAllOurs, updateAllTheirs);
    addPair("delete: by key, text", "statement", deleteOurs, deleteTheirs);
}
