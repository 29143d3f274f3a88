// Statements from text to objects and away again, 10,000 different ones.
#include <cstdio>

#include "bench/OurStore.h"
#include "bench/PairTable.h"
#include "bench/Sqlite.h"
#include "bench/works.h"
#include "foundations/base/CZelStack.h"
#include "oql/CZelOQLParser.h"

namespace {

constexpr int STATEMENTS = 10000;

std::string selectText(const BenchRow &row, const char *table) {
    char text[256];
    std::snprintf(
        text, sizeof text,
        "select EntityName, Speed from %s where EntityType = %d and Status <> %d and Load < %.2f and IpAddr = "
        "'%s';",
        table, row.entityType, row.status, static_cast<double>(row.load), row.ipAddr.c_str());
    return text;
}

template <class Make>
std::vector<std::string> texts(Make make, const char *table) {
    std::vector<std::string> all;
    for (int i = 0; i < STATEMENTS; ++i)
        all.push_back(make(benchRows()[static_cast<std::size_t>(i)], table));
    return all;
}

BenchRun parseOurs(const std::vector<std::string> &all) {
    CZelOQLParser parser;
    const double seconds = secondsOf([&] {
        for (const std::string &text : all) {
            parser.ROPParse(text.c_str(), E_RBTrue);
            parser.ROPPurge();
        }
    });
    return {STATEMENTS, seconds};
}

BenchRun parseTheirs(const std::vector<std::string> &all) {
    static Sqlite database;
    const double seconds = secondsOf([&] {
        for (const std::string &text : all)
            const SqliteStatement statement(database.get(), text);
    });
    return {STATEMENTS, seconds};
}

template <class Make>
void addParse(const char *name, Make make) {
    addPair(
        name, "statement", [all = texts(make, "b.t")] { return parseOurs(all); },
        [all = texts(make, "t")] { return parseTheirs(all); });
}

}  // namespace

void addParseWorks() {
    addParse("parse: select of four terms", selectText);
    addParse("parse: insert of eight values", insertText);
}
