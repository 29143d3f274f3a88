// Queries over several tables, and rows of a query put into a table. Both sides walk the tables in the same order and
// have the same indexes; every row of an answer is copied into the application's memory.
#include <string>
#include <utility>
#include <vector>

#include "bench/JoinRows.h"
#include "bench/OurStore.h"
#include "bench/PairTable.h"
#include "bench/Sqlite.h"
#include "bench/works.h"

namespace {

constexpr int INTO = 100000;  // rows, about

std::string portText(const char *table, const BenchPort &port) {
    return std::string("insert into ") + table + " (Id, Ref, Kind) values (" + std::to_string(port.id) + ", '" +
           port.ref + "', " + std::to_string(port.kind) + ");";
}

std::string noteText(const char *table, const BenchNote &note) {
    return std::string("insert into ") + table + " (NoteId, Port, Body) values (" + std::to_string(note.id) + ", " +
           std::to_string(note.port) + ", '" + NOTE_BODY + "');";
}

template <class Run>
void fill(const char *ports, const char *notes, Run run) {
    for (const BenchPort &port : benchPorts())
        run(portText(ports, port));
    for (const BenchNote &note : benchNotes())
        run(noteText(notes, note));
}

OurStore &ours() {
    static OurStore &store = [&]() -> OurStore & {
        OurStore &all = OurStore::loaded();
        all.run(
            "create table b.ports (Id int not null primary key, Ref text, Kind int);"
            "create table b.notes (NoteId int not null primary key, Port int, Body text);"
            "create table b.copy (EntityName text, ObjectId long64);");
        fill("b.ports", "b.notes", [&](const std::string &text) { all.run(text); });
        return all;
    }();
    return store;
}

Sqlite &theirs() {
    static Sqlite &database = [&]() -> Sqlite & {
        Sqlite &all = Sqlite::loaded();
        all.run(
            "create table ports (Id int not null primary key, Ref text, Kind int);"
            "create table notes (NoteId int not null primary key, Port int, Body text);"
            "create table copy (EntityName text, ObjectId bigint);begin");
        fill("ports", "notes", [&](const std::string &text) { all.run(text); });
        all.run("commit");
        return all;
    }();
    return database;
}

// A row of an answer, as numbers and texts in the application's memory.
struct Answer {
    long long id;
    std::string first, second;
};

long askTheirs(const std::string &text) {
    SqliteStatement query(theirs().get(), text);
    std::vector<Answer> rows;
    const int columns = sqlite3_column_count(query.get());
    while (query.step()) {
        Answer &row = rows.emplace_back();
        row.id = sqlite3_column_int64(query.get(), 0);
        for (int i = 1; i < columns; ++i)
            (i == 1 ? row.first : row.second) = reinterpret_cast<const char *>(sqlite3_column_text(query.get(), i));
    }
    return static_cast<long>(rows.size());
}

void addJoin(const char *name, long items, const std::string &oql, const std::string &sql) {
    addPair(
        name, "row",
        [=] {
            OurStore &store = ours();
            long rows = 0;
            const double seconds = secondsOf([&] { rows = store.select(oql); });
            return BenchRun{items != 0 ? items : rows, seconds};
        },
        [=] {
            theirs();
            long rows = 0;
            const double seconds = secondsOf([&] { rows = askTheirs(sql); });
            return BenchRun{items != 0 ? items : rows, seconds};
        });
}

BenchRun intoOurs() {
    OurStore &store = ours();
    const double seconds =
        secondsOf([&] { store.run("select EntityName, ObjectId into b.copy from b.t where EntityType < 50;"); });
    store.run("delete from b.copy;");
    return {INTO, seconds};
}

BenchRun intoTheirs() {
    Sqlite &database = theirs();
    const double seconds =
        secondsOf([&] { database.run("insert into copy select EntityName, ObjectId from t where EntityType < 50;"); });
    database.run("delete from copy;");
    return {INTO, seconds};
}

}  // namespace

void addJoinWorks() {
    const std::string two = " from b.t, b.ports where b.ports.Ref = b.t.EntityName";
    const std::string twoSql = " from ports cross join t where ports.Ref = t.EntityName";
    addJoin("join: 50,000 by 200,000 on a key", 0, "select b.ports.Id, b.t.Descr" + two + ";",
            "select ports.Id, t.Descr" + twoSql);
    addJoin(
        "join: three tables in a chain", 0,
        "select b.notes.NoteId, b.ports.Ref, b.t.Descr from b.t, b.ports, b.notes where b.notes.Port = b.ports.Id and "
        "b.ports.Ref = b.t.EntityName;",
        "select notes.NoteId, ports.Ref, t.Descr from notes cross join ports cross join t where notes.Port = ports.Id "
        "and ports.Ref = t.EntityName");
    addJoin("join: filter on the last table only", BENCH_PORTS,
            "select b.ports.Id, b.t.Descr" + two + " and b.t.Speed < 25000000000;",
            "select ports.Id, t.Descr" + twoSql + " and t.Speed < 25000000000");
    addJoin("join: count(*)", BENCH_PORTS, "select count(*)" + two + ";", "select count(*)" + twoSql);
    addPair("select into: 100,000 rows", "row", intoOurs, intoTheirs);
}
