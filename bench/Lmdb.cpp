#include "bench/Lmdb.h"

#include <concepts>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr std::size_t MAP_SIZE = std::size_t{4} << 30;

// What lies below a row's key, followed by both texts.
struct Packed {
    long long objectId;
    long long speed;
    int entityType;
    int status;
    float load;
    unsigned short addressLength;
    unsigned short descrLength;
};

void check(int code) {
    if (code == MDB_SUCCESS)
        return;
    std::fprintf(stderr, "lmdb: %s\n", mdb_strerror(code));
    std::exit(1);
}

// LMDB takes what it only reads without const.
MDB_val valueOf(const std::string &text) {
    return {text.size(), const_cast<char *>(text.data())};
}

template <std::integral Number>
MDB_val valueOf(Number &number) {
    return {sizeof number, &number};
}

std::string packed(const BenchRow &row) {
    const Packed head = {row.objectId,
                         row.speed,
                         row.entityType,
                         row.status,
                         row.load,
                         static_cast<unsigned short>(row.ipAddr.size()),
                         static_cast<unsigned short>(row.descr.size())};
    return std::string(reinterpret_cast<const char *>(&head), sizeof head) + row.ipAddr + row.descr;
}

Packed headOf(const MDB_val &value) {
    Packed head;
    std::memcpy(&head, value.mv_data, sizeof head);
    return head;
}

void unpack(const MDB_val &key, const MDB_val &value, BenchRow &row) {
    const Packed head = headOf(value);
    const char *texts = static_cast<const char *>(value.mv_data) + sizeof head;
    row.entityName.assign(static_cast<const char *>(key.mv_data), key.mv_size);
    row.entityType = head.entityType;
    row.objectId = head.objectId;
    row.ipAddr.assign(texts, head.addressLength);
    row.speed = head.speed;
    row.load = head.load;
    row.status = head.status;
    row.descr.assign(texts + head.addressLength, head.descrLength);
}

// Committed when it writes, given up when it only reads.
class Transaction {
public:
    Transaction(MDB_env *environment, bool reads) : m_reads(reads) {
        check(mdb_txn_begin(environment, nullptr, reads ? MDB_RDONLY : 0, &m_transaction));
    }
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;
    ~Transaction() {
        if (m_reads)
            mdb_txn_abort(m_transaction);
        else
            check(mdb_txn_commit(m_transaction));
    }

    MDB_txn *get() const { return m_transaction; }

private:
    MDB_txn *m_transaction = nullptr;
    bool m_reads;
};

class Cursor {
public:
    Cursor(const Transaction &transaction, MDB_dbi tree) { check(mdb_cursor_open(transaction.get(), tree, &m_cursor)); }
    Cursor(const Cursor &) = delete;
    Cursor &operator=(const Cursor &) = delete;
    ~Cursor() { mdb_cursor_close(m_cursor); }

    bool next(MDB_val &key, MDB_val &value) { return mdb_cursor_get(m_cursor, &key, &value, MDB_NEXT) == MDB_SUCCESS; }

private:
    MDB_cursor *m_cursor = nullptr;
};

}  // namespace

Lmdb::Lmdb(const std::string &folder) {
    check(mdb_env_create(&m_environment));
    check(mdb_env_set_maxdbs(m_environment, 3));
    check(mdb_env_set_mapsize(m_environment, MAP_SIZE));
    check(mdb_env_open(m_environment, folder.c_str(), MDB_NOSYNC, 0600));
    const Transaction transaction(m_environment, false);
    m_rows = open(transaction.get(), "t", 0);
    m_byType = open(transaction.get(), "ByType", MDB_INTEGERKEY | MDB_DUPSORT);
    m_byId = open(transaction.get(), "ById", MDB_INTEGERKEY);
}

Lmdb::~Lmdb() {
    mdb_env_close(m_environment);
}

void Lmdb::insertAll(const std::vector<BenchRow> &rows) {
    const Transaction transaction(m_environment, false);
    for (const BenchRow &row : rows)
        insert(transaction.get(), row);
}

void Lmdb::read(const std::string &entityName, BenchRow &row) {
    const Transaction transaction(m_environment, true);
    MDB_val key = valueOf(entityName), value;
    check(mdb_get(transaction.get(), m_rows, &key, &value));
    unpack(key, value, row);
}

std::vector<BenchRow> Lmdb::rowsBelowSpeed(long long speed) {
    std::vector<BenchRow> rows;
    const Transaction transaction(m_environment, true);
    Cursor cursor(transaction, m_rows);
    for (MDB_val key, value; cursor.next(key, value);)
        if (headOf(value).speed < speed)
            unpack(key, value, rows.emplace_back());
    return rows;
}

void Lmdb::setLoadBelowType(int type, float load) {
    const Transaction transaction(m_environment, false);
    Cursor cursor(transaction, m_byType);
    for (MDB_val found, name; cursor.next(found, name);) {
        if (*static_cast<const int *>(found.mv_data) >= type)
            break;
        change(transaction.get(), name, load, nullptr);
    }
}

int Lmdb::countOfStatus(int status) {
    const Transaction transaction(m_environment, true);
    Cursor cursor(transaction, m_rows);
    int count = 0;
    for (MDB_val key, value; cursor.next(key, value);)
        count += headOf(value).status == status ? 1 : 0;
    return count;
}

void Lmdb::update(const std::string &entityName, float load, int status) {
    const Transaction transaction(m_environment, false);
    change(transaction.get(), valueOf(entityName), load, &status);
}

void Lmdb::change(MDB_txn *transaction, MDB_val name, float load, const int *status) {
    MDB_val value;
    check(mdb_get(transaction, m_rows, &name, &value));
    std::string row(static_cast<const char *>(value.mv_data), value.mv_size);
    std::memcpy(&row[offsetof(Packed, load)], &load, sizeof load);
    if (status != nullptr)
        std::memcpy(&row[offsetof(Packed, status)], status, sizeof *status);
    value = valueOf(row);
    check(mdb_put(transaction, m_rows, &name, &value, 0));
}

MDB_dbi Lmdb::open(MDB_txn *transaction, const char *name, unsigned flags) {
    MDB_dbi tree;
    check(mdb_dbi_open(transaction, name, flags | MDB_CREATE, &tree));
    return tree;
}

void Lmdb::insert(MDB_txn *transaction, const BenchRow &row) {
    const std::string bytes = packed(row);
    auto type = static_cast<unsigned>(row.entityType);
    auto id = static_cast<std::size_t>(row.objectId);
    MDB_val name = valueOf(row.entityName), typeKey = valueOf(type), idKey = valueOf(id);
    MDB_val value = valueOf(bytes);
    check(mdb_put(transaction, m_rows, &name, &value, MDB_NOOVERWRITE));
    value = name;
    check(mdb_put(transaction, m_byType, &typeKey, &value, 0));
    value = name;
    check(mdb_put(transaction, m_byId, &idKey, &value, MDB_NOOVERWRITE));
}
