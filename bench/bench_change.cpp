// Updates and deletes by key, and of all rows, on 200,000 rows.
#include "bench/OurStore.h"
#include "bench/PairTable.h"
#include "bench/Sqlite.h"
#include "bench/works.h"
#include "foundations/base/CZelAtom.h"

namespace {

constexpr int UPDATES = 50000;
constexpr int DELETES = 20000;
enum Work : int { BY_TEXT, COMPILED, ALL_ROWS };

std::string updateText(const char *table, const BenchChange &change) {
    return std::string("update ") + table + " set " + change.text() + " where EntityName = ";
}

std::string updateAllText(const char *table, const BenchChange &change) {
    return std::string("update ") + table + " set Status = " + std::to_string(change.status) + ";";
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
    static BenchChanges changes(BY_TEXT);
    OurStore::loaded();
    const std::string update = updateText("b.t", changes.next());
    return {UPDATES, secondsOf([&] {
                for (const std::string &key : updated())
                    runOurs(update + "'" + key + "';");
            })};
}

BenchRun updateTheirs() {
    static BenchChanges changes(BY_TEXT);
    Sqlite::loaded();
    const std::string update = updateText("t", changes.next());
    return {UPDATES, secondsOf([&] {
                Sqlite::loaded().run("begin");
                for (const std::string &key : updated())
                    runTheirs(update + "'" + key + "';");
                Sqlite::loaded().run("commit");
            })};
}

BenchRun updateCompiledOurs() {
    static BenchChanges changes(COMPILED);
    OurStore &store = OurStore::loaded();
    OurStatement statement(updateText("b.t", changes.next()) + "'';");
    return {UPDATES, secondsOf([&] {
                for (const std::string &key : updated()) {
                    statement.setKey(CZelAtom(key.c_str()));
                    store.select(statement.statements());
                }
            })};
}

BenchRun updateCompiledTheirs() {
    static BenchChanges changes(COMPILED);
    Sqlite &database = Sqlite::loaded();
    SqliteStatement statement(database.get(), updateText("t", changes.next()) + "?");
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
    static BenchChanges changes(ALL_ROWS);
    OurStore::loaded();
    const std::string update = updateAllText("b.t", changes.next());
    return {BENCH_ROWS, secondsOf([&] { runOurs(update); })};
}

BenchRun updateAllTheirs() {
    static BenchChanges changes(ALL_ROWS);
    Sqlite::loaded();
    const std::string update = updateAllText("t", changes.next());
    return {BENCH_ROWS, secondsOf([&] { runTheirs(update); })};
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
