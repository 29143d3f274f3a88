// The rows that both stores are filled with: seeded, so that every run sees the same.
#pragma once

#include <string>
#include <vector>

struct BenchRow {
    std::string entityName;  // unique key
    int entityType;          // 0 to 99
    long long objectId;      // unique
    std::string ipAddr;
    long long speed;
    float load;
    int status;         // 0 to 3
    std::string descr;  // about 30 bytes
};

constexpr int BENCH_ROWS = 200000;
constexpr int BENCH_TYPES = 100;  // each is 1% of the rows

std::vector<BenchRow> makeRows(int count);
const std::vector<BenchRow> &benchRows();  // BENCH_ROWS of them

// `count` positions of rows, in random order with a fixed seed; distinct while count <= rows.
std::vector<int> randomPositions(int count, int rows, unsigned seed);

// The EntityName of those rows, in that order: finding the question is no part of what is measured.
std::vector<std::string> keysAt(const std::vector<int> &positions);

// The keys that the repetitions of a work ask for, on every side the same: each time others, as what was asked for last
// lies in every store's memory. Works have different seeds.
class BenchKeys {
public:
    BenchKeys(int count, unsigned seed) : m_count(count), m_seed(seed) {}
    std::vector<std::string> next();

private:
    static constexpr unsigned APART = 1000;  // seeds of the works

    int m_count;
    unsigned m_seed;
    unsigned m_repetition = 0;
};

// What an update writes.
struct BenchChange {
    float load;
    int status;  // 10 to 109

    std::string text() const;  // both as assignments that all languages take
};

// What the repetitions of an update write, on every side the same: each time something else than before, as a store may
// save itself the trouble where nothing changes. Works on the same rows have different numbers, from 0 to 7.
class BenchChanges {
public:
    explicit BenchChanges(int work) : m_work(work) {}
    BenchChange next();

private:
    int m_work;
    int m_repetition = 0;
};

// The row as an insert statement that both languages take.
std::string insertText(const BenchRow &row, const char *table);
