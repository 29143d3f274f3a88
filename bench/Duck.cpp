#include "bench/Duck.h"

#include <dlfcn.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// As the library lays it out; its fields but the last are history there.
struct Result {
    std::uint64_t columns, rows, changed;
    void *columnData;
    char *error;
    void *internal;
};

// A text of up to 12 bytes lies in place of its first four and a pointer.
struct Text {
    std::uint32_t length;
    char prefix[4];
    const char *pointer;
};

using Handle = void *;

struct Library {
    int (*open)(const char *path, Handle *database);
    int (*connect)(Handle database, Handle *connection);
    void (*disconnect)(Handle *connection);
    void (*close)(Handle *database);
    int (*query)(Handle connection, const char *text, Result *result);
    const char *(*resultError)(Result *result);
    void (*destroyResult)(Result *result);
    Handle (*fetchChunk)(Result result);
    std::uint64_t (*chunkSize)(Handle chunk);
    Handle (*chunkVector)(Handle chunk, std::uint64_t column);
    void *(*vectorData)(Handle vector);
    void (*destroyChunk)(Handle *chunk);
    int (*createAppender)(Handle connection, const char *schema, const char *table, Handle *appender);
    int (*appendText)(Handle appender, const char *text, std::uint64_t length);
    int (*appendInt)(Handle appender, std::int32_t number);
    int (*appendLong)(Handle appender, std::int64_t number);
    int (*appendFloat)(Handle appender, float number);
    int (*endRow)(Handle appender);
    int (*destroyAppender)(Handle *appender);
    bool isComplete = true;
};

template <class Function>
void find(void *handle, const char *name, Library &library, Function &function) {
    function = reinterpret_cast<Function>(dlsym(handle, name));
    library.isComplete = library.isComplete && function != nullptr;
}

Library functionsOf(void *handle) {
    Library all{};
    all.isComplete = handle != nullptr;
    if (handle == nullptr)
        return all;
    find(handle, "duckdb_open", all, all.open);
    find(handle, "duckdb_connect", all, all.connect);
    find(handle, "duckdb_disconnect", all, all.disconnect);
    find(handle, "duckdb_close", all, all.close);
    find(handle, "duckdb_query", all, all.query);
    find(handle, "duckdb_result_error", all, all.resultError);
    find(handle, "duckdb_destroy_result", all, all.destroyResult);
    find(handle, "duckdb_fetch_chunk", all, all.fetchChunk);
    find(handle, "duckdb_data_chunk_get_size", all, all.chunkSize);
    find(handle, "duckdb_data_chunk_get_vector", all, all.chunkVector);
    find(handle, "duckdb_vector_get_data", all, all.vectorData);
    find(handle, "duckdb_destroy_data_chunk", all, all.destroyChunk);
    find(handle, "duckdb_appender_create", all, all.createAppender);
    find(handle, "duckdb_append_varchar_length", all, all.appendText);
    find(handle, "duckdb_append_int32", all, all.appendInt);
    find(handle, "duckdb_append_int64", all, all.appendLong);
    find(handle, "duckdb_append_float", all, all.appendFloat);
    find(handle, "duckdb_appender_end_row", all, all.endRow);
    find(handle, "duckdb_appender_destroy", all, all.destroyAppender);
    return all;
}

const Library &duck() {
    static const Library library = functionsOf(dlopen(QUINTOR_BENCH_DUCKDB, RTLD_NOW | RTLD_LOCAL));
    return library;
}

void require(bool isSo, const char *what) {
    if (isSo)
        return;
    std::fprintf(stderr, "duckdb: %s\n", what);
    std::exit(1);
}

}  // namespace

std::size_t DuckChunk::size() const {
    return duck().chunkSize(m_chunk);
}

std::string DuckChunk::text(const void *texts, std::size_t row) {
    const auto &text = static_cast<const Text *>(texts)[row];
    return {text.length <= sizeof text.prefix + sizeof text.pointer ? text.prefix : text.pointer, text.length};
}

const void *DuckChunk::data(std::size_t column) const {
    return duck().vectorData(duck().chunkVector(m_chunk, column));
}

DuckAppender::DuckAppender(void *connection, const char *table) {
    require(duck().createAppender(connection, nullptr, table, &m_appender) == 0, "no appender");
}

DuckAppender::~DuckAppender() {
    require(duck().destroyAppender(&m_appender) == 0, "rows could not be written");
}

DuckAppender &DuckAppender::add(const std::string &text) {
    duck().appendText(m_appender, text.data(), text.size());
    return *this;
}

DuckAppender &DuckAppender::add(int number) {
    duck().appendInt(m_appender, number);
    return *this;
}

DuckAppender &DuckAppender::add(long long number) {
    duck().appendLong(m_appender, number);
    return *this;
}

DuckAppender &DuckAppender::add(float number) {
    duck().appendFloat(m_appender, number);
    return *this;
}

void DuckAppender::endRow() {
    require(duck().endRow(m_appender) == 0, "a row could not be added");
}

bool Duck::isHere() {
    return duck().isComplete;
}

Duck::Duck() {
    require(duck().open(nullptr, &m_database) == 0, "no database");
    require(duck().connect(m_database, &m_connection) == 0, "no connection");
    run("create table t (EntityName text not null primary key, EntityType int, ObjectId bigint not null unique, "
        "IpAddr text, Speed bigint, Load float, Status int, Descr text);");
    run("create index ByType on t (EntityType);");
}

Duck::Duck(const std::vector<BenchRow> &rows) : Duck() {
    insertAll(rows);
}

Duck::~Duck() {
    duck().disconnect(&m_connection);
    duck().close(&m_database);
}

void Duck::run(const std::string &statement) {
    ask(statement, [](const DuckChunk & /*chunk*/) {});
}

void Duck::ask(const std::string &query, const std::function<void(const DuckChunk &)> &take) {
    Result result{};
    if (duck().query(m_connection, query.c_str(), &result) != 0)
        require(false, duck().resultError(&result));
    while (Handle chunk = duck().fetchChunk(result)) {
        take(DuckChunk(chunk));
        duck().destroyChunk(&chunk);
    }
    duck().destroyResult(&result);
}

void Duck::insertAll(const std::vector<BenchRow> &rows) {
    DuckAppender all(m_connection, "t");
    for (const BenchRow &row : rows) {
        all.add(row.entityName).add(row.entityType).add(row.objectId).add(row.ipAddr);
        all.add(row.speed).add(row.load).add(row.status).add(row.descr).endRow();
    }
}

Duck &Duck::loaded() {
    static Duck database(benchRows());
    return database;
}
