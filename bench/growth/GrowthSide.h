// The operations whose growth is measured, on a store with a table of any size: each is statements in text, all of
// them the same for both sides.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "bench/BenchRows.h"
#include "bench/PairTable.h"

// What a store must do for the operations.
struct GrowthStore {
    std::string name;
    std::string prefix;                               // of the tables' names
    std::function<void(const std::string &)> run;     // ends the program when it fails
    std::function<long(const std::string &)> select;  // rows into the application's memory; how many
    std::string begin, commit;                        // around many changes; may be empty
};

class GrowthSide {
public:
    // The first `size` rows stand in table t of the store, the others come and go. A quarter as many, at most 100,000,
    // are put into a table that refers to it. The rows outlive the object.
    GrowthSide(GrowthStore store, const std::vector<BenchRow> &rows, int size);

    const std::string &name() const { return m_store.name; }

    BenchRun insert();  // of the other rows
    BenchRun remove();  // of the same, by their keys
    BenchRun point();   // selects by key
    BenchRun range();   // one percent of the rows, by index; an item is a row of the answer
    BenchRun scan();    // without index or answer; an item is a row of the table
    BenchRun update();  // by key
    BenchRun join();    // an item is a row of the answer

private:
    void fillPorts();
    std::string table(const char *name) const { return m_store.prefix + name; }
    BenchRun runAll(const std::vector<std::string> &statements);

    GrowthStore m_store;
    const std::vector<BenchRow> &m_rows;
    std::size_t m_size;
    std::vector<std::string> m_keys;  // of rows in the table, at random
    BenchChanges m_changes{0};
};
