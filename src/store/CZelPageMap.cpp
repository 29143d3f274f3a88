#include "store/CZelPageMap.h"

#include <algorithm>

#include "foundations/base/CZelPageView.h"

namespace {

constexpr std::uint32_t NO_PAGE = UINT32_MAX;

std::uint32_t numberAt(long position) {
    return position == CZelPageView::LAST_PAGE ? NO_PAGE
                                               : static_cast<std::uint32_t>(position / CZelPageView::PAGE_BYTES);
}

}  // namespace

void CZelPageMap::Part::add(const CZelPageView &view) {
    const CZelPageView::Condition condition = view.condition();
    Page &page = m_map.pageAt(m_next);
    page = {};
    page.use = condition == CZelPageView::EMPTY ? FREE : DAMAGED;
    if (condition == CZelPageView::SOUND)
        addSound(view, page);
    ++m_counts[page.use];
    ++m_next;
}

// A chain of one page needs no walk: nobody else can claim a first page.
void CZelPageMap::Part::addSound(const CZelPageView &view, Page &page) {
    m_highestStamp = std::max<std::uint64_t>(m_highestStamp, view.stamp());
    if (view.position() != m_next * CZelPageView::PAGE_BYTES)
        return;
    page.use = OUT_OF_USE;  // until a chain claims it
    page.stamp = view.stamp();
    page.next = numberAt(view.next());
    page.total = static_cast<std::uint32_t>(view.totalLength());
    page.length = static_cast<std::uint16_t>(view.dataLength());
    page.isFirst = view.isFirst();
    if (!page.isFirst)
        return;
    if (page.isWholeRecord())
        page.use = CHAIN_START;
    else
        m_firsts.push_back(m_next);
    m_unseen += page.isWholeRecord() ? 1 : 0;
    if (view.replaced() >= 0 && view.replacedStamp() < page.stamp)
        m_notes.push_back({m_next, view.replaced() / CZelPageView::PAGE_BYTES, view.replacedStamp()});
}

bool CZelPageMap::Page::isWholeRecord() const {
    return isFirst && next == NO_PAGE && length == total;
}

bool CZelPageMap::Part::isWholeRecord() const {
    return m_map.pageAt(m_next - 1).isWholeRecord();
}

void CZelPageMap::Part::noteSeen() {
    m_map.pageAt(m_next - 1).isSeen = true;
    --m_unseen;
}

void CZelPageMap::begin(long pages) {
    m_length = pages;
    m_pages = std::make_unique_for_overwrite<Page[]>(static_cast<std::size_t>(pages));
}

void CZelPageMap::settle(const std::vector<Part> &parts) {
    std::vector<Note> notes;
    m_isAllSeen = true;
    m_counts = {};
    for (const Part &part : parts)
        for (std::size_t use = 0; use < USES; ++use)
            m_counts[use] += part.m_counts[use];
    for (const Part &part : parts) {
        m_highestStamp = std::max(m_highestStamp, part.m_highestStamp);
        notes.insert(notes.end(), part.m_notes.begin(), part.m_notes.end());
        m_isAllSeen = m_isAllSeen && part.m_unseen == 0;
        for (const long start : part.m_firsts)
            m_isAllSeen = !walk(start) && m_isAllSeen;
    }
    dropReplaced(notes);
    m_isAllSeen = m_isAllSeen && m_replaced.empty();
}

// Is the chain whole? A page that a walk has passed is out of reach for every other: it belongs to that chain or to
// none.
bool CZelPageMap::walk(long start) {
    const Page &first = m_pages[static_cast<std::size_t>(start)];
    std::uint64_t length = 0;
    auto number = static_cast<std::uint32_t>(start);
    while (number != NO_PAGE) {
        if (number >= m_length)
            return false;
        Page &page = m_pages[number];
        const bool belongs = page.use == OUT_OF_USE && !page.isWalked && page.stamp == first.stamp &&
                             page.total == first.total && page.isFirst == (number == start);
        if (!belongs)
            return false;
        page.isWalked = true;
        length += page.length;
        number = page.next;
    }
    if (length != first.total)
        return false;
    setUse(start, CHAIN_START);
    return true;
}

long CZelPageMap::next(long page) const {
    const std::uint32_t number = m_pages[static_cast<std::size_t>(page)].next;
    return number == NO_PAGE ? -1 : static_cast<long>(number);
}

void CZelPageMap::setUse(long start, Use use) {
    setUse(pageAt(start), use);
    for (long page = next(start); page >= 0; page = next(page))
        setUse(pageAt(page), use == CHAIN_START ? CHAIN_PAGE : use);
}

void CZelPageMap::setUse(Page &page, Use use) {
    --m_counts[page.use];
    ++m_counts[use];
    page.use = use;
}

// A note counts while its own chain is whole, be that one replaced too. Notes point to older stamps, so there is no
// circle.
void CZelPageMap::dropReplaced(const std::vector<Note> &notes) {
    for (const Note &note : notes) {
        const Use bearer = use(note.start);
        const bool isWhole = bearer == CHAIN_START || bearer == REPLACED;
        if (!isWhole || note.replaced >= length() || use(note.replaced) != CHAIN_START ||
            m_pages[static_cast<std::size_t>(note.replaced)].stamp != note.stamp)
            continue;
        setUse(note.replaced, REPLACED);
        m_replaced.push_back(note.replaced);
    }
    std::sort(m_replaced.begin(), m_replaced.end(), [this](long left, long right) {
        return m_pages[static_cast<std::size_t>(left)].stamp > m_pages[static_cast<std::size_t>(right)].stamp;
    });
}

std::vector<long> CZelPageMap::starts() const {
    std::vector<long> starts;
    for (long page = 0; page < m_length; ++page)
        if (use(page) == CHAIN_START)
            starts.push_back(page);
    return starts;
}
