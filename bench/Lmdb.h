// LMDB with the rows of the bench, in files of a folder: rows by their key, with the indexes that the others have, each
// a tree of its own. Its pages are the kernel's, mapped: it has no cache whose size could be told.
#pragma once

#include <lmdb.h>

#include <string>
#include <vector>

#include "bench/BenchRows.h"

class Lmdb {
public:
    explicit Lmdb(const std::string &folder);  // with the rows that it held before; no waiting for the disk
    Lmdb(const Lmdb &) = delete;
    Lmdb &operator=(const Lmdb &) = delete;
    ~Lmdb();

    void insertAll(const std::vector<BenchRow> &rows);        // one transaction
    void read(const std::string &entityName, BenchRow &row);  // a transaction; ends the program without such a row
    std::vector<BenchRow> rowsBelowSpeed(long long speed);    // by a walk through all, as the next
    int countOfStatus(int status);
    void update(const std::string &entityName, float load, int status);  // a transaction
    void setLoadBelowType(int type, float load);                         // by index, one transaction

private:
    MDB_dbi open(MDB_txn *transaction, const char *name, unsigned flags);
    void change(MDB_txn *transaction, MDB_val name, float load, const int *status);  // null: as it is
    void insert(MDB_txn *transaction, const BenchRow &row);

    MDB_env *m_environment = nullptr;
    MDB_dbi m_rows, m_byType, m_byId;
};
