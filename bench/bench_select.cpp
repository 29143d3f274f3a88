// Questions to 200,000 rows; every row of an answer is copied into the application's memory.
#include <memory>

#include "bench/OurStore.h"
#include "bench/PairTable.h"
#include "bench/Sqlite.h"
#include "bench/works.h"
#include "foundations/base/CZelAtom.h"

namespace {

constexpr int KEYED = 50000;
constexpr int IN_KEYS = 1000;
constexpr int COUNTS = 200;

const std::vector<std::string> &keys() {
    static const std::vector<std::string> texts = keysAt(randomPositions(KEYED, BENCH_ROWS, 7));
    return texts;
}

std::string pointText(const char *table, const std::string &key) {
    return std::string("select * from ") + table + " where EntityName = '" + key + "';";
}

BenchRun pointTextOurs() {
    OurStore &store = OurStore::loaded();
    return {KEYED, secondsOf([&] {
                for (const std::string &key : keys())
                    store.select(pointText("b.t", key));
            })};
}

BenchRun pointTextTheirs() {
    Sqlite &database = Sqlite::loaded();
    return {KEYED, secondsOf([&] {
                for (const std::string &key : keys())
                    database.select(pointText("t", key));
            })};
}

BenchRun pointCompiledOurs() {
    OurStore &store = OurStore::loaded();
    OurStatement statement("select * from b.t where EntityName = '';");
    return {KEYED, secondsOf([&] {
                for (const std::string &key : keys()) {
                    statement.setKey(CZelAtom(key.c_str()));
                    store.select(statement.statements());
                }
            })};
}

BenchRun pointCompiledTheirs() {
    SqliteStatement statement(Sqlite::loaded().get(), "select * from t where EntityName = ?");
    BenchRow row;
    return {KEYED, secondsOf([&] {
                for (const std::string &key : keys()) {
                    statement.bind(1, key);
                    while (statement.step())
                        statement.fetch(row);
                    statement.reset();
                }
            })};
}

// A question by its condition; an item is a row of the answer, or of the table for a scan.
void addQuestion(const char *name, const std::string &condition, bool countsScanned) {
    const auto items = [countsScanned](long rows) { return countsScanned || rows == 0 ? long{BENCH_ROWS} : rows; };
    addPair(
        name, "row",
        [=] {
            long rows = 0;
            const double seconds =
                secondsOf([&] { rows = OurStore::loaded().select("select * from b.t" + condition); });
            return BenchRun{items(rows), seconds};
        },
        [=] {
            long rows = 0;
            Sqlite &database = Sqlite::loaded();
            const double seconds = secondsOf([&] { rows = database.select("select * from t" + condition); });
            return BenchRun{items(rows), seconds};
        });
}

std::string inCondition() {
    std::string text = " where EntityName in (";
    for (const std::string &key : keysAt(randomPositions(IN_KEYS, BENCH_ROWS, 11)))
        text += (text.back() == '(' ? "'" : ",'") + key + "'";
    return text + ");";
}

BenchRun countOurs() {
    OurStore &store = OurStore::loaded();
    return {COUNTS, secondsOf([&] {
                for (int i = 0; i < COUNTS; ++i)
                    store.select("select count(*) from b.t;");
            })};
}

BenchRun countTheirs() {
    Sqlite &database = Sqlite::loaded();
    return {COUNTS, secondsOf([&] {
                for (int i = 0; i < COUNTS; ++i)
                    SqliteStatement(database.get(), "select count(*) from t;").step();
            })};
}

}  // namespace

void addSelectWorks() {
    addPair("select: unique text key, text", "statement", pointTextOurs, pointTextTheirs);
    addPair("select: unique text key, compiled once", "statement", pointCompiledOurs, pointCompiledTheirs);
    addQuestion("select: range on indexed int, 1% of rows", " where EntityType >= 42 and EntityType < 43;", false);
    addQuestion("select: indexed int <, 1% of rows", " where EntityType < 1;", false);
    addQuestion("scan: number", " where Speed = 99;", true);
    addQuestion("scan: text", " where IpAddr = '10.2.3.4';", true);
    addQuestion("scan: like 'x%'", " where Descr like 'uplink 3 to rack 9, row 1%';", true);
    addQuestion("select: all rows", ";", false);
    addQuestion("select: in of 1,000 keys", inCondition(), false);
    addQuestion("select: and of two indexed conditions", " where EntityType = 17 and ObjectId < 20000000000;", false);
    addPair("select: count(*)", "statement", countOurs, countTheirs);
}
