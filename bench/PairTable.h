// Pairs of the same work done by this store and by its peer, run in turn by Google Benchmark; the table of their
// medians.
#pragma once

#include <functional>
#include <string>

// What one run did: how many items in how much time, of the part that counts.
struct BenchRun {
    long items;
    double seconds;
};

using BenchWork = std::function<BenchRun()>;

// Whom the work is measured against, and whether the table shows items a second instead of time an item.
struct BenchPeer {
    std::string name;
    bool showsRate;
};
inline const BenchPeer SQLITE = {"sqlite", false};
inline const BenchPeer SQLITE_ON_DISK = {"sqlite disk", true};

// `unit` says what an item is. Works are done several times: each leaves the data as it found it. Pairs with the same
// peer are added one behind the other: each change of the peer begins a table.
void addPair(const std::string &name, const char *unit, BenchWork ours, BenchWork theirs,
             const BenchPeer &peer = SQLITE);

// Figures taken before the works run, and no times, such as bytes a row; smaller is better. They end the table.
void addMeasure(const std::string &name, const char *unit, double ours, double peer);

// Runs what was added, as Google Benchmark's arguments tell, and prints the table. The process's exit code.
int runPairs(int argc, char **argv);

// Times a function, for works that prepare and clean up outside the clock.
double secondsOf(const std::function<void()> &work);
