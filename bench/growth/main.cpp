// Measures how operations grow with the table and draws it. quintor_growth NAME ROWS...: adds the figures of each
// number of rows to NAME.csv, in place of those that it holds, and draws all of NAME.csv as NAME.svg.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <utility>

#include "bench/BenchTable.h"
#include "bench/OurStore.h"
#include "bench/Sqlite.h"
#include "bench/growth/GrowthPlot.h"
#include "bench/growth/GrowthSide.h"

namespace {

constexpr int REPETITIONS = 7;
constexpr int COMING_AND_GOING = 10000;
constexpr long BYTES_PER_ROW = 1600;  // of both stores and the rows they are filled with, at most

const std::vector<std::pair<const char *, BenchRun (GrowthSide::*)()>> OPERATIONS = {
    {"insert", &GrowthSide::insert},      {"delete by key", &GrowthSide::remove},
    {"point select", &GrowthSide::point}, {"indexed range per row", &GrowthSide::range},
    {"scan per row", &GrowthSide::scan},  {"update by key", &GrowthSide::update},
    {"join per row", &GrowthSide::join}};

long availableBytes() {
    std::ifstream file("/proc/meminfo");
    for (std::string line; std::getline(file, line);)
        if (long kilobytes = 0; std::sscanf(line.c_str(), "MemAvailable: %ld", &kilobytes) == 1)
            return kilobytes * 1024;
    return 0;
}

GrowthStore storeOf(OurStore &store) {
    return {"quintor",
            "b.",
            [&](const std::string &text) { store.run(text); },
            [&](const std::string &text) { return store.select(text); },
            "",
            ""};
}

GrowthStore storeOf(Sqlite &database) {
    return {"sqlite",
            "",
            [&](const std::string &text) { database.run(text); },
            [&](const std::string &text) { return database.select(text); },
            "begin",
            "commit"};
}

// The sides in turn, so that what else the machine does meets both.
std::vector<GrowthPoint> measure(std::vector<GrowthSide> &sides, int size) {
    std::map<std::pair<std::string, std::string>, std::vector<double>> times;
    for (int i = 0; i < REPETITIONS; ++i)
        for (const auto &[operation, work] : OPERATIONS)
            for (GrowthSide &side : sides) {
                const BenchRun run = (side.*work)();
                times[{side.name(), operation}].push_back(run.seconds * 1e9 / static_cast<double>(run.items));
            }
    std::vector<GrowthPoint> points;
    for (const GrowthSide &side : sides)
        for (const auto &[operation, work] : OPERATIONS)
            points.push_back({side.name(), operation, size, medianOf(times[{side.name(), operation}])});
    return points;
}

std::vector<GrowthPoint> measure(int size) {
    const std::vector<BenchRow> rows = makeRows(size + COMING_AND_GOING);
    const std::vector<BenchRow> first(rows.begin(), rows.begin() + size);
    OurStore ours(first);
    Sqlite theirs(first);
    std::vector<GrowthSide> sides;
    sides.emplace_back(storeOf(ours), rows, size);
    sides.emplace_back(storeOf(theirs), rows, size);
    return measure(sides, size);
}

std::string readFile(const std::string &path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

bool writeFile(const std::string &path, const std::string &text) {
    std::ofstream file(path);
    file << text << std::flush;
    if (!file)
        std::fprintf(stderr, "quintor_growth: %s can't be written\n", path.c_str());
    return static_cast<bool>(file);
}

bool addSize(std::vector<GrowthPoint> &all, int size) {
    if (size < 1000 || size > 50000000) {
        std::fprintf(stderr, "quintor_growth: sizes are from 1,000 to 50,000,000 rows\n");
        return false;
    }
    if (availableBytes() < size * BYTES_PER_ROW) {
        std::fprintf(stderr, "quintor_growth: %d rows are left out, as they don't fit into memory\n", size);
        return true;
    }
    std::fprintf(stderr, "  %d rows\n", size);
    mergeGrowth(all, measure(size));
    return true;
}

}  // namespace

int main(int argc, char **argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: quintor_growth NAME ROWS...\n");
        return 2;
    }
    const std::string name = argv[1];
    std::vector<GrowthPoint> all = growthPoints(readFile(name + ".csv"));
    for (int i = 2; i < argc; ++i)
        if (!addSize(all, std::atoi(argv[i])))
            return 2;
    return writeFile(name + ".csv", growthText(all)) && writeFile(name + ".svg", growthPlot(all)) ? 0 : 1;
}
