// LMDB beside the tables with a cache: the same works on the same rows, in a scratch folder that is removed.
#include "bench/PairTable.h"
#include "bench/ScratchFolder.h"
#include "bench/works.h"

#ifdef QUINTOR_BENCH_LMDB

#include <memory>

#include "bench/Lmdb.h"

namespace {

constexpr int READS = 20000;
constexpr unsigned READ_SEED = 23, UPDATE_SEED = 29;
constexpr int STATUS = 3;
constexpr int UPDATED_TYPES = 10;
enum Work : int { MANY_ROWS, KEYED };
constexpr long long SLOW = 25000000000;                            // a quarter of the rows is below
constexpr int UPDATES = BENCH_ROWS / BENCH_TYPES * UPDATED_TYPES;  // about, as types are random

// The database, filled when it is first asked for.
class Folder {
public:
    Folder() { clear(); }

    Lmdb &database() {
        if (m_database == nullptr)
            m_database = std::make_unique<Lmdb>((m_scratch.path() / NAME).string());
        if (!m_isFilled)
            m_database->insertAll(benchRows());
        m_isFilled = true;
        return *m_database;
    }
    void close() { m_database.reset(); }
    void clear() {
        close();
        m_scratch.emptied(NAME);
        m_isFilled = false;
    }

private:
    static constexpr const char *NAME = "lmdb";

    ScratchFolder m_scratch;
    std::unique_ptr<Lmdb> m_database;  // goes before the folder
    bool m_isFilled = false;
};

Folder &folder() {
    static Folder only;
    return only;
}

BenchRun load() {
    folder().clear();
    return {BENCH_ROWS, secondsOf([] { folder().database(); })};
}

BenchRun readKeyed() {
    static BenchKeys readKeys(READS, READ_SEED);
    Lmdb &database = folder().database();
    const std::vector<std::string> keys = readKeys.next();
    BenchRow row;
    return {READS, secondsOf([&] {
                for (const std::string &key : keys)
                    database.read(key, row);
            })};
}

BenchRun scan() {
    Lmdb &database = folder().database();
    return {BENCH_ROWS, secondsOf([&] { database.rowsBelowSpeed(SLOW); })};
}

BenchRun update() {
    static BenchChanges changes(MANY_ROWS);
    Lmdb &database = folder().database();
    const BenchChange change = changes.next();
    return {UPDATES, secondsOf([&] { database.setLoadBelowType(UPDATED_TYPES, change.load); })};
}

BenchRun updateKeyed() {
    static BenchChanges changes(KEYED);
    static BenchKeys updateKeys(READS, UPDATE_SEED);
    Lmdb &database = folder().database();
    const BenchChange change = changes.next();
    const std::vector<std::string> keys = updateKeys.next();
    return {READS, secondsOf([&] {
                for (const std::string &key : keys)
                    database.update(key, change.load, change.status);
            })};
}

BenchRun restart() {
    folder().database();
    folder().close();
    return {BENCH_ROWS, secondsOf([] { folder().database().countOfStatus(STATUS); })};
}

BenchRun restartScan() {
    folder().database();
    folder().close();
    return {BENCH_ROWS, secondsOf([&] { folder().database().rowsBelowSpeed(SLOW); })};
}

}  // namespace

#else

namespace {

const BenchWork load, readKeyed, scan, update, updateKeyed, restart, restartScan;

}  // namespace

#endif

void addLmdbWorks() {
    const BenchPeer lmdb = {"lmdb"};
    addPeer("cache: load", lmdb, load);
    addPeer("cache: random point reads", lmdb, readKeyed);
    addPeer("cache: scan", lmdb, scan);
    addPeer("cache: update of 20,000 rows", lmdb, update);
    addPeer("cache: update by key, compiled once", lmdb, updateKeyed);
    addPeer("cache: restart to first answer", lmdb, restart);
    addPeer("cache: restart and scan", lmdb, restartScan);
}
