// SQLite with the rows of the bench.
#pragma once

#include <sqlite3.h>

#include <string>
#include <vector>

#include "bench/BenchRows.h"

// A compiled statement.
class SqliteStatement {
public:
    SqliteStatement(sqlite3 *database, const std::string &text);
    SqliteStatement(const SqliteStatement &) = delete;
    SqliteStatement &operator=(const SqliteStatement &) = delete;
    ~SqliteStatement();

    void bind(int place, const std::string &text);
    void bind(int place, long long number);
    void bind(int place, double number);
    bool step();  // is there a row?
    void reset();
    void fetch(BenchRow &row);  // all eight columns, copied
    sqlite3_stmt *get() const { return m_statement; }

private:
    sqlite3_stmt *m_statement = nullptr;
};

class Sqlite {
public:
    Sqlite();  // an empty table t with its indexes
    explicit Sqlite(const std::vector<BenchRow> &rows);
    // In a file, with a page cache of that many bytes, a write-ahead log and no waiting for the disk.
    Sqlite(const std::string &path, long cacheBytes);
    Sqlite(const Sqlite &) = delete;
    Sqlite &operator=(const Sqlite &) = delete;
    ~Sqlite();

    sqlite3 *get() const { return m_database; }
    void run(const std::string &text);
    void insertAll(const std::vector<BenchRow> &rows);  // prepared, one transaction

    // Prepares, steps through and finalizes a select over all columns, whose rows are kept until all are there;
    // the number of rows.
    long select(const std::string &text);

    static Sqlite &loaded();  // with benchRows(), made on first use

private:
    void defineTable();

    sqlite3 *m_database = nullptr;
};
