#include "store/CZelCacheScan.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "store/CZelCacheWalk.h"
#include "store/CZelRecordCache.h"

namespace {

SZelScannedRow rowOf(const CZelCacheWalk &walk, const CZelROMPColumns *columns) {
    return walk.isPicked() ? SZelScannedRow{0, walk.number(), columns, nullptr}
                           : SZelScannedRow{0, walk.number(), nullptr, &walk.record()};
}

}  // namespace

// Takes rows out of the file, for the part in which they are read.
class CZelCacheScan::Viewer : public CZelPageFile::Viewer {
public:
    Viewer(CZelCacheScan &scan, const Test &test) : m_scan(scan), m_test(test), m_atPages(scan.m_cache.RRCAtPages()) {}

    void beginParts(std::size_t /*parts*/) override {}
    // The rows in memory, which others don't touch, while these are at the file already.
    void beginPart(std::size_t part) override {
        if (part == 0)
            m_scan.run(CZelCacheWalk(m_scan.m_cache, m_scan.columns(), CZelCacheWalk::IN_MEMORY), m_test);
    }
    bool wants(std::size_t page) const override {
        return page < m_atPages.size() && m_atPages[page] != CZelRecordCache::NO_ROW;
    }
    void view(std::size_t part, std::size_t page, const unsigned char *encoding, int length) override {
        if (!m_scan.take(part, m_atPages[page], encoding, length, m_test))
            leave(part, page);
    }
    void leave(std::size_t part, std::size_t page) override {
        m_scan.m_parts[part].m_left.push_back(static_cast<int>(page));
    }

private:
    CZelCacheScan &m_scan;
    const Test &m_test;
    const std::vector<int> &m_atPages;
};

CZelCacheScan::CZelCacheScan(CZelRecordCache &cache, const CZelROMPColumns *columns, Form form)
    : m_cache(cache),
      m_hasColumns(columns != nullptr),
      m_form(form),
      m_parts(m_hasColumns && cache.RRCHasPlaces() ? cache.RRCParts() : 1) {
    for (Part &part : m_parts)
        if (columns != nullptr)
            part.m_columns = *columns;
}

CZelCacheScan::~CZelCacheScan() {
    for (const CZelRecord *copy : m_copies)
        delete copy;
}

void CZelCacheScan::run(const Test &test) {
    if (m_parts.size() > 1)
        runInParts(test);
    else
        run(CZelCacheWalk(m_cache, columns(), CZelCacheWalk::ANYWHERE), test);
    if (m_form != COUNT)
        putInOrder();
}

void CZelCacheScan::runInParts(const Test &test) {
    Viewer viewer(*this, test);
    m_cache.RRCLookThrough(viewer);
    std::vector<int> left;
    for (const Part &part : m_parts)
        left.insert(left.end(), part.m_left.begin(), part.m_left.end());
    std::sort(left.begin(), left.end());
    run(CZelCacheWalk(m_cache, columns(), CZelCacheWalk::IN_FILE, &left), test);
}

void CZelCacheScan::run(CZelCacheWalk &&walk, const Test &test) {
    for (; walk.hasRow(); walk.advance())
        take(walk, test);
}

// False: the row is to be looked at by the caller's thread.
bool CZelCacheScan::take(std::size_t number, int row, const unsigned char *encoding, int length, const Test &test) {
    Part &part = m_parts[number];
    if (!part.m_columns.pick(encoding, length))
        return false;
    const bool isPassed = test({number, static_cast<std::size_t>(row), &part.m_columns, nullptr});
    std::unique_ptr<CZelRecord> copy;
    if (isPassed && m_form == COPIES) {
        copy = std::make_unique<CZelRecord>();
        if (!copy->ROMTryDecode(encoding, length))
            return false;
    }
    ++part.m_seen;
    if (isPassed)
        keep(part, static_cast<std::size_t>(row), copy.release());
    return true;
}

void CZelCacheScan::take(const CZelCacheWalk &walk, const Test &test) {
    Part &part = m_parts[0];
    ++part.m_seen;
    if (!test(rowOf(walk, &part.m_columns)))
        return;
    CZelRecord *copy = m_form == COPIES ? walk.copy() : nullptr;
    if (copy != nullptr || m_form != COPIES)
        keep(part, walk.number(), copy);
}

void CZelCacheScan::keep(Part &part, std::size_t row, CZelRecord *copy) const {
    ++part.m_passed;
    if (m_form != COUNT)
        part.m_numbers.push_back(static_cast<int>(row));
    if (m_form == COPIES)
        part.m_copies.push_back(copy);
}

void CZelCacheScan::putInOrder() {
    m_numbers.reset(m_cache.RRCNumbers());
    for (const Part &part : m_parts)
        for (const int row : part.m_numbers)
            m_numbers.add(static_cast<std::size_t>(row));
    if (m_form != COPIES)
        return;
    m_numbers.count();
    m_copies.resize(passed());
    for (const Part &part : m_parts)
        for (std::size_t i = 0; i < part.m_numbers.size(); ++i)
            m_copies[m_numbers.placeOf(static_cast<std::size_t>(part.m_numbers[i]))] = part.m_copies[i];
}

std::size_t CZelCacheScan::seen() const {
    std::size_t rows = 0;
    for (const Part &part : m_parts)
        rows += part.m_seen;
    return rows;
}

std::size_t CZelCacheScan::passed() const {
    std::size_t rows = 0;
    for (const Part &part : m_parts)
        rows += part.m_passed;
    return rows;
}

void CZelCacheScan::appendTo(CZelBag &rows) {
    for (CZelRecord *&copy : m_copies)
        rows.RBAdd(static_cast<void *>(std::exchange(copy, nullptr)));
    if (m_form == HANDLES)
        m_numbers.visit(
            [&](std::size_t number) { rows.RBAdd(static_cast<void *>(m_cache.RRCHandle(static_cast<int>(number)))); });
}

CZelRecord *CZelCacheScan::takeCopy(std::size_t number) {
    return m_numbers.holds(number) ? std::exchange(m_copies[m_numbers.placeOf(number)], nullptr) : nullptr;
}

void CZelCacheScan::select(CZelRecordCache &cache, const CZelBag &handles, CZelROMPColumns *columns, const Test &test,
                           CZelBag &passed) {
    for (CZelCacheWalk walk(cache, &handles, columns); walk.hasRow(); walk.advance())
        if (test(rowOf(walk, columns)))
            passed.RBAdd(static_cast<void *>(walk.handle()));
}
