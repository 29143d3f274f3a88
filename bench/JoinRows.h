// The further tables of the joins: ports refer to rows of t by their key, notes to ports. Seeded.
#pragma once

#include <string>
#include <vector>

struct BenchPort {
    int id;
    std::string ref;  // EntityName of a row, each of another one
    int kind;
};

struct BenchNote {
    int id;
    int port;
};

constexpr int BENCH_PORTS = 50000;
constexpr int BENCH_NOTES = 20000;
constexpr const char *NOTE_BODY = "a note of some length";  // of every note

const std::vector<BenchPort> &benchPorts();
const std::vector<BenchNote> &benchNotes();
