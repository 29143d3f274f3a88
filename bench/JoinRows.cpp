#include "bench/JoinRows.h"

#include "bench/BenchRows.h"

const std::vector<BenchPort> &benchPorts() {
    static const std::vector<BenchPort> ports = [] {
        std::vector<BenchPort> all;
        for (const std::string &key : keysAt(randomPositions(BENCH_PORTS, BENCH_ROWS, 19))) {
            const int id = static_cast<int>(all.size());
            all.push_back({id, key, id % 7});
        }
        return all;
    }();
    return ports;
}

const std::vector<BenchNote> &benchNotes() {
    static const std::vector<BenchNote> notes = [] {
        std::vector<BenchNote> all;
        for (unsigned id = 0; id < BENCH_NOTES; ++id)
            all.push_back({static_cast<int>(id), static_cast<int>(id * 2654435761U % BENCH_PORTS)});
        return all;
    }();
    return notes;
}
