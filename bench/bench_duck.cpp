// DuckDB beside what goes through many rows: scans, whole tables, joins, an update of all rows. The answers are copied
// into the application's memory, as those of the others are.
#include <cstdio>
#include <cstdlib>

#include "bench/Duck.h"
#include "bench/JoinRows.h"
#include "bench/PairTable.h"
#include "bench/works.h"

namespace {

const BenchPeer DUCKDB = {"duckdb"};

void takeRows(const DuckChunk &chunk, std::vector<BenchRow> &rows) {
    const void *names = chunk.texts(0), *addresses = chunk.texts(3), *descriptions = chunk.texts(7);
    const int *types = chunk.numbers<int>(1), *states = chunk.numbers<int>(6);
    const auto *ids = chunk.numbers<long long>(2), *speeds = chunk.numbers<long long>(4);
    const auto *loads = chunk.numbers<float>(5);
    for (std::size_t i = 0; i < chunk.size(); ++i)
        rows.push_back({DuckChunk::text(names, i), types[i], ids[i], DuckChunk::text(addresses, i), speeds[i], loads[i],
                        states[i], DuckChunk::text(descriptions, i)});
}

long select(const std::string &query) {
    std::vector<BenchRow> rows;
    Duck::loaded().ask(query, [&](const DuckChunk &chunk) { takeRows(chunk, rows); });
    return static_cast<long>(rows.size());
}

// The rows of t with the tables that are joined to it.
Duck &joined() {
    static Duck &database = []() -> Duck & {
        Duck &all = Duck::loaded();
        all.run("create table ports (Id int not null primary key, Ref text, Kind int);");
        all.run("create table notes (NoteId int not null primary key, Port int, Body text);");
        DuckAppender ports(all.connection(), "ports"), notes(all.connection(), "notes");
        for (const BenchPort &port : benchPorts())
            ports.add(port.id).add(port.ref).add(port.kind).endRow();
        for (const BenchNote &note : benchNotes())
            notes.add(note.id).add(note.port).add(NOTE_BODY).endRow();
        return all;
    }();
    return database;
}

// A row of a join: a number and a text or two.
struct Answer {
    long long id;
    std::string first, second;
};

void takeAnswers(const DuckChunk &chunk, int texts, std::vector<Answer> &rows) {
    const int *ids = chunk.numbers<int>(0);
    const void *first = chunk.texts(1), *second = texts == 2 ? chunk.texts(2) : nullptr;
    for (std::size_t i = 0; i < chunk.size(); ++i)
        rows.push_back(
            {ids[i], DuckChunk::text(first, i), second != nullptr ? DuckChunk::text(second, i) : std::string()});
}

long askJoin(const std::string &query, int texts) {
    std::vector<Answer> rows;
    joined().ask(query, [&](const DuckChunk &chunk) { takeAnswers(chunk, texts, rows); });
    return static_cast<long>(rows.size());
}

long count(const std::string &query) {
    long long rows = 0;
    joined().ask(query, [&](const DuckChunk &chunk) { rows = chunk.numbers<long long>(0)[0]; });
    return static_cast<long>(rows);
}

void add(const char *pair, BenchWork work) {
    addPeer(pair, DUCKDB, Duck::isHere() ? work : nullptr);
}

// Ends the program when the answer has another number of rows than it must have, 0 for any.
void addAsking(const char *pair, long rows, long items, const std::function<long()> &ask) {
    add(pair, [=] {
        joined();
        long found = 0;
        const double seconds = secondsOf([&] { found = ask(); });
        if (rows != 0 && found != rows) {
            std::fprintf(stderr, "duckdb: %ld rows for %s\n", found, pair);
            std::exit(1);
        }
        return BenchRun{items, seconds};
    });
}

BenchRun updateAll() {
    static BenchChanges changes(0);
    Duck &database = Duck::loaded();
    const std::string update = "update t set Status = " + std::to_string(changes.next().status) + ";";
    return {BENCH_ROWS, secondsOf([&] { database.run(update); })};
}

}  // namespace

void addDuckWorks() {
    const auto addScan = [](const char *pair, const std::string &condition, long rows = 0) {
        addAsking(pair, rows, BENCH_ROWS, [=] { return select("select * from t" + condition); });
    };
    addScan("scan: number", " where Speed = 99;");
    addScan("scan: text", " where IpAddr = '10.2.3.4';", 1);
    addScan("scan: like 'x%'", " where Descr like 'uplink 3 to rack 9, row 1%';");
    addScan("select: all rows", ";", BENCH_ROWS);
    add("update: one column of all rows", updateAll);
    const std::string two = " from ports join t on ports.Ref = t.EntityName";
    addAsking("join: 50,000 by 200,000 on a key", BENCH_PORTS, BENCH_PORTS,
              [=] { return askJoin("select ports.Id, t.Descr" + two, 1); });
    addAsking("join: three tables in a chain", BENCH_NOTES, BENCH_NOTES, [] {
        return askJoin(
            "select notes.NoteId, ports.Ref, t.Descr from notes join ports on notes.Port = ports.Id join t on "
            "ports.Ref = t.EntityName",
            2);
    });
    addAsking("join: filter on the last table only", 0, BENCH_PORTS,
              [=] { return askJoin("select ports.Id, t.Descr" + two + " where t.Speed < 25000000000", 1); });
    addAsking("join: count(*)", BENCH_PORTS, BENCH_PORTS, [=] { return count("select count(*)" + two); });
}
