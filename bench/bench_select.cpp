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

const std::vector<int> &keys() {
    static const std::vector<int> positions = randomPositions(KEYED, BENCH_ROWS, 7);
    return positions;
}

const std::string &keyAt(int position) {
    return benchRows()[static_cast<std::size_t>(position)].entityName;
}

std::string pointText(const char *table, int position) {
    return std::string("select * from ") + table + " where EntityName = '" + keyAt(position) + "';";
}

BenchRun pointTextOurs() {
    OurStore &store = OurStore::loaded();
    return {KEYED, secondsOf([&] {
                for (const int position : keys())
                    store.select(pointText("b.t", position));
            })};
}

BenchRun pointTextTheirs() {
    Sqlite &database = Sqlite::loaded();
    return {KEYED, secondsOf([&] {
                for (const int position : keys())
                    database.select(pointText("t", position));
            })};
}

BenchRun pointCompiledOurs() {
    OurStore &store = OurStore::loaded();
    OurStatement statement("select * from b.t where EntityName = '';");
    return {KEYED, secondsOf([&] {
                for (const int position : keys()) {
                    statement.setKey(CZelAtom(keyAt(position).c_str()));
                    store.select(statement.statements());
                }
            })};
}

BenchRun pointCompiledTheirs() {
    SqliteStatement statement(Sqlite::loaded().get(), "select * from t where EntityName = ?");
    BenchRow row;
    return {KEYED, secondsOf([&] {
                for (const int position : keys()) {
                    statement.bind(1, keyAt(position));
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
    for (const int position : randomPositions(IN_KEYS, BENCH_ROWS, 11))
        text += (text.back() == '(' ? "'" : ",'") + keyAt(position) + "'";
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
