#include "store/CZelCacheWalk.h"

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelROMPColumns.h"
#include "foundations/port/CZelError.h"

namespace {

const CZelPointer *firstOf(const CZelDoubleList *handles) {
    return handles != nullptr ? static_cast<const CZelPointer *>(handles->RDLHead()) : nullptr;
}

}  // namespace

CZelCacheWalk::CZelCacheWalk(CZelRecordCache &cache, const CZelBag *handles, CZelROMPColumns *columns, Order order)
    : m_cache(cache), m_columns(columns), m_isByPlace(order == BY_PLACE && handles == nullptr && cache.RRCHasPlaces()) {
    if (m_isByPlace)
        m_inMemory = cache.RRCInMemory();
    else
        m_next = handles != nullptr ? handles->RBFirst() : firstOf(cache.RRCHandleIterator());
    advance();
}

void CZelCacheWalk::advance() {
    m_hasRow = false;
    if (m_isByPlace)
        findPlaced();
    else
        find(m_next);
}

// Goes to the first row from `node` on that can be read.
void CZelCacheWalk::find(const CZelPointer *node) {
    for (; node != nullptr && !m_hasRow; node = m_next) {
        m_next = CZelBag::RBNext(node);
        m_handle = static_cast<CZelAtom *>(node->RPData());
        m_hasRow = take(m_cache.RRCLookAt(m_handle, m_row));
    }
}

void CZelCacheWalk::findPlaced() {
    while (!m_hasRow && m_nextInMemory < m_inMemory.size()) {
        m_number = m_inMemory[m_nextInMemory++];
        m_hasRow = take(m_cache.RRCLookAt(handle(), m_row));
    }
    const std::vector<int> &atPages = m_cache.RRCAtPages();
    while (!m_hasRow && m_nextPage < atPages.size()) {
        m_number = atPages[m_nextPage++];
        m_hasRow = m_number != CZelRecordCache::NO_ROW && take(m_cache.RRCLookAtPage(m_nextPage - 1, m_row));
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

void CZelCacheWalk::keepHandle() {
    if (!m_isByPlace) {
        m_kept.push_back(m_handle);
        return;
    }
    if (!m_keepsHandles)
        m_keptHandles.reset(m_cache.RRCNumbers());
    m_keepsHandles = true;
    m_keptHandles.add(number());
}

void CZelCacheWalk::keepCopy() {
    if (!m_isByPlace) {
        m_kept.push_back(copy());
        return;
    }
    if (m_kept.empty())
        m_kept.resize(m_cache.RRCNumbers());
    m_kept[number()] = copy();
}

void CZelCacheWalk::appendKept(CZelBag &rows) const {
    for (void *row : m_kept)
        if (row != nullptr)
            rows.RBAdd(row);
    m_keptHandles.visit(
        [&](std::size_t number) { rows.RBAdd(static_cast<void *>(m_cache.RRCHandle(static_cast<int>(number)))); });
}
