// Reading: many records, wherever they lie, by several threads.
#include <algorithm>
#include <vector>

#include "foundations/base/CZelPageView.h"
#include "foundations/port/ZelInParts.h"
#include "store/CZelPageFile.h"

namespace {

constexpr std::size_t PAGE = CZelPageView::PAGE_BYTES;
constexpr std::size_t BLOCK_PAGES = 512;
constexpr std::size_t LEAST_PAGES = 4096;  // for a thread of their own

// One part of the file, of which a block at a time is in memory.
class Through {
public:
    Through(ZelFileHandle file, std::size_t end, std::size_t part, CZelPageFile::Viewer &viewer)
        : m_file(file), m_end(end), m_part(part), m_viewer(viewer), m_block(BLOCK_PAGES * PAGE) {}

    void run(std::size_t begin) {
        for (std::size_t page = begin; page < m_end; ++page)
            if (m_viewer.wants(page))
                show(page);
    }

private:
    void show(std::size_t page) {
        if (page >= m_blockEnd)
            load(page);
        if (page >= m_readEnd)
            return;
        const CZelPageView view(m_block.data() + (page - m_blockStart) * PAGE);
        if (view.isFirst() && view.next() == CZelPageView::LAST_PAGE &&
            view.isSoundAt(static_cast<long>(page * PAGE)) && view.dataLength() == view.totalLength())
            m_viewer.view(m_part, page, view.slice(), view.totalLength());
    }
    void load(std::size_t page) {
        const std::size_t count = std::min(BLOCK_PAGES, m_end - page);
        const long done = ZelFilePRead(m_file, m_block.data(), static_cast<unsigned int>(count * PAGE),
                                       static_cast<long>(page * PAGE));
        m_blockStart = page;
        m_blockEnd = page + count;
        m_readEnd = page + static_cast<std::size_t>(std::max(done, 0L)) / PAGE;
    }

    ZelFileHandle m_file;
    std::size_t m_end;
    std::size_t m_part;
    CZelPageFile::Viewer &m_viewer;
    std::vector<unsigned char> m_block;
    std::size_t m_blockStart = 0;
    std::size_t m_blockEnd = 0;
    std::size_t m_readEnd = 0;  // of the block, as far as it could be read
};

}  // namespace

CZelPageFile::Viewer::~Viewer() = default;

void CZelPageFile::lookThrough(Viewer &viewer) const {
    const auto pages = static_cast<std::size_t>(isOpen() ? m_pageCount : 0);
    const std::size_t parts = ZelPartsFor(pages, LEAST_PAGES);
    viewer.beginParts(parts);
    ZelInParts(parts, [&](std::size_t part) {
        Through(m_file, ZelBeginOfPart(pages, part + 1, parts), part, viewer).run(ZelBeginOfPart(pages, part, parts));
    });
}
