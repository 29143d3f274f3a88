// 200,000 rows of eight columns and three indexes into an empty table.
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "bench/OurStore.h"
#include "bench/PairTable.h"
#include "bench/Sqlite.h"
#include "bench/works.h"

namespace {

std::vector<std::string> insertTexts(const char *table) {
    std::vector<std::string> texts;
    for (const BenchRow &row : benchRows())
        texts.push_back(insertText(row, table));
    return texts;
}

BenchRun textOurs() {
    static const std::vector<std::string> texts = insertTexts("b.t");
    OurStore store;
    return {BENCH_ROWS, secondsOf([&] {
                for (const std::string &text : texts)
                    store.manager().RSMProcessOQL(text.c_str(), nullptr, nullptr, nullptr);
            })};
}

BenchRun textTheirs() {
    static const std::vector<std::string> texts = insertTexts("t");
    Sqlite database;
    return {BENCH_ROWS, secondsOf([&] {
                database.run("begin");
                for (const std::string &text : texts)
                    SqliteStatement(database.get(), text).step();
                database.run("commit");
            })};
}

BenchRun recordsOurs() {
    OurStore store;
    return {BENCH_ROWS, secondsOf([&] { store.insertAll(benchRows()); })};
}

BenchRun preparedTheirs() {
    Sqlite database;
    return {BENCH_ROWS, secondsOf([&] { database.insertAll(benchRows()); })};
}

double residentBytes() {
    long pages = 0;
    if (FILE *file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%*s %ld", &pages) != 1)
            pages = 0;
        std::fclose(file);
    }
    return static_cast<double>(pages) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

// What a loaded store adds to the memory of a process of its own, a row.
template <class Store>
double bytesPerRow() {
    benchRows();
    int ends[2];
    if (pipe(ends) != 0)
        return 0;
    const pid_t child = fork();
    if (child == 0) {
        const double before = residentBytes();
        const Store store(benchRows());
        const double bytes = (residentBytes() - before) / BENCH_ROWS;
        const bool told = write(ends[1], &bytes, sizeof bytes) == static_cast<ssize_t>(sizeof bytes);
        _exit(told ? 0 : 1);
    }
    close(ends[1]);
    double bytes = 0;
    if (read(ends[0], &bytes, sizeof bytes) != static_cast<ssize_t>(sizeof bytes))
        bytes = 0;
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return bytes;
}

}  // namespace

void addInsertWorks() {
    addPair("insert: text", "row", textOurs, textTheirs);
    addPair("insert: records / prepared", "row", recordsOurs, preparedTheirs);
}

void addMemoryMeasure() {
    addMeasure("memory: indexes included", "row, bytes", bytesPerRow<OurStore>(), bytesPerRow<Sqlite>());
}
