#include "bench/PairTable.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <vector>

namespace {

constexpr int REPETITIONS = 7;

struct Row {
    std::string name;
    std::string unit;
    BenchPeer peer;
};

struct Measure {
    std::string name;
    std::string unit;
    double ours;
    double peer;
};

std::vector<Row> &rows() {
    static std::vector<Row> all;
    return all;
}

std::vector<Measure> &measures() {
    static std::vector<Measure> all;
    return all;
}

void registerSide(const std::string &name, const BenchWork &work) {
    auto *side = benchmark::RegisterBenchmark(name.c_str(), [work](benchmark::State &state) {
        for (auto _ : state) {
            const BenchRun run = work();
            state.SetIterationTime(run.seconds / static_cast<double>(run.items));
        }
    });
    side->UseManualTime()->Iterations(1)->Repetitions(REPETITIONS);
}

double median(std::vector<double> times) {
    std::sort(times.begin(), times.end());
    return times.empty() ? 0 : times[times.size() / 2];
}

// Collects the time of every repetition, in nanoseconds an item; progress goes to standard error.
class Collector : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context & /*context*/) override { return true; }

    void ReportRuns(const std::vector<Run> &runs) override {
        for (const Run &run : runs)
            if (run.run_type == Run::RT_Iteration)
                m_times[run.run_name.function_name].push_back(run.real_accumulated_time * 1e9 /
                                                              static_cast<double>(run.iterations));
        if (!runs.empty())
            std::fprintf(stderr, "  %s\n", runs.front().run_name.function_name.c_str());
    }

    double medianOf(const std::string &side) const {
        const auto found = m_times.find(side);
        return found == m_times.end() ? 0 : median(found->second);
    }

private:
    std::map<std::string, std::vector<double>> m_times;
};

void printTime(double nanoseconds) {
    if (nanoseconds >= 1e6)
        std::printf("%9.2f ms", nanoseconds / 1e6);
    else if (nanoseconds >= 1e3)
        std::printf("%9.2f us", nanoseconds / 1e3);
    else
        std::printf("%9.1f ns", nanoseconds);
}

void printName(const std::string &name, const std::string &unit) {
    std::printf("| %-46s | %-10s | ", name.c_str(), unit.c_str());
}

void printRate(double nanoseconds) {
    std::printf("%9.2f M/s", 1e3 / nanoseconds);
}

void printHead(const BenchPeer &peer) {
    std::printf("| %-46s | %-10s | %12s | %12s | %7s |\n", "work", "per", "quintor", peer.name.c_str(), "ratio");
    for (const int width : {48, 12, 14, 14, 9})
        std::printf("|%s", std::string(static_cast<std::size_t>(width), '-').c_str());
    std::printf("|\n");
}

// `head` is the peer of the table that has been begun.
void printRow(const Row &row, const Collector &collector, std::string &head) {
    const double ours = collector.medianOf(row.name + "/quintor");
    const double peer = collector.medianOf(row.name + "/" + row.peer.name);
    if (ours <= 0 || peer <= 0)  // left out by a filter
        return;
    if (head != row.peer.name) {
        printHead(row.peer);
        head = row.peer.name;
    }
    const auto print = row.peer.showsRate ? printRate : printTime;
    printName(row.name, row.peer.showsRate ? row.unit + "s" : row.unit);
    print(ours);
    std::printf(" | ");
    print(peer);
    std::printf(" | %7.2f |\n", peer / ours);
}

void printMeasure(const Measure &measure) {
    printName(measure.name, measure.unit);
    std::printf("%12.0f | %12.0f | %7.2f |\n", measure.ours, measure.peer, measure.peer / measure.ours);
}

}  // namespace

void addPair(const std::string &name, const char *unit, BenchWork ours, BenchWork theirs, const BenchPeer &peer) {
    rows().push_back({name, unit, peer});
    registerSide(name + "/quintor", ours);
    registerSide(name + "/" + peer.name, theirs);
}

void addMeasure(const std::string &name, const char *unit, double ours, double peer) {
    measures().push_back({name, unit, ours, peer});
}

double secondsOf(const std::function<void()> &work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

int runPairs(int argc, char **argv) {
    std::vector<char *> arguments(argv, argv + argc);
    std::string interleave = "--benchmark_enable_random_interleaving=true";
    arguments.push_back(interleave.data());
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 2;
    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);
    std::string head;
    for (const Row &row : rows())
        printRow(row, collector, head);
    if (!measures().empty() && head != SQLITE.name)
        printHead(SQLITE);
    for (const Measure &measure : measures())
        printMeasure(measure);
    return 0;
}
