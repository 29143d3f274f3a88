// Looks at all rows of a cached table where they lie and keeps those that pass a test: their handles, copies of them,
// or only how many they are.
//
// The rows in the file are read from its front to its end, wherever updates have moved them. A large file is read in
// parts at the same time, when the test asks for columns: each thread picks them, tests the row, and makes its copy.
// Nothing is reported there. Rows in memory, and those that a thread can't give, are left to the caller's thread, which
// reports what can't be read, in the order of the file.
//
// Requires: the table lock is held as writer for as long as the scan lives.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "foundations/base/CZelROMPColumns.h"
#include "store/CZelNumberSet.h"

class CZelBag;
class CZelCacheWalk;
class CZelRecord;
class CZelRecordCache;

// A row as a test sees it: its columns, or its record where they could not be picked.
struct SZelScannedRow {
    std::size_t m_part;                // of the scan: one thread is in it
    std::size_t m_number;              // of the row's handle
    const CZelROMPColumns *m_columns;  // null: the record is there
    const CZelRecord *m_record;
};

class CZelCacheScan {
public:
    enum Form { COUNT, HANDLES, COPIES };

    // Called by several threads at the same time, for rows of different parts, and for some rows twice.
    using Test = std::function<bool(const SZelScannedRow &)>;

    // No columns: all of them, as records. Their names outlive the scan.
    CZelCacheScan(CZelRecordCache &cache, const CZelROMPColumns *columns, Form form);
    CZelCacheScan(const CZelCacheScan &) = delete;
    CZelCacheScan &operator=(const CZelCacheScan &) = delete;
    ~CZelCacheScan();

    std::size_t parts() const { return m_parts.size(); }
    void run(const Test &test);  // once

    std::size_t seen() const;    // rows that could be read
    std::size_t passed() const;  // of these
    // Adds what is kept, in the order of the handles. Copies become whose the bag is.
    void appendTo(CZelBag &rows);
    // The copy of a row, the caller's from now on; null for one that has not passed or is damaged.
    CZelRecord *takeCopy(std::size_t number);

    // The same for given rows: the handles of those that pass, in their order.
    static void select(CZelRecordCache &cache, const CZelBag &handles, CZelROMPColumns *columns, const Test &test,
                       CZelBag &passed);

private:
    // What one thread has found. Apart from the others', as its columns are: it is written to at each row.
    struct Part {
        CZelROMPColumns m_columns;
        std::size_t m_seen = 0;
        std::size_t m_passed = 0;
        std::vector<int> m_numbers;
        std::vector<CZelRecord *> m_copies;  // of these
        std::vector<int> m_left;             // pages whose rows are for the caller's thread, in ascending order
    };
    class Viewer;

    void runInParts(const Test &test);
    void run(CZelCacheWalk &&walk, const Test &test);
    bool take(std::size_t number, int row, const unsigned char *encoding, int length, const Test &test);
    void take(const CZelCacheWalk &walk, const Test &test);
    void keep(Part &part, std::size_t row, CZelRecord *copy) const;
    void putInOrder();
    CZelROMPColumns *columns() { return m_hasColumns ? &m_parts[0].m_columns : nullptr; }  // of the caller's thread

    CZelRecordCache &m_cache;
    bool m_hasColumns;
    Form m_form;
    std::vector<Part> m_parts;
    CZelNumberSet m_numbers;             // what is kept, once it is in order
    std::vector<CZelRecord *> m_copies;  // of these
};
