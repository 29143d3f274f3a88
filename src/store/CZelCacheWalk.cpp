#include "store/CZelCacheWalk.h"

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelROMPColumns.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/ZelPrefetch.h"

namespace {

const CZelPointer *firstOf(const CZelDoubleList *handles) {
    return handles != nullptr ? static_cast<const CZelPointer *>(handles->RDLHead()) : nullptr;
}

}  // namespace

CZelCacheWalk::CZelCacheWalk(CZelRecordCache &cache, const CZelBag *handles, CZelROMPColumns *columns)
    : m_cache(cache), m_columns(columns), m_isByPlace(false) {
    m_next = handles != nullptr ? handles->RBFirst() : firstOf(cache.RRCHandleIterator());
    advance();
}

CZelCacheWalk::CZelCacheWalk(CZelRecordCache &cache, CZelROMPColumns *columns, Where where,
                             const std::vector<int> *pages)
    : m_cache(cache), m_columns(columns), m_isByPlace(cache.RRCHasPlaces()), m_where(where), m_pages(pages) {
    if (!m_isByPlace)
        m_next = firstOf(cache.RRCHandleIterator());
    else if (where != IN_FILE)
        m_inMemory = cache.RRCInMemory();
    advance();
}

void CZelCacheWalk::advance() {
    m_hasRow = false;
    if (!m_isByPlace)
        return find(m_next);
    findInMemory();
    if (!m_hasRow && m_where != IN_MEMORY)
        findInFile();
}

// Goes to the first row from `node` on that can be read.
void CZelCacheWalk::find(const CZelPointer *node) {
    for (; node != nullptr && !m_hasRow; node = m_next) {
        m_next = CZelBag::RBNext(node);
        m_handle = static_cast<CZelAtom *>(node->RPData());
        m_hasRow = take(m_cache.RRCLookAt(m_handle, m_row));
    }
}

void CZelCacheWalk::findInMemory() {
    while (!m_hasRow && m_nextInMemory < m_inMemory.size()) {
        lookAhead();
        m_number = m_inMemory[m_nextInMemory++];
        m_hasRow = take(m_cache.RRCLookAt(handle(), m_row));
    }
}

// Rows in memory lie far apart: the memory finds the entry, the record and its values while others are at work.
void CZelCacheWalk::lookAhead() const {
    constexpr std::size_t APART = 4;
    ZelPrefetch(handleAhead(3 * APART));
    if (const CZelAtom *handle = handleAhead(2 * APART))
        m_cache.RRCAskForRecord(*handle);
    if (const CZelAtom *handle = handleAhead(APART))
        m_cache.RRCAskForValues(*handle);
}

const CZelAtom *CZelCacheWalk::handleAhead(std::size_t rows) const {
    const std::size_t place = m_nextInMemory + rows;
    return place < m_inMemory.size() ? m_cache.RRCHandle(m_inMemory[place]) : nullptr;
}

void CZelCacheWalk::findInFile() {
    const std::vector<int> &atPages = m_cache.RRCAtPages();
    const std::size_t end = m_pages != nullptr ? m_pages->size() : atPages.size();
    while (!m_hasRow && m_nextPage < end) {
        const std::size_t page = m_pages != nullptr ? static_cast<std::size_t>((*m_pages)[m_nextPage]) : m_nextPage;
        ++m_nextPage;
        m_number = atPages[page];
        m_hasRow = m_number != CZelRecordCache::NO_ROW && take(m_cache.RRCLookAtPage(page, m_row));
    }
}

// Makes the row that was looked at the present one. One whose columns can't be picked is decoded.
bool CZelCacheWalk::take(bool isFound) {
    if (isFound && m_row.m_record == nullptr &&
        (m_columns == nullptr || !m_columns->pick(m_row.m_encoding, m_row.m_length))) {
        m_decoded.reset(CZelRecordCache::RRCCopyOf(m_row));
        m_row = {m_decoded.get(), nullptr, 0};
        isFound = m_decoded != nullptr;
    }
    if (!isFound)
        ZEL_REPORT(E_RCBadArgument, "CZelCacheWalk: a row that its cache can't give is passed over");
    return isFound;
}

std::size_t CZelCacheWalk::number() const {
    return static_cast<std::size_t>(m_isByPlace ? m_number : m_handle->RALong());
}
