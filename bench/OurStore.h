// This store with the rows of the bench, in table b.t.
#pragma once

#include <string>
#include <vector>

#include "bench/BenchRows.h"
#include "foundations/base/CZelBag.h"
#include "storemgr/CZelStoreMgr.h"

class CZelAtom;
class CZelDbObject;
class CZelRecord;

class OurStore {
public:
    OurStore();  // an empty table with its indexes
    explicit OurStore(const std::vector<BenchRow> &rows);
    // The table in a persistent cache that keeps a share of its bytes in memory; with the rows that it held before.
    OurStore(const char *cacheName, float share);

    CZelStoreMgr &manager() { return m_manager; }
    void run(const std::string &text);                  // ends the program when anything is reported
    void insertAll(const std::vector<BenchRow> &rows);  // as records
    long select(const std::string &text);               // rows into new records, counted and freed
    long select(CZelBag &statements);                   // the same on a statement compiled once

    static OurStore &loaded();  // with benchRows(), made on first use

private:
    void defineTable();

    CZelStoreMgr m_manager;
};

CZelRecord *recordOf(const BenchRow &row);

// Statements parsed once; the value of the first condition of each can be set anew.
class OurStatement {
public:
    explicit OurStatement(const std::string &text);
    OurStatement(const OurStatement &) = delete;
    OurStatement &operator=(const OurStatement &) = delete;
    ~OurStatement();

    void setKey(const CZelAtom &key);  // of `where column = key`
    CZelBag &statements() { return m_statements; }

private:
    CZelBag m_statements;
};
