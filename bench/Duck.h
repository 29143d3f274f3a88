// DuckDB with the rows of the bench, in memory. The library is loaded when it is here; only what is used of it is
// declared, as it comes without a header.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "bench/BenchRows.h"

// Some thousand rows of an answer, column by column. Texts are copied, as the chunk dies before the answer is used.
class DuckChunk {
public:
    explicit DuckChunk(void *chunk) : m_chunk(chunk) {}

    std::size_t size() const;
    template <class Number>
    const Number *numbers(std::size_t column) const {
        return static_cast<const Number *>(data(column));
    }
    const void *texts(std::size_t column) const { return data(column); }
    static std::string text(const void *texts, std::size_t row);

private:
    const void *data(std::size_t column) const;

    void *m_chunk;
};

// Adds rows to a table, value by value. They are in it when the object is gone.
class DuckAppender {
public:
    DuckAppender(void *connection, const char *table);
    DuckAppender(const DuckAppender &) = delete;
    DuckAppender &operator=(const DuckAppender &) = delete;
    ~DuckAppender();

    DuckAppender &add(const std::string &text);
    DuckAppender &add(int number);
    DuckAppender &add(long long number);
    DuckAppender &add(float number);
    void endRow();

private:
    void *m_appender = nullptr;
};

class Duck {
public:
    static bool isHere();

    Duck();  // an empty table t with its indexes; requires isHere()
    explicit Duck(const std::vector<BenchRow> &rows);
    Duck(const Duck &) = delete;
    Duck &operator=(const Duck &) = delete;
    ~Duck();

    void run(const std::string &statement);  // ends the program when it fails
    void ask(const std::string &query, const std::function<void(const DuckChunk &)> &take);

    void *connection() const { return m_connection; }

    static Duck &loaded();  // with benchRows(), made on first use

private:
    void insertAll(const std::vector<BenchRow> &rows);

    void *m_database = nullptr;
    void *m_connection = nullptr;
};
