// The rows that a persistent cache finds in its file.
#include <algorithm>
#include <memory>
#include <vector>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelPageView.h"
#include "foundations/base/CZelROMPColumns.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/ZelInParts.h"
#include "store/CZelCachedRecord.h"
#include "store/CZelRecordCache.h"
#include "store/CZelRowKeys.h"

namespace {

constexpr const char *DAMAGED = "CZelRecordCache: a row in the cache file is damaged and is passed over";
constexpr std::size_t LEAST_ROWS = 10000;  // for a thread of their own

std::size_t pageAt(long position) {
    return static_cast<std::size_t>(position / CZelPageView::PAGE_BYTES);
}

}  // namespace

// Gathers the chains that are found and their keys; makes entries of them at the end.
class CZelRecordCache::FileReader : public CZelPageFile::Reader {
public:
    FileReader(CZelRecordCache &cache, CZelRowKeys *keys) : m_cache(cache), m_keys(keys) {
        for (std::size_t column = 0; column < columns(); ++column)
            m_columns.add(keys->name(column));
    }

    void beginParts(std::size_t parts, std::size_t recordsAtMost) override;
    bool look(std::size_t part, long start, const unsigned char *encoding, int length) override;
    bool takeSeen(long start, int length) override;
    bool takeAllSeen() override;
    bool takeChain(long start, const unsigned char *encoding, int length) override;
    void enterRows();
    int status() const { return m_status; }

private:
    using Keys = CZelRowKeys::Pairs;

    // Rows that follow each other in the file. Begun and filled by one thread, whose memory is apart from others': two
    // that write into one cache line wait for each other.
    struct alignas(64) Part {
        CZelArray<CZelHandleTable::Found> m_rows;
        std::vector<Keys> m_keys;                            // by column
        std::vector<std::unique_ptr<CZelRecord>> m_records;  // where all rows stay in memory
        CZelROMPColumns m_columns;
        std::size_t m_next = 0;  // to be taken

        void begin(const CZelROMPColumns &columns, std::size_t count, std::size_t rowsAtMost);
    };

    std::size_t columns() const { return m_keys != nullptr ? m_keys->columns() : 0; }
    bool keepsRecords() const { return m_cache.m_type == E_RCTAllInCore; }
    Part &findSeen(long start);
    bool hasRoom();
    CZelAtom valueIn(const CZelRecord &record, std::size_t column) const;
    std::size_t rows() const;
    long lastStart() const;
    void enterPiece(std::size_t begin, std::size_t end);
    void enterRowsOf(Part &part, std::size_t begin, std::size_t end, long number);
    void noteRows(std::size_t rows);
    void giveKeys();

    CZelRecordCache &m_cache;
    CZelRowKeys *m_keys;
    CZelROMPColumns m_columns;
    std::vector<Part> m_seen;         // before it is known which of them count
    std::vector<Part> m_found;        // rows of the table, in the order of the file
    std::size_t m_recordsAtMost = 0;  // in each part
    std::size_t m_part = 0;           // to be taken from
    int m_status = E_RCOk;
};

void CZelRecordCache::FileReader::Part::begin(const CZelROMPColumns &columns, std::size_t count,
                                              std::size_t rowsAtMost) {
    m_columns = columns;
    m_rows.reserve(rowsAtMost);
    m_keys.resize(count);
    for (Keys &keys : m_keys)
        keys.reserve(rowsAtMost);
}

void CZelRecordCache::FileReader::beginParts(std::size_t parts, std::size_t recordsAtMost) {
    m_seen.resize(parts);
    m_recordsAtMost = recordsAtMost;
}

// What is damaged, or has no plain key, is left for takeChain.
bool CZelRecordCache::FileReader::look(std::size_t number, long start, const unsigned char *encoding, int length) {
    Part &part = m_seen[number];
    if (part.m_rows.capacity() == 0)
        part.begin(m_columns, columns(), number == 0 ? m_seen.size() * m_recordsAtMost : m_recordsAtMost);
    if (part.m_columns.pickChecked(encoding, length) != CZelROMPColumns::PICKED)
        return false;
    if (keepsRecords()) {
        auto record = std::make_unique<CZelRecord>();
        if (record->ROMDecode(encoding, length) != E_RCOk)
            return false;
        part.m_records.push_back(std::move(record));
    }
    part.m_rows.push_back({static_cast<int>(start), length});
    for (std::size_t column = 0; column < columns(); ++column)
        part.m_keys[column].push_back({part.m_columns.take(column), nullptr});
    return true;
}

bool CZelRecordCache::FileReader::takeAllSeen() {
    std::size_t count = 0;
    for (Part &part : m_seen) {
        part.m_keys.resize(columns());  // of one without rows too
        count += part.m_rows.size();
    }
    if (count > static_cast<std::size_t>(m_cache.m_handles.atMost()))
        return false;
    m_found = std::move(m_seen);
    return true;
}

// Not all that were seen count, but those that do come in the order of the file.
CZelRecordCache::FileReader::Part &CZelRecordCache::FileReader::findSeen(long start) {
    while (true) {
        Part &part = m_seen[m_part];
        while (part.m_next < part.m_rows.size() && part.m_rows[part.m_next].m_start != start)
            ++part.m_next;
        if (part.m_next < part.m_rows.size())
            return part;
        ++m_part;
    }
}

bool CZelRecordCache::FileReader::takeSeen(long start, int) {
    Part &part = findSeen(start);
    const std::size_t place = part.m_next++;
    if (!hasRoom())
        return false;
    Part &found = m_found.back();
    found.m_rows.push_back(part.m_rows[place]);
    for (std::size_t column = 0; column < columns(); ++column)
        found.m_keys[column].push_back(std::move(part.m_keys[column][place]));
    if (keepsRecords())
        found.m_records.push_back(std::move(part.m_records[place]));
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
    if (!hasRoom())
        return false;
    Part &found = m_found.back();
    found.m_rows.push_back({static_cast<int>(start), length});
    for (std::size_t column = 0; column < columns(); ++column)
        found.m_keys[column].push_back(
            {finding == CZelROMPColumns::SOUND ? valueIn(*record, column) : m_columns.take(column), nullptr});
    if (keepsRecords())
        found.m_records.push_back(std::move(record));
    return true;
}

CZelAtom CZelRecordCache::FileReader::valueIn(const CZelRecord &record, std::size_t column) const {
    const CZelAtom *value = record.RRValueOf(&m_keys->name(column));
    return value != nullptr ? CZelAtom::RAKey(*value) : CZelAtom();
}

// For one row more, in the only part.
bool CZelRecordCache::FileReader::hasRoom() {
    if (m_found.empty())
        m_found.emplace_back().begin(m_columns, columns(), 0);
    if (m_cache.m_handles.hasRoomFor(static_cast<long>(m_found.back().m_rows.size()) + 1))
        return true;
    m_status = E_RCNoHandle;
    return false;
}

std::size_t CZelRecordCache::FileReader::rows() const {
    std::size_t count = 0;
    for (const Part &part : m_found)
        count += part.m_rows.size();
    return count;
}

// By several threads, each for a piece of whole blocks of handles.
void CZelRecordCache::FileReader::enterRows() {
    constexpr std::size_t BLOCK = CZelHandleTable::BLOCK;
    const std::size_t count = rows();
    if (count == 0)
        return;
    m_cache.m_handles.beginMany(static_cast<long>(count));
    if (!keepsRecords())
        m_cache.m_atPage.resize(pageAt(lastStart()) + 1, NO_ROW);
    const std::size_t blocks = (count + BLOCK - 1) / BLOCK;
    const std::size_t pieces = ZelPartsFor(count, LEAST_ROWS);
    ZelInParts(pieces, [&](std::size_t piece) {
        enterPiece(ZelBeginOfPart(blocks, piece, pieces) * BLOCK,
                   std::min(ZelBeginOfPart(blocks, piece + 1, pieces) * BLOCK, count));
    });
    m_cache.m_handles.endMany();
    noteRows(count);
    giveKeys();
}

// Of the last row. Requires: there is one.
long CZelRecordCache::FileReader::lastStart() const {
    auto part = m_found.rbegin();
    while (part->m_rows.empty())
        ++part;
    return part->m_rows.back().m_start;
}

void CZelRecordCache::FileReader::enterPiece(std::size_t begin, std::size_t end) {
    std::size_t first = 0;
    for (Part &part : m_found) {
        const std::size_t behind = first + part.m_rows.size();
        const std::size_t from = std::max(begin, first), to = std::min(end, behind);
        if (from < to)
            enterRowsOf(part, from - first, to - first, static_cast<long>(from));
        first = behind;
    }
}

void CZelRecordCache::FileReader::enterRowsOf(Part &part, std::size_t begin, std::size_t end, long number) {
    CZelHandleTable &handles = m_cache.m_handles;
    const auto count = static_cast<long>(end - begin);
    handles.addPiece(number, part.m_rows.data() + begin, count, m_cache.m_persistent,
                     static_cast<unsigned long long>(number) + 1);
    for (std::size_t place = begin; place < end; ++place, ++number) {
        CZelAtom *handle = handles.handleAt(number);
        for (Keys &keys : part.m_keys)
            keys[place].m_object = handle;
        const long start = part.m_rows[place].m_start;
        if (keepsRecords())
            handles.find(*handle)->RCRSetPersistant(part.m_records[place].release(), E_RBFalse, start);
        else
            m_cache.m_atPage[pageAt(start)] = static_cast<int>(number);
    }
}

void CZelRecordCache::FileReader::noteRows(std::size_t rows) {
    m_cache.m_initialisedFromDisk = E_RBTrue;
    m_cache.m_arrivals = rows;
    for (const Part &part : m_found)
        for (const CZelHandleTable::Found &row : part.m_rows)
            m_cache.m_totalBytes += static_cast<unsigned long long>(row.m_size);
    if (keepsRecords())
        m_cache.m_inCoreBytes = m_cache.m_totalBytes;
}

void CZelRecordCache::FileReader::giveKeys() {
    for (Part &part : m_found)
        for (std::size_t column = 0; column < columns(); ++column)
            m_keys->give(column, std::move(part.m_keys[column]));
}

int CZelRecordCache::readFile(CZelRowKeys *keys) {
    FileReader reader(*this, keys);
    const int status = m_file.readAll(reader);
    if (status == E_RCOk)
        reader.enterRows();
    if (status == E_RCOpenFailed)
        return ZEL_FAIL(E_RCMalformed,
                        "The cache file maybe be corrupt.\n"
                        "Should be corrected by removing cache file or replacing with a valid cache.\n");
    return status != E_RCOk ? status : reader.status();
}
