// Two threads at once, each with a statement of its own that was compiled once: two readers, or a writer beside a
// reader. SQLite's threads have a connection each to one file (write-ahead log, synchronous off, pages enough for all
// of it). An item of the two readers is a statement of either, so half the time of one reader is what two cores can
// reach. The longest time that a statement took tells whether one side keeps the other out.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

#include "bench/OurStore.h"
#include "bench/PairTable.h"
#include "bench/ScratchFolder.h"
#include "bench/Sqlite.h"
#include "bench/works.h"
#include "foundations/base/CZelAtom.h"

namespace {

using Clock = std::chrono::steady_clock;
using Step = std::function<void(const std::string &key)>;  // one statement

constexpr auto TIME = std::chrono::milliseconds(150);  // of one run
constexpr int KEYED = 50000;
constexpr int WORK = 7;  // no other one that updates the same rows
constexpr long CACHE_BYTES = 256L * 1024 * 1024;

// What one thread got through.
struct Share {
    long done = 0;
    double seconds = 0;
    double longest = 0;  // statement, in seconds
};

double secondsBetween(Clock::time_point from, Clock::time_point to) {
    return std::chrono::duration<double>(to - from).count();
}

Share keepDoing(const Step &step, unsigned seed, const std::atomic<bool> &isOver) {
    const std::vector<std::string> keys = keysAt(randomPositions(KEYED, BENCH_ROWS, seed));
    Share share;
    const Clock::time_point start = Clock::now();
    for (Clock::time_point before = start, now; !isOver.load(std::memory_order_relaxed); before = now) {
        step(keys[static_cast<std::size_t>(share.done) % keys.size()]);
        now = Clock::now();
        share.longest = std::max(share.longest, secondsBetween(before, now));
        ++share.done;
    }
    share.seconds = secondsBetween(start, Clock::now());
    return share;
}

std::vector<Share> race(const std::vector<Step> &steps) {
    std::atomic<bool> isOver{false};
    std::vector<Share> shares(steps.size());
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < steps.size(); ++i)
        threads.emplace_back([&, i] { shares[i] = keepDoing(steps[i], static_cast<unsigned>(31 + i), isOver); });
    std::this_thread::sleep_for(TIME);
    isOver = true;
    for (std::thread &thread : threads)
        thread.join();
    return shares;
}

Step ours(const std::string &text) {
    OurStore::loaded();
    const auto statement = std::make_shared<OurStatement>(text);
    return [statement](const std::string &key) {
        statement->setKey(CZelAtom(key.c_str()));
        OurStore::loaded().select(statement->statements());
    };
}

Step ourSelect() {
    return ours("select * from b.t where EntityName = '';");
}

Step ourUpdate() {
    static BenchChanges changes(WORK);
    return ours("update b.t set " + changes.next().text() + " where EntityName = '';");
}

// A file with the rows; it goes with the program.
class SqliteFile {
public:
    SqliteFile() { Sqlite(path(), CACHE_BYTES).insertAll(benchRows()); }

    static std::shared_ptr<Sqlite> connect() {
        static const SqliteFile file;
        auto connection = std::make_shared<Sqlite>(file.path(), CACHE_BYTES);
        connection->run("pragma busy_timeout=10000");
        connection->select("select * from t");  // into its cache
        return connection;
    }

private:
    std::string path() const { return (m_folder.path() / "t.db").string(); }
    ScratchFolder m_folder;
};

Step theirs(const std::shared_ptr<Sqlite> &connection, const std::string &text) {
    const auto statement = std::make_shared<SqliteStatement>(connection->get(), text);
    return [connection, statement, row = BenchRow()](const std::string &key) mutable {
        statement->bind(1, key);
        while (statement->step())
            statement->fetch(row);
        statement->reset();
    };
}

Step theirSelect(std::size_t reader) {
    static const std::shared_ptr<Sqlite> connections[] = {SqliteFile::connect(), SqliteFile::connect()};
    return theirs(connections[reader], "select * from t where EntityName = ?");
}

Step theirUpdate() {
    static const std::shared_ptr<Sqlite> connection = SqliteFile::connect();
    static BenchChanges changes(WORK);
    return theirs(connection, "update t set " + changes.next().text() + " where EntityName = ?");
}

std::vector<Step> ourMixed() {
    return {ourSelect(), ourUpdate()};
}

std::vector<Step> theirMixed() {
    return {theirSelect(0), theirUpdate()};
}

BenchRun allOf(const std::vector<Step> &steps) {
    BenchRun run{};
    for (const Share &share : race(steps))
        run = {run.items + share.done, std::max(run.seconds, share.seconds)};
    return run;
}

BenchRun statementsOf(std::size_t thread, const std::vector<Step> &steps) {
    const Share share = race(steps)[thread];
    return {share.done, share.seconds};
}

BenchRun longestOf(std::size_t thread, const std::vector<Step> &steps) {
    return {1, race(steps)[thread].longest};
}

}  // namespace

void addThreadWorks() {
    constexpr std::size_t READER = 0, WRITER = 1;
    addPair(
        "threads: select by key, one reader", "statement", [] { return allOf({ourSelect()}); },
        [] { return allOf({theirSelect(0)}); });
    addPair(
        "threads: select by key, two readers", "statement",
        [] {
            return allOf({ourSelect(), ourSelect()});
        },
        [] {
            return allOf({theirSelect(0), theirSelect(1)});
        });
    addPair(
        "threads: select by key beside a writer", "statement", [] { return statementsOf(READER, ourMixed()); },
        [] { return statementsOf(READER, theirMixed()); });
    addPair(
        "threads: update by key beside a reader", "statement", [] { return statementsOf(WRITER, ourMixed()); },
        [] { return statementsOf(WRITER, theirMixed()); });
    addPair(
        "threads: longest select beside a writer", "statement", [] { return longestOf(READER, ourMixed()); },
        [] { return longestOf(READER, theirMixed()); });
    addPair(
        "threads: longest update beside a reader", "statement", [] { return longestOf(WRITER, ourMixed()); },
        [] { return longestOf(WRITER, theirMixed()); });
}
