#include "foundations/base/CZelPageView.h"

#include "foundations/base/ZelCrc32c.h"

namespace {

bool isZero(const unsigned char *page) {
    return page[0] == 0 && std::memcmp(page, page + 1, CZelPageView::PAGE_BYTES - 1) == 0;
}

bool isPosition(long position) {
    return position % CZelPageView::PAGE_BYTES == 0 && position < CZelPageView::LAST_PAGE;
}

}  // namespace

CZelPageView::Condition CZelPageView::condition() const {
    if (isZero(m_page))
        return EMPTY;
    const bool isOurs = m_page[MAGIC] == 'Z' && m_page[MAGIC + 1] == 'P' && m_page[VERSION] == LAYOUT_VERSION;
    if (!isOurs || get<std::uint32_t>(CHECKSUM) != checksum())
        return DAMAGED;
    return fitsTogether() ? SOUND : DAMAGED;
}

std::uint32_t CZelPageView::checksum() const {
    static_assert(PAGE_BYTES == 512 && CHECKSUM == 40);
    return ZelCrc32cOfPage(m_page);
}

bool CZelPageView::fitsTogether() const {
    const auto total = get<std::uint32_t>(TOTAL), length = get<std::uint32_t>(DATA);
    return total > 0 && total <= LAST_PAGE && length > 0 && length <= PAGE_BYTES - HEADER_BYTES && length <= total &&
           (next() == LAST_PAGE || isPosition(next())) && (replaced() == -1 || isPosition(replaced()));
}
