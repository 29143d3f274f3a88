// The tables that the bench prints: what an item of each work costs this store and its peers, as Markdown.
#pragma once

#include <string>
#include <vector>

// A peer's figure; the others' are told beside ours. What wasn't measured is 0.
struct BenchFigure {
    std::string peer;
    double value;
    bool isMissing = false;  // the peer is not on this machine
};

struct BenchLine {
    enum Kind { TIME, SIZE, LIMIT };  // a time in nanoseconds, a plain number, what the machine takes: a time

    std::string name;
    std::string unit;  // what an item is
    double ours;
    std::vector<BenchFigure> peers;
    Kind kind = TIME;
};

// The middle one of the values; 0 for none.
double medianOf(std::vector<double> values);

// Nanoseconds with a unit that leaves at most four digits before the point.
std::string timeText(double nanoseconds);

// One table for each run of lines that have the same first peer, with columns for all peers of these lines; limits have
// their own. Lines without any figure are left out. A ratio above 1 means that this store is better.
std::string benchTables(const std::vector<BenchLine> &lines);

// Rows of cells as a Markdown table with aligned columns: the first row is the head, and `textColumns` columns are
// aligned to the left.
std::string markdownTable(const std::vector<std::vector<std::string>> &rows, std::size_t textColumns);
