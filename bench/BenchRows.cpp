#include "bench/BenchRows.h"

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <random>

namespace {

std::string printed(const char *format, unsigned a, unsigned b, unsigned c) {
    char text[96];
    std::snprintf(text, sizeof text, format, a, b, c);
    return text;
}

BenchRow makeRow(unsigned i, std::mt19937 &random) {
    BenchRow row;
    const unsigned shuffled = i * 2654435761U;  // keys don't come in order
    row.entityName = printed("node%08x.site%02u", shuffled, i % 97, 0);
    row.entityType = static_cast<int>(random() % BENCH_TYPES);
    row.objectId = static_cast<long long>(shuffled) * 16 + 7;
    row.ipAddr = printed("10.%u.%u.%u", i / 65536, i / 256 % 256, i % 256);
    row.speed = static_cast<long long>(random() % 100) * 1000000000LL;
    row.load = static_cast<float>(random() % 10000) / 100.0F;
    row.status = static_cast<int>(random() % 4);
    row.descr = printed("uplink %u to rack %u, row %05u", i % 8, i % 53, i % 99991);
    return row;
}

}  // namespace

std::vector<BenchRow> makeRows(int count) {
    std::mt19937 random(20261124);
    std::vector<BenchRow> rows;
    rows.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        rows.push_back(makeRow(static_cast<unsigned>(i), random));
    return rows;
}

const std::vector<BenchRow> &benchRows() {
    static const std::vector<BenchRow> rows = makeRows(BENCH_ROWS);
    return rows;
}

std::vector<int> randomPositions(int count, int rows, unsigned seed) {
    std::vector<int> all(static_cast<std::size_t>(rows));
    std::iota(all.begin(), all.end(), 0);
    std::mt19937 random(seed);
    std::shuffle(all.begin(), all.end(), random);
    std::vector<int> chosen;
    for (int i = 0; i < count; ++i)
        chosen.push_back(all[static_cast<std::size_t>(i % rows)]);
    return chosen;
}

std::vector<std::string> keysAt(const std::vector<int> &positions) {
    std::vector<std::string> keys;
    keys.reserve(positions.size());
    for (const int position : positions)
        keys.push_back(benchRows()[static_cast<std::size_t>(position)].entityName);
    return keys;
}

std::vector<std::string> BenchKeys::next() {
    return keysAt(randomPositions(m_count, BENCH_ROWS, m_seed + APART * m_repetition++));
}

std::string BenchChange::text() const {
    char text[64];
    std::snprintf(text, sizeof text, "Load = %.4f, Status = %d", static_cast<double>(load), status);
    return text;
}

BenchChange BenchChanges::next() {
    constexpr int WORKS = 8, LOWEST = 10, STATES = 100;
    const int number = ++m_repetition * WORKS + m_work;
    return {static_cast<float>(2 * number + 1) / (2 * WORKS), LOWEST + number % STATES};
}

std::string insertText(const BenchRow &row, const char *table) {
    char text[512];
    std::snprintf(text, sizeof text,
                  "insert into %s (EntityName, EntityType, ObjectId, IpAddr, Speed, Load, Status, Descr) values "
                  "('%s', %d, %lld, '%s', %lld, %.2f, %d, '%s');",
                  table, row.entityName.c_str(), row.entityType, row.objectId, row.ipAddr.c_str(), row.speed,
                  static_cast<double>(row.load), row.status, row.descr.c_str());
    return text;
}
