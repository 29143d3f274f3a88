#include "foundations/base/CZelPageView.h"

#include "foundations/base/ZelCrc32c.h"

namespace {

constexpr std::size_t WORD = 8;

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

// Of the page with zeros in the place of its own four bytes.
std::uint32_t CZelPageView::checksum() const {
    constexpr std::size_t BEHIND = CHECKSUM + WORD;
    unsigned char word[WORD] = {};
    std::memcpy(word + sizeof(std::uint32_t), m_page + HEADER_BYTES, sizeof(std::uint32_t));
    const std::uint32_t before = ZelCrc32cBehind(ZelCrc32c(m_page, CHECKSUM), word, sizeof word);
    return ZelCrc32cBehind(before, m_page + BEHIND, PAGE_BYTES - BEHIND);
}

bool CZelPageView::fitsTogether() const {
    const auto total = get<std::uint32_t>(TOTAL), length = get<std::uint32_t>(DATA);
    return total > 0 && total <= LAST_PAGE && length > 0 && length <= PAGE_BYTES - HEADER_BYTES && length <= total &&
           (next() == LAST_PAGE || isPosition(next())) && (replaced() == -1 || isPosition(replaced()));
}
