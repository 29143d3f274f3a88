// Chains: reading, one by one or in the order of the file.
#include <algorithm>
#include <cerrno>
#include <cstring>

#include "foundations/base/CZelPageView.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "store/CZelPageFile.h"

namespace {

constexpr int PAGE = CZelPageView::PAGE_BYTES;
constexpr int SLICE = PAGE - CZelPageView::HEADER_BYTES;
constexpr long AHEAD = 262144;     // bytes
constexpr int READS_IN_ORDER = 8;  // before more is read than was asked for; of rows that lie far apart, few follow so
constexpr int MOST_IN_ORDER = 32;  // counted
constexpr long NEAR = 32L * PAGE;  // a chain that starts no further behind the last one is the next in order

std::size_t pagesFor(int length) {
    return static_cast<std::size_t>((length + SLICE - 1) / SLICE);
}

// Is all of the record in this one page?
bool isWhole(const CZelPageView &page) {
    return page.dataLength() == page.totalLength() && page.next() == CZelPageView::LAST_PAGE;
}

}  // namespace

int CZelPageFile::read(long start, unsigned char **encoding, int *length) {
    *encoding = nullptr;
    const unsigned char *found = nullptr;
    const int status = look(start, &found, length);
    if (status != 1)
        return status;
    *encoding = static_cast<unsigned char *>(ZelMalloc(static_cast<std::size_t>(*length)));
    std::memcpy(*encoding, found, static_cast<std::size_t>(*length));
    return 1;
}

// A row of one page that has been read ahead is not copied.
int CZelPageFile::look(long start, const unsigned char **encoding, int *length) {
    *length = 0;
    if (!isStart(start))
        return ZEL_FAIL(E_RCBadArgument, "CZelPageFile: no position of this file");
    lookAhead(start);
    if (start != m_whole && isAhead(start, PAGE)) {
        const CZelPageView page(m_ahead.data() + (start - m_aheadStart));
        if (isWhole(page) && page.isFirst() && page.isSoundAt(start)) {
            *encoding = page.slice();
            *length = page.totalLength();
            return 1;
        }
    }
    const int status = follow(start);
    if (status != 1)
        return status;
    const CZelPageView first(m_bytes.data());
    *encoding = m_chain.size() == 1 ? first.slice() : m_encoding.data();
    *length = first.totalLength();
    return 1;
}

bool CZelPageFile::isStart(long position) const {
    return isOpen() && position >= 0 && position % PAGE == 0 && position / PAGE < m_pageCount;
}

// The pages behind the first mostly follow it, so they are read with one call and checked one by one; one that lies
// elsewhere is read by itself.
int CZelPageFile::follow(long start) {
    if (!isStart(start))
        return ZEL_FAIL(E_RCBadArgument, "CZelPageFile: no position of this file");
    if (start == m_whole)
        return 1;
    m_whole = NO_POSITION;
    m_chain.assign(1, start);
    m_bytes.resize(PAGE);
    if (readPages(m_bytes.data(), 1, start) != 1)
        return fail(E_RCPageRead, "a page could not be read whole");
    const CZelPageView first(m_bytes.data());
    if (!first.isSoundAt(start) || !first.isFirst() ||
        pagesFor(first.totalLength()) > static_cast<std::size_t>(m_pageCount))
        return broken();
    m_wholeStamp = first.stamp();
    const int status = isWhole(first) ? 1 : followOn();
    m_whole = status == 1 ? start : NO_POSITION;
    return status;
}

// The pages behind the first one, which lies in m_bytes. (That grows, and its views with it.)
int CZelPageFile::followOn() {
    const int total = CZelPageView(m_bytes.data()).totalLength();
    const std::size_t count = pagesFor(total);
    m_bytes.resize(count * PAGE);
    const CZelPageView first(m_bytes.data());
    if (first.dataLength() == total)
        return broken();
    m_encoding.assign(first.slice(), first.slice() + first.dataLength());
    const long behind = m_chain.front() + PAGE;
    const long guessed = first.next() != behind ? 0 : readPages(m_bytes.data() + PAGE, count - 1, behind);
    long position = first.next();
    for (std::size_t i = 1; i < count; ++i) {
        unsigned char *bytes = m_bytes.data() + i * PAGE;
        const bool isThere = static_cast<long>(i) <= guessed && position == behind + static_cast<long>(i - 1) * PAGE;
        if (position / PAGE >= m_pageCount)
            return broken();
        if (!isThere && readPages(bytes, 1, position) != 1)
            return fail(E_RCPageRead, "a page could not be read whole");
        const CZelPageView page(bytes);
        if (!page.isSoundAt(position) || page.isFirst() || page.stamp() != first.stamp() || page.totalLength() != total)
            return broken();
        m_chain.push_back(position);
        m_encoding.insert(m_encoding.end(), page.slice(), page.slice() + page.dataLength());
        position = page.next();
    }
    const bool isComplete = m_encoding.size() == static_cast<std::size_t>(total);
    return isComplete && position == CZelPageView::LAST_PAGE ? 1 : broken();
}

int CZelPageFile::broken() const {
    return ZEL_FAIL(E_RCBadValue, "Incompatibility in cache file please make new cache file");
}

// Chains that are asked for in the order of the file come from a large block. A stray one in between, as a row that was
// updated lies elsewhere, does not end a run. Nobody else writes the locked file, and what is written here goes into
// the block too.
void CZelPageFile::lookAhead(long start) {
    const bool isNext = start >= m_endOfRun && start < m_endOfRun + NEAR;
    m_readsInOrder = isNext ? std::min(m_readsInOrder + 1, MOST_IN_ORDER) : m_readsInOrder / 2;
    if (isNext || m_readsInOrder < READS_IN_ORDER)
        m_endOfRun = start + PAGE;
    if (!isNext || m_readsInOrder < READS_IN_ORDER || isAhead(start, PAGE))
        return;
    m_ahead.resize(AHEAD);
    m_aheadStart = start;
    m_aheadBytes = std::max(ZelFilePRead(m_file, m_ahead.data(), AHEAD, start), 0L) / PAGE * PAGE;
}

bool CZelPageFile::isAhead(long position, long bytes) const {
    return position >= m_aheadStart && position + bytes <= m_aheadStart + m_aheadBytes;
}

void CZelPageFile::forgetAhead() {
    m_aheadBytes = 0;
}

// Bytes that have been written at this position.
void CZelPageFile::renewAhead(const unsigned char *bytes, long count, long position) {
    const long from = std::max(position, m_aheadStart);
    const long end = std::min(position + count, m_aheadStart + m_aheadBytes);
    if (from < end)
        std::memcpy(m_ahead.data() + (from - m_aheadStart), bytes + (from - position),
                    static_cast<std::size_t>(end - from));
}

// Pages read whole.
long CZelPageFile::readPages(unsigned char *place, std::size_t pages, long position) {
    const long bytes = static_cast<long>(pages) * PAGE;
    if (!isAhead(position, bytes))
        return ZelFilePRead(m_file, place, static_cast<unsigned int>(bytes), position) / PAGE;
    std::memcpy(place, m_ahead.data() + (position - m_aheadStart), static_cast<std::size_t>(bytes));
    return static_cast<long>(pages);
}
