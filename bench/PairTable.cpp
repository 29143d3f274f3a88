#include "bench/PairTable.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <vector>

#include "bench/BenchTable.h"

namespace {

constexpr int REPETITIONS = 7;
constexpr const char *OURS = "quintor";

// Lines without figures, and those that are complete already.
std::vector<BenchLine> &lines() {
    static std::vector<BenchLine> all;
    return all;
}

std::vector<BenchLine> &measures() {
    static std::vector<BenchLine> all;
    return all;
}

std::string sideOf(const std::string &name, const std::string &who) {
    return name + "/" + who;
}

void registerSide(const std::string &side, const BenchWork &work) {
    auto *registered = benchmark::RegisterBenchmark(side.c_str(), [work](benchmark::State &state) {
        for (auto _ : state) {
            const BenchRun run = work();
            state.SetIterationTime(run.seconds / static_cast<double>(run.items));
        }
    });
    registered->UseManualTime()->Iterations(1)->Repetitions(REPETITIONS);
}

void addColumn(BenchLine &line, const std::string &peer, const BenchWork &work) {
    line.peers.push_back({peer, 0, work == nullptr});
    if (work != nullptr)
        registerSide(sideOf(line.name, peer), work);
}

BenchLine &lineNamed(const std::string &name) {
    const auto found =
        std::find_if(lines().begin(), lines().end(), [&](const BenchLine &line) { return line.name == name; });
    if (found == lines().end()) {
        std::fprintf(stderr, "bench: there is no work named %s\n", name.c_str());
        std::exit(1);
    }
    return *found;
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

    void fill(BenchLine &line) const {
        line.ours = median(sideOf(line.name, OURS));
        for (BenchFigure &figure : line.peers)
            figure.value = median(sideOf(line.name, figure.peer));
    }

private:
    double median(const std::string &side) const {
        const auto found = m_times.find(side);
        return found == m_times.end() ? 0 : medianOf(found->second);
    }

    std::map<std::string, std::vector<double>> m_times;
};

}  // namespace

void addPair(const std::string &name, const char *unit, BenchWork ours, BenchWork theirs, const BenchPeer &peer) {
    lines().push_back({name, unit, 0, {}});
    registerSide(sideOf(name, OURS), ours);
    addColumn(lines().back(), peer.name, theirs);
}

void addPeer(const std::string &pair, const BenchPeer &peer, BenchWork theirs) {
    addColumn(lineNamed(pair), peer.name, theirs);
}

void addLimit(const std::string &name, const char *unit, BenchWork work) {
    lines().push_back({name, unit, 0, {}, BenchLine::LIMIT});
    registerSide(sideOf(name, OURS), work);
}

void addMeasure(const std::string &name, const char *unit, double ours, double peer) {
    measures().push_back({name, unit, ours, {{SQLITE.name, peer}}, BenchLine::SIZE});
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
    for (BenchLine &line : lines())
        collector.fill(line);
    std::vector<BenchLine> all = lines();
    const auto limits =
        std::find_if(all.begin(), all.end(), [](const BenchLine &line) { return line.kind == BenchLine::LIMIT; });
    all.insert(limits, measures().begin(), measures().end());
    std::fputs(benchTables(all).c_str(), stdout);
    return 0;
}
