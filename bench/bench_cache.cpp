// A persistent table of 200,000 rows with a tenth of its bytes in memory, beside SQLite on disk with a page cache of
// as many bytes. Both files lie in a scratch directory that is removed.
#include <cstdlib>
#include <filesystem>
#include <memory>

#include "bench/OurStore.h"
#include "bench/PairTable.h"
#include "bench/ScratchFolder.h"
#include "bench/Sqlite.h"
#include "bench/works.h"
#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelROMPer.h"
#include "foundations/base/CZelRecord.h"

namespace {

constexpr float SHARE = 0.1F;
constexpr int READS = 20000;
constexpr unsigned READ_SEED = 23, UPDATE_SEED = 29;
constexpr int UPDATED_TYPES = 10;
enum Work : int { MANY_ROWS, COMPILED };
constexpr int UPDATES = BENCH_ROWS / BENCH_TYPES * UPDATED_TYPES;  // about, as types are random

// Where both sides have their files.
class Scratch {
public:
    Scratch() {
        emptyOurs();
        emptyTheirs();
        setenv("QMTHOME", m_folder.path().c_str(), 1);
    }

    void emptyOurs() const { std::filesystem::create_directory(m_folder.emptied("var") / "solvantis"); }
    void emptyTheirs() const { m_folder.emptied("sqlite"); }
    std::string database() const { return (m_folder.path() / "sqlite" / "t.db").string(); }

private:
    ScratchFolder m_folder;
};

// The rows' bytes in our encoding, of which both sides may keep a tenth.
long bytesInMemory() {
    static const long bytes = [] {
        long sum = 0;
        for (const BenchRow &row : benchRows()) {
            const std::unique_ptr<CZelRecord> record(recordOf(row));
            CZelROMPer packet(CZelROMPer::INITIAL_SIZE);
            sum += record->ROMEncode(packet) == 1 ? packet.RRCreatedLength() : 0;
        }
        return static_cast<long>(static_cast<float>(sum) * SHARE);
    }();
    return bytes;
}

// Both stores, filled when first asked for; at most one of either is open.
class Pair {
public:
    OurStore &ours() {
        if (m_ours == nullptr) {
            m_ours = std::make_unique<OurStore>("bench", SHARE);
            if (!m_isOursFilled)
                m_ours->insertAll(benchRows());
            m_isOursFilled = true;
        }
        return *m_ours;
    }
    Sqlite &theirs() {
        if (m_theirs == nullptr) {
            m_theirs = std::make_unique<Sqlite>(m_scratch.database(), bytesInMemory());
            if (!m_areTheirsFilled)
                m_theirs->insertAll(benchRows());
            m_areTheirsFilled = true;
        }
        return *m_theirs;
    }
    void close() {
        m_ours.reset();
        m_theirs.reset();
    }
    void clearOurs() {
        m_ours.reset();
        m_scratch.emptyOurs();
        m_isOursFilled = false;
    }
    void clearTheirs() {
        m_theirs.reset();
        m_scratch.emptyTheirs();
        m_areTheirsFilled = false;
        bytesInMemory();
    }

private:
    Scratch m_scratch;
    std::unique_ptr<OurStore> m_ours;
    std::unique_ptr<Sqlite> m_theirs;
    bool m_isOursFilled = false;
    bool m_areTheirsFilled = false;
};

Pair &stores() {
    static Pair pair;
    return pair;
}

void readOurs(OurStore &store, const std::vector<std::string> &keys) {
    OurStatement statement("select * from b.t where EntityName = '';");
    for (const std::string &key : keys) {
        statement.setKey(CZelAtom(key.c_str()));
        if (store.select(statement.statements()) != 1)
            std::exit(1);
    }
}

void readTheirs(Sqlite &database, const std::vector<std::string> &keys) {
    SqliteStatement statement(database.get(), "select * from t where EntityName = ?");
    BenchRow row;
    for (const std::string &key : keys) {
        statement.bind(1, key);
        while (statement.step())
            statement.fetch(row);
        statement.reset();
    }
}

BenchRun loadOurs() {
    stores().clearOurs();
    return {BENCH_ROWS, secondsOf([] { stores().ours(); })};
}

BenchRun loadTheirs() {
    stores().clearTheirs();
    return {BENCH_ROWS, secondsOf([] { stores().theirs(); })};
}

BenchRun pointOurs() {
    static BenchKeys readKeys(READS, READ_SEED);
    OurStore &store = stores().ours();
    const std::vector<std::string> keys = readKeys.next();
    return {READS, secondsOf([&] { readOurs(store, keys); })};
}

BenchRun pointTheirs() {
    static BenchKeys readKeys(READS, READ_SEED);
    Sqlite &database = stores().theirs();
    const std::vector<std::string> keys = readKeys.next();
    return {READS, secondsOf([&] { readTheirs(database, keys); })};
}

// A quarter of the rows answer.
void scanRows(OurStore &store) {
    store.select("select * from b.t where Speed < 25000000000;");
}

void scanRows(Sqlite &database) {
    database.select("select * from t where Speed < 25000000000");
}

BenchRun scanOurs() {
    OurStore &store = stores().ours();
    return {BENCH_ROWS, secondsOf([&] { scanRows(store); })};
}

BenchRun scanTheirs() {
    Sqlite &database = stores().theirs();
    return {BENCH_ROWS, secondsOf([&] { scanRows(database); })};
}

std::string updateText(const char *table, const BenchChange &change) {
    return std::string("update ") + table + " set Load = " + std::to_string(change.load) + " where EntityType < " +
           std::to_string(UPDATED_TYPES) + ";";
}

std::string updateKeyedText(const char *table, const BenchChange &change) {
    return std::string("update ") + table + " set " + change.text() + " where EntityName = ";
}

BenchRun updateOurs() {
    static BenchChanges changes(MANY_ROWS);
    OurStore &store = stores().ours();
    const std::string update = updateText("b.t", changes.next());
    return {UPDATES, secondsOf([&] { store.run(update); })};
}

BenchRun updateTheirs() {
    static BenchChanges changes(MANY_ROWS);
    Sqlite &database = stores().theirs();
    const std::string update = updateText("t", changes.next());
    return {UPDATES, secondsOf([&] { database.run(update); })};
}

BenchRun updateKeyedOurs() {
    static BenchChanges changes(COMPILED);
    static BenchKeys updateKeys(READS, UPDATE_SEED);
    OurStore &store = stores().ours();
    OurStatement statement(updateKeyedText("b.t", changes.next()) + "'';");
    const std::vector<std::string> keys = updateKeys.next();
    return {READS, secondsOf([&] {
                for (const std::string &key : keys) {
                    statement.setKey(CZelAtom(key.c_str()));
                    store.select(statement.statements());
                }
            })};
}

// Each statement is a transaction, as each of ours is in the file when it is done.
BenchRun updateKeyedTheirs() {
    static BenchChanges changes(COMPILED);
    static BenchKeys updateKeys(READS, UPDATE_SEED);
    SqliteStatement statement(stores().theirs().get(), updateKeyedText("t", changes.next()) + "?");
    const std::vector<std::string> keys = updateKeys.next();
    return {READS, secondsOf([&] {
                for (const std::string &key : keys) {
                    statement.bind(1, key);
                    statement.step();
                    statement.reset();
                }
            })};
}

// The answer is one number, for which each row is looked at.
void countOurs(OurStore &store) {
    store.select("select count(*) from b.t where Status = 3;");
}

void countTheirs(Sqlite &database) {
    SqliteStatement statement(database.get(), "select count(*) from t where Status = 3");
    statement.step();
}

BenchRun restartOurs() {
    stores().ours();
    stores().close();
    return {BENCH_ROWS, secondsOf([] { countOurs(stores().ours()); })};
}

BenchRun restartTheirs() {
    stores().theirs();
    stores().close();
    return {BENCH_ROWS, secondsOf([] { countTheirs(stores().theirs()); })};
}

// Who reads little at the start has it still to read.
BenchRun restartScanOurs() {
    stores().ours();
    stores().close();
    return {BENCH_ROWS, secondsOf([] { scanRows(stores().ours()); })};
}

BenchRun restartScanTheirs() {
    stores().theirs();
    stores().close();
    return {BENCH_ROWS, secondsOf([] { scanRows(stores().theirs()); })};
}

}  // namespace

void addCacheWorks() {
    addPair("cache: load", "row", loadOurs, loadTheirs, SQLITE_ON_DISK);
    addPair("cache: random point reads", "row", pointOurs, pointTheirs, SQLITE_ON_DISK);
    addPair("cache: scan", "row", scanOurs, scanTheirs, SQLITE_ON_DISK);
    addPair("cache: update of 20,000 rows", "row", updateOurs, updateTheirs, SQLITE_ON_DISK);
    addPair("cache: update by key, compiled once", "statement", updateKeyedOurs, updateKeyedTheirs, SQLITE_ON_DISK);
    addPair("cache: restart to first answer", "row", restartOurs, restartTheirs, SQLITE_ON_DISK);
    addPair("cache: restart and scan", "row", restartScanOurs, restartScanTheirs, SQLITE_ON_DISK);
}
