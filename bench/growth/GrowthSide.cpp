#include "bench/growth/GrowthSide.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace {

constexpr int KEYED = 10000;            // operations by key
constexpr std::size_t PORTS_SHARE = 4;  // a row in so many has a port
constexpr std::size_t MOST_PORTS = 100000;

// By name, as each side names the table in its own way.
constexpr const char *COLUMNS[] = {"EntityName", "EntityType", "ObjectId", "IpAddr",
                                   "Speed",      "Load",       "Status",   "Descr"};

}  // namespace

GrowthSide::GrowthSide(GrowthStore store, const std::vector<BenchRow> &rows, int size)
    : m_store(std::move(store)), m_rows(rows), m_size(static_cast<std::size_t>(size)) {
    for (const int position : randomPositions(KEYED, size, 31))
        m_keys.push_back(m_rows[static_cast<std::size_t>(position)].entityName);
    fillPorts();
}

void GrowthSide::fillPorts() {
    const std::vector<int> positions =
        randomPositions(static_cast<int>(std::min(m_size / PORTS_SHARE, MOST_PORTS)), static_cast<int>(m_size), 37);
    m_store.run("create table " + table("ports") + " (Id int not null primary key, Ref text);");
    std::vector<std::string> inserts;
    for (const int position : positions)
        inserts.push_back("insert into " + table("ports") + " (Id, Ref) values (" + std::to_string(inserts.size()) +
                          ", '" + m_rows[static_cast<std::size_t>(position)].entityName + "');");
    runAll(inserts);
}

BenchRun GrowthSide::insert() {
    std::vector<std::string> statements;
    for (std::size_t i = m_size; i < m_rows.size(); ++i)
        statements.push_back(insertText(m_rows[i], table("t").c_str()));
    return runAll(statements);
}

BenchRun GrowthSide::remove() {
    std::vector<std::string> statements;
    for (std::size_t i = m_size; i < m_rows.size(); ++i)
        statements.push_back("delete from " + table("t") + " where EntityName = '" + m_rows[i].entityName + "';");
    return runAll(statements);
}

BenchRun GrowthSide::point() {
    long found = 0;
    const double seconds = secondsOf([&] {
        for (const std::string &key : m_keys)
            found += m_store.select("select * from " + table("t") + " where EntityName = '" + key + "';");
    });
    if (found != static_cast<long>(m_keys.size())) {
        std::fprintf(stderr, "%s: %ld rows found by key\n", m_store.name.c_str(), found);
        std::exit(1);
    }
    return {found, seconds};
}

BenchRun GrowthSide::range() {
    long found = 0;
    const double seconds = secondsOf([&] {
        found = m_store.select("select * from " + table("t") + " where EntityType >= 42 and EntityType < 43;");
    });
    return {found, seconds};
}

BenchRun GrowthSide::scan() {
    const double seconds = secondsOf([&] { m_store.select("select * from " + table("t") + " where Speed = 99;"); });
    return {static_cast<long>(m_size), seconds};
}

BenchRun GrowthSide::update() {
    const std::string update = "update " + table("t") + " set " + m_changes.next().text() + " where EntityName = '";
    std::vector<std::string> statements;
    for (const std::string &key : m_keys)
        statements.push_back(update + key + "';");
    return runAll(statements);
}

BenchRun GrowthSide::join() {
    std::string columns;
    for (const char *column : COLUMNS)
        columns += (columns.empty() ? "" : ", ") + table("t") + "." + column;
    long found = 0;
    const double seconds = secondsOf([&] {
        found = m_store.select("select " + columns + " from " + table("t") + ", " + table("ports") + " where " +
                               table("ports") + ".Ref = " + table("t") + ".EntityName;");
    });
    return {found, seconds};
}

BenchRun GrowthSide::runAll(const std::vector<std::string> &statements) {
    const double seconds = secondsOf([&] {
        if (!m_store.begin.empty())
            m_store.run(m_store.begin);
        for (const std::string &statement : statements)
            m_store.run(statement);
        if (!m_store.commit.empty())
            m_store.run(m_store.commit);
    });
    return {static_cast<long>(statements.size()), seconds};
}
