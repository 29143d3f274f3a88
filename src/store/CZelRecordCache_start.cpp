// The rows that a persistent cache finds in its file.
#include <memory>
#include <vector>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelROMPColumns.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/port/CZelError.h"
#include "store/CZelCachedRecord.h"
#include "store/CZelRecordCache.h"
#include "store/CZelRowKeys.h"

namespace {

constexpr const char *DAMAGED = "CZelRecordCache: a row in the cache file is damaged and is passed over";

}  // namespace

// Makes an entry of each chain that is found, and notes its keys.
class CZelRecordCache::FileReader : public CZelPageFile::Reader {
public:
    FileReader(CZelRecordCache &cache, CZelRowKeys *keys) : m_cache(cache), m_keys(keys) {
        for (std::size_t column = 0; column < columns(); ++column)
            m_columns.add(keys->name(column));
    }

    void beginParts(std::size_t parts, std::size_t recordsAtMost) override;
    bool look(std::size_t part, long start, const unsigned char *encoding, int length) override;
    bool takeSeen(long start, int length) override;
    bool takeChain(long start, const unsigned char *encoding, int length) override;
    int status() const { return m_status; }

private:
    // What has been seen in a part of the file, in the order of the file.
    struct Part {
        CZelROMPColumns m_columns;
        std::vector<long> m_starts;
        std::vector<CZelAtom> m_values;                      // of each row one per column
        std::vector<std::unique_ptr<CZelRecord>> m_records;  // where all rows stay in memory
        std::size_t m_next = 0;                              // to be taken
    };

    std::size_t columns() const { return m_keys != nullptr ? m_keys->columns() : 0; }
    bool keepsRecords() const { return m_cache.m_type == E_RCTAllInCore; }
    void findSeen(long start);
    CZelAtom *enterRow(long start, int length, CZelRecord *record);
    CZelAtom valueIn(const CZelRecord &record, std::size_t column) const;

    CZelRecordCache &m_cache;
    CZelRowKeys *m_keys;
    CZelROMPColumns m_columns;
    std::vector<Part> m_parts;
    std::size_t m_part = 0;  // to be taken from
    int m_status = E_RCOk;
};

void CZelRecordCache::FileReader::beginParts(std::size_t parts, std::size_t recordsAtMost) {
    m_parts.resize(parts);
    for (Part &part : m_parts) {
        part.m_columns = m_columns;
        part.m_starts.reserve(recordsAtMost);
        part.m_values.reserve(recordsAtMost * columns());
    }
}

// What is damaged, or has no plain key, is left for takeChain.
bool CZelRecordCache::FileReader::look(std::size_t number, long start, const unsigned char *encoding, int length) {
    Part &part = m_parts[number];
    if (part.m_columns.pickChecked(encoding, length) != CZelROMPColumns::PICKED)
        return false;
    if (keepsRecords()) {
        auto record = std::make_unique<CZelRecord>();
        if (record->ROMDecode(encoding, length) != E_RCOk)
            return false;
        part.m_records.push_back(std::move(record));
    }
    part.m_starts.push_back(start);
    for (std::size_t column = 0; column < columns(); ++column)
        part.m_values.push_back(part.m_columns.take(column));
    return true;
}

// Not all that were seen count, but those that do come in the order of the file.
void CZelRecordCache::FileReader::findSeen(long start) {
    while (m_parts[m_part].m_next == m_parts[m_part].m_starts.size() ||
           m_parts[m_part].m_starts[m_parts[m_part].m_next] != start) {
        if (m_parts[m_part].m_next < m_parts[m_part].m_starts.size())
            ++m_parts[m_part].m_next;
        else
            ++m_part;
    }
}

bool CZelRecordCache::FileReader::takeSeen(long start, int length) {
    findSeen(start);
    Part &part = m_parts[m_part];
    const std::size_t place = part.m_next++;
    CZelAtom *handle = enterRow(start, length, keepsRecords() ? part.m_records[place].release() : nullptr);
    if (handle == nullptr)
        return false;
    for (std::size_t column = 0; column < columns(); ++column)
        m_keys->add(column, std::move(part.m_values[place * columns() + column]), handle);
    return true;
}

bool CZelRecordCache::FileReader::takeChain(long start, const unsigned char *encoding, int length) {
    const CZelROMPColumns::Finding finding = m_columns.pickChecked(encoding, length);
    std::unique_ptr<CZelRecord> record;
    if (keepsRecords() || finding == CZelROMPColumns::SOUND) {
        record = std::make_unique<CZelRecord>();
        if (record->ROMDecode(encoding, length) != E_RCOk)
            return false;
    } else if (finding == CZelROMPColumns::DAMAGED) {
        ZEL_REPORT(E_RCBadValue, DAMAGED);
        return false;
    }
    std::vector<CZelAtom> values;
    for (std::size_t column = 0; column < columns(); ++column)
        values.push_back(finding == CZelROMPColumns::SOUND ? valueIn(*record, column) : m_columns.take(column));
    CZelAtom *handle = enterRow(start, length, keepsRecords() ? record.release() : nullptr);
    if (handle == nullptr)
        return false;
    for (std::size_t column = 0; column < columns(); ++column)
        m_keys->add(column, std::move(values[column]), handle);
    return true;
}

CZelAtom CZelRecordCache::FileReader::valueIn(const CZelRecord &record, std::size_t column) const {
    const CZelAtom *value = record.RRValueOf(&m_keys->name(column));
    return value != nullptr ? CZelAtom(*value) : CZelAtom();
}

// Takes the record over. Null: no handle is left.
CZelAtom *CZelRecordCache::FileReader::enterRow(long start, int length, CZelRecord *record) {
    CZelAtom *handle = m_cache.m_handles.take();
    if (handle == nullptr) {
        delete record;
        m_status = E_RCNoHandle;
        return nullptr;
    }
    m_cache.enter(m_cache.m_handles.add(handle, m_cache.newEntry(record, E_RBFalse, {start, 0}, length)));
    m_cache.m_initialisedFromDisk = E_RBTrue;
    return handle;
}

int CZelRecordCache::readFile(CZelRowKeys *keys) {
    FileReader reader(*this, keys);
    const int status = m_file.readAll(reader);
    if (status == E_RCOpenFailed)
        return ZEL_FAIL(E_RCMalformed,
                        "The cache file maybe be corrupt.\n"
                        "Should be corrected by removing cache file or replacing with a valid cache.\n");
    return status != E_RCOk ? status : reader.status();
}
