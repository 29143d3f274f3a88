#include "bench/Sqlite.h"

#include <cstdio>
#include <cstdlib>

namespace {

void check(int code, sqlite3 *database) {
    if (code == SQLITE_OK || code == SQLITE_ROW || code == SQLITE_DONE)
        return;
    std::fprintf(stderr, "sqlite: %s\n", sqlite3_errmsg(database));
    std::exit(1);
}

const char *text(sqlite3_stmt *statement, int column) {
    return reinterpret_cast<const char *>(sqlite3_column_text(statement, column));
}

}  // namespace

SqliteStatement::SqliteStatement(sqlite3 *database, const std::string &statement) {
    check(sqlite3_prepare_v2(database, statement.c_str(), static_cast<int>(statement.size()), &m_statement, nullptr),
          database);
}

SqliteStatement::~SqliteStatement() {
    sqlite3_finalize(m_statement);
}

void SqliteStatement::bind(int place, const std::string &value) {
    sqlite3_bind_text(m_statement, place, value.c_str(), static_cast<int>(value.size()), SQLITE_STATIC);
}

void SqliteStatement::bind(int place, long long number) {
    sqlite3_bind_int64(m_statement, place, number);
}

void SqliteStatement::bind(int place, double number) {
    sqlite3_bind_double(m_statement, place, number);
}

bool SqliteStatement::step() {
    const int code = sqlite3_step(m_statement);
    check(code, sqlite3_db_handle(m_statement));
    return code == SQLITE_ROW;
}

void SqliteStatement::reset() {
    sqlite3_reset(m_statement);
}

void SqliteStatement::fetch(BenchRow &row) {
    row.entityName = text(m_statement, 0);
    row.entityType = sqlite3_column_int(m_statement, 1);
    row.objectId = sqlite3_column_int64(m_statement, 2);
    row.ipAddr = text(m_statement, 3);
    row.speed = sqlite3_column_int64(m_statement, 4);
    row.load = static_cast<float>(sqlite3_column_double(m_statement, 5));
    row.status = sqlite3_column_int(m_statement, 6);
    row.descr = text(m_statement, 7);
}

Sqlite::Sqlite() {
    check(sqlite3_open(":memory:", &m_database), m_database);
    defineTable();
}

Sqlite::Sqlite(const std::string &path, long cacheBytes) {
    check(sqlite3_open(path.c_str(), &m_database), m_database);
    run("pragma journal_mode=wal");
    run("pragma synchronous=off");
    run("pragma cache_size=-" + std::to_string(cacheBytes / 1024));
    defineTable();
}

void Sqlite::defineTable() {
    run("create table if not exists t (EntityName text not null primary key, EntityType int, ObjectId bigint not null "
        "unique, "
        "IpAddr text, Speed bigint, Load float, Status int, Descr text);");
    run("create index if not exists ByType on t (EntityType);");
}

Sqlite::Sqlite(const std::vector<BenchRow> &rows) : Sqlite() {
    insertAll(rows);
}

Sqlite::~Sqlite() {
    sqlite3_close(m_database);
}

void Sqlite::run(const std::string &statement) {
    check(sqlite3_exec(m_database, statement.c_str(), nullptr, nullptr, nullptr), m_database);
}

void Sqlite::insertAll(const std::vector<BenchRow> &rows) {
    run("begin");
    SqliteStatement insert(m_database, "insert into t values (?,?,?,?,?,?,?,?)");
    for (const BenchRow &row : rows) {
        insert.bind(1, row.entityName);
        insert.bind(2, static_cast<long long>(row.entityType));
        insert.bind(3, row.objectId);
        insert.bind(4, row.ipAddr);
        insert.bind(5, row.speed);
        insert.bind(6, static_cast<double>(row.load));
        insert.bind(7, static_cast<long long>(row.status));
        insert.bind(8, row.descr);
        insert.step();
        insert.reset();
    }
    run("commit");
}

long Sqlite::select(const std::string &statement) {
    SqliteStatement query(m_database, statement);
    std::vector<BenchRow> rows;
    while (query.step())
        query.fetch(rows.emplace_back());
    return static_cast<long>(rows.size());
}

Sqlite &Sqlite::loaded() {
    static Sqlite database(benchRows());
    return database;
}
