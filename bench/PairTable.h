// The same work done by this store and by its peers, run in turn by Google Benchmark; the tables of their medians.
#pragma once

#include <functional>
#include <string>

// What one run did: how many items in how much time, of the part that counts.
struct BenchRun {
    long items;
    double seconds;
};

using BenchWork = std::function<BenchRun()>;

// Whom works are measured against.
struct BenchPeer {
    std::string name;
};
inline const BenchPeer SQLITE = {"sqlite"};
inline const BenchPeer SQLITE_ON_DISK = {"sqlite disk"};

// `unit` says what an item is. Works are done several times: each leaves the data as it found it. Pairs with the same
// peer are added one behind the other: each change of the peer begins a table. A peer without work is shown as missing.
void addPair(const std::string &name, const char *unit, BenchWork ours, BenchWork theirs,
             const BenchPeer &peer = SQLITE);

// A further peer of a pair that has been added: a further column in its table.
void addPeer(const std::string &pair, const BenchPeer &peer, BenchWork theirs);

// What the machine itself takes for a step. Limits have a table of their own.
void addLimit(const std::string &name, const char *unit, BenchWork work);

// Figures taken before the works run, and no times, such as bytes a row; smaller is better. They end the table.
void addMeasure(const std::string &name, const char *unit, double ours, double peer);

// Runs what was added, as Google Benchmark's arguments tell, and prints the tables. The process's exit code.
int runPairs(int argc, char **argv);

// Times a function, for works that prepare and clean up outside the clock.
double secondsOf(const std::function<void()> &work);
