// Reading: many records, wherever they lie, by several threads.
#include <algorithm>
#include <atomic>
#include <vector>

#include "foundations/base/CZelPageView.h"
#include "foundations/port/ZelInParts.h"
#include "store/CZelPageFile.h"

namespace {

constexpr std::size_t PAGE = CZelPageView::PAGE_BYTES;
constexpr std::size_t BLOCK_PAGES = 512;
constexpr std::size_t LEAST_PAGES = 2048;  // for a thread of their own
constexpr std::size_t STRIDES = 8;         // of a part, at least
constexpr std::size_t FAR = 8;             // pages nobody wants that cost more to copy than another call does to make

// One part of the file, of which a block at a time is in memory.
class Through {
public:
    Through(ZelFileHandle file, std::size_t part, CZelPageFile::Viewer &viewer)
        : m_file(file), m_part(part), m_viewer(viewer), m_block(BLOCK_PAGES * PAGE) {}

    void run(std::size_t begin, std::size_t end) {
        m_end = end;
        for (std::size_t page = begin; page < end; ++page)
            if (m_viewer.wants(page) && !show(page))
                m_viewer.leave(m_part, page);
    }

private:
    bool show(std::size_t page) {
        if (!isRead(page, 1) && !load(page, countToRead(page), 1))
            return false;
        const CZelPageView first = viewOf(page);
        if (!first.isFirst() || !isSound(first, page))
            return false;
        if (first.next() != CZelPageView::LAST_PAGE)
            return showChain(page);
        if (first.dataLength() != first.totalLength())
            return false;
        m_viewer.view(m_part, page, first.slice(), first.totalLength());
        return true;
    }

    // A record whose pages follow each other, as they mostly do.
    bool showChain(std::size_t page) {
        constexpr std::size_t SLICE = PAGE - CZelPageView::HEADER_BYTES;
        const std::size_t count = (static_cast<std::size_t>(viewOf(page).totalLength()) + SLICE - 1) / SLICE;
        if (count > BLOCK_PAGES || (!isRead(page, count) && !load(page, std::max(count, countToRead(page)), count)) ||
            !gather(page, count))
            return false;
        m_viewer.view(m_part, page, m_encoding.data(), static_cast<int>(m_encoding.size()));
        return true;
    }
    bool gather(std::size_t page, std::size_t count) {
        const CZelPageView first = viewOf(page);
        m_encoding.clear();
        for (std::size_t i = 0; i < count; ++i) {
            const CZelPageView view = viewOf(page + i);
            const bool isLast = i + 1 == count;
            if (!isSound(view, page + i) || view.isFirst() != (i == 0) || view.stamp() != first.stamp() ||
                view.totalLength() != first.totalLength() ||
                view.next() != (isLast ? CZelPageView::LAST_PAGE : static_cast<long>((page + i + 1) * PAGE)))
                return false;
            m_encoding.insert(m_encoding.end(), view.slice(), view.slice() + view.dataLength());
        }
        return m_encoding.size() == static_cast<std::size_t>(first.totalLength());
    }

    bool isRead(std::size_t page, std::size_t count) const {
        return page >= m_start && page + count <= m_start + m_count;
    }
    CZelPageView viewOf(std::size_t page) const { return CZelPageView(m_block.data() + (page - m_start) * PAGE); }
    static bool isSound(const CZelPageView &view, std::size_t page) {
        return view.isSoundAt(static_cast<long>(page * PAGE));
    }

    // From this page on to the last one that is wanted before a gap.
    std::size_t countToRead(std::size_t page) const {
        std::size_t last = page;
        for (std::size_t next = page + 1; next < m_end && next <= last + FAR; ++next)
            last = m_viewer.wants(next) ? next : last;
        return last - page + 1;
    }
    // Are at least so many pages there then?
    bool load(std::size_t page, std::size_t count, std::size_t least) {
        const long done = ZelFilePRead(m_file, m_block.data(), static_cast<unsigned int>(count * PAGE),
                                       static_cast<long>(page * PAGE));
        m_start = page;
        m_count = static_cast<std::size_t>(std::max(done, 0L)) / PAGE;
        return m_count >= least;
    }

    ZelFileHandle m_file;
    std::size_t m_part;
    CZelPageFile::Viewer &m_viewer;
    std::vector<unsigned char> m_block;
    std::size_t m_end = 0;    // of the pages at hand, which are a block at most
    std::size_t m_start = 0;  // page that the block begins with
    std::size_t m_count = 0;  // pages that it has
    std::vector<unsigned char> m_encoding;
};

}  // namespace

CZelPageFile::Viewer::~Viewer() = default;

void CZelPageFile::Viewer::beginPart(std::size_t) {}

void CZelPageFile::Viewer::leave(std::size_t, std::size_t) {}

std::size_t CZelPageFile::partsToLookThrough() const {
    return isOpen() ? ZelPartsFor(static_cast<std::size_t>(m_pageCount), LEAST_PAGES) : 1;
}

// Who is done with some pages takes the next ones, so that all threads end together.
void CZelPageFile::lookThrough(Viewer &viewer) const {
    const auto pages = static_cast<std::size_t>(isOpen() ? m_pageCount : 0);
    const std::size_t parts = partsToLookThrough();
    const std::size_t stride = std::clamp<std::size_t>(pages / (parts * STRIDES), 1, BLOCK_PAGES);
    std::atomic<std::size_t> next{0};
    viewer.beginParts(parts);
    ZelInParts(parts, [&](std::size_t part) {
        viewer.beginPart(part);
        Through through(m_file, part, viewer);
        for (std::size_t begin = next.fetch_add(stride); begin < pages; begin = next.fetch_add(stride))
            through.run(begin, std::min(begin + stride, pages));
    });
}
