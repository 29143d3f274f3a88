// What a file holds at the start, and what it holds for who inspects it.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include "foundations/base/CZelPageView.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/ZelDebug.h"
#include "foundations/port/ZelInParts.h"
#include "store/CZelPageFile.h"
#include "store/CZelPageMap.h"

namespace {

constexpr int PAGE = CZelPageView::PAGE_BYTES;
constexpr unsigned int BLOCK = 262144;
constexpr std::size_t LEAST_PAGES = 4096;  // for a thread of their own

std::vector<long> positionsOf(const CZelPageMap &map, long start) {
    std::vector<long> positions;
    for (long page = start; page >= 0; page = map.next(page))
        positions.push_back(page * PAGE);
    return positions;
}

}  // namespace

void CZelPageFile::Reader::beginParts(std::size_t, std::size_t) {}

bool CZelPageFile::Reader::look(std::size_t, long, const unsigned char *, int) {
    return false;
}

bool CZelPageFile::Reader::takeSeen(long, int) {
    return false;
}

bool CZelPageFile::Reader::takeAllSeen() {
    return false;
}

// The first reading of all pages, in parts. Whoever takes the records is shown those of one page on the way.
struct CZelPageFile::Survey {
    ZelFileHandle file;
    std::size_t pages;
    CZelPageMap &map;
    Reader *reader;  // or null

    // 1, or E_RCPageRead with nothing reported and the errno of the first part that could not be read.
    int run() {
        const std::size_t count = ZelPartsFor(pages, LEAST_PAGES);
        std::vector<CZelPageMap::Part> parts;
        std::vector<int> errors(count);
        map.begin(static_cast<long>(pages));
        for (std::size_t part = 0; part < count; ++part)
            parts.emplace_back(map, begin(part, count));
        if (reader != nullptr)
            reader->beginParts(count, pages / count + 1);
        ZelInParts(count, [&](std::size_t part) {
            errno = 0;
            if (!readPart(part, begin(part + 1, count), parts[part]))
                errors[part] = errno != 0 ? errno : EIO;
        });
        const auto failed = std::find_if(errors.begin(), errors.end(), [](int error) { return error != 0; });
        if (failed != errors.end()) {
            errno = *failed;
            return E_RCPageRead;
        }
        map.settle(parts);
        return 1;
    }

private:
    long begin(std::size_t part, std::size_t parts) const {
        return static_cast<long>(ZelBeginOfPart(pages, part, parts));
    }
    bool readPart(std::size_t number, long end, CZelPageMap::Part &part) const {
        std::vector<unsigned char> block(static_cast<std::size_t>(std::min<long>(BLOCK, (end - part.next()) * PAGE)));
        while (part.next() < end) {
            const long wanted = std::min<long>(BLOCK, (end - part.next()) * PAGE);
            if (ZelFilePRead(file, block.data(), static_cast<unsigned int>(wanted), part.next() * PAGE) != wanted)
                return false;
            for (long offset = 0; offset < wanted; offset += PAGE)
                addPage(number, CZelPageView(block.data() + offset), part);
        }
        return true;
    }
    void addPage(std::size_t number, const CZelPageView &page, CZelPageMap::Part &part) const {
        part.add(page);
        if (reader != nullptr && part.isWholeRecord() &&
            reader->look(number, page.position(), page.slice(), page.totalLength()))
            part.noteSeen();
    }
};

// A part of the file in memory, the one that was asked for last.
struct CZelPageFile::Window {
    ZelFileHandle file;
    long size;  // of the file
    long start = 0;
    long length = 0;
    std::vector<unsigned char> bytes =
        std::vector<unsigned char>(static_cast<std::size_t>(std::min<long>(BLOCK, size)));
    std::vector<unsigned char> single = std::vector<unsigned char>(PAGE);

    // The page, or null when it can't be read. Moves on to the first page of a chain that lies behind, never back.
    const unsigned char *page(long position, bool isFirst) {
        if (isFirst && position >= start + length)
            load(position);
        if (position >= start && position < start + length)
            return bytes.data() + (position - start);
        return ZelFilePRead(file, single.data(), PAGE, position) == PAGE ? single.data() : nullptr;
    }
    void load(long position) {
        const long wanted = std::min<long>(BLOCK, size - position);
        start = position;
        length = std::max(ZelFilePRead(file, bytes.data(), static_cast<unsigned int>(wanted), position), 0L);
        length -= length % PAGE;
    }
};

int CZelPageFile::readAll(Reader &reader) {
    CZelPageMap map;
    m_isForeign = mapPages(map, &reader) != 1;
    if (m_isForeign)
        return E_RCOpenFailed;
    m_formerMayReturn = m_policy != E_SPOff;  // whoever was stopped before may have emptied a chain and not synced
    takeChains(map, reader);
    takeCounts(map);
    takeFreePages(map);
    for (const long start : map.replaced())
        m_pending.push_back(positionsOf(map, start));
    (void)emptyPending();
    return 1;
}

int CZelPageFile::mapPages(CZelPageMap &map, Reader *reader) {
    unsigned int size = 0;
    if (!isOpen() || ZelGetOpenFileSize(m_file, size) != 1)
        return refuse(m_path.c_str(), std::strerror(errno));
    if (size % PAGE != 0 || size / PAGE > PAGES_AT_MOST) {
        if (__Zeltronix_Debug_Level >= 1)
            std::printf("Cache file has been corrupted, and cannot be read in.\n");
        return E_RCMalformed;
    }
    m_pageCount = size / PAGE;
    if (Survey{m_file, static_cast<std::size_t>(m_pageCount), map, reader}.run() != 1) {
        m_pageCount = 0;
        return refuse(m_path.c_str(), std::strerror(errno));
    }
    m_stamp = map.highestStamp();
    return 1;
}

void CZelPageFile::takeChains(CZelPageMap &map, Reader &reader) {
    if (map.isAllSeen() && reader.takeAllSeen())
        return;
    Window window{m_file, m_pageCount * PAGE};
    for (const long start : map.starts())
        if (!takeChain(map, window, start, reader))
            map.setUse(start, CZelPageMap::OUT_OF_USE);
}

bool CZelPageFile::takeChain(const CZelPageMap &map, Window &window, long start, Reader &reader) {
    return map.isSeen(start) ? reader.takeSeen(start * PAGE, map.total(start)) : takeAgain(map, window, start, reader);
}

// A record whose pages are to be read once more.
bool CZelPageFile::takeAgain(const CZelPageMap &map, Window &window, long start, Reader &reader) {
    m_whole = NO_POSITION;
    if (map.next(start) < 0)
        return takePage(window.page(start * PAGE, true), map.total(start), start * PAGE, reader);
    m_bytes.clear();
    for (long number = start; number >= 0; number = map.next(number)) {
        const unsigned char *bytes = window.page(number * PAGE, number == start);
        if (bytes == nullptr)
            return leaveOut();
        const CZelPageView page(bytes);
        if (!page.isSoundAt(number * PAGE))
            return false;
        m_bytes.insert(m_bytes.end(), page.slice(), page.slice() + page.dataLength());
    }
    return static_cast<int>(m_bytes.size()) == map.total(start) &&
           reader.takeChain(start * PAGE, m_bytes.data(), static_cast<int>(m_bytes.size()));
}

// A record of one page, from where it lies.
bool CZelPageFile::takePage(const unsigned char *bytes, int total, long position, Reader &reader) {
    if (bytes == nullptr)
        return leaveOut();
    const CZelPageView page(bytes);
    return page.totalLength() == total && page.dataLength() == total && reader.takeChain(position, page.slice(), total);
}

bool CZelPageFile::leaveOut() const {
    (void)fail(E_RCPageRead, "a record can't be read; it stays out of use until the next start");
    return false;
}

void CZelPageFile::takeCounts(const CZelPageMap &map) {
    const auto counts = map.counts();
    m_counts.m_used =
        counts[CZelPageMap::CHAIN_START] + counts[CZelPageMap::CHAIN_PAGE] + counts[CZelPageMap::REPLACED];
    m_counts.m_free = counts[CZelPageMap::FREE];
    m_counts.m_damaged = counts[CZelPageMap::DAMAGED];
    m_counts.m_outOfUse = m_counts.m_damaged + counts[CZelPageMap::OUT_OF_USE];
}

void CZelPageFile::takeFreePages(const CZelPageMap &map) {
    for (long page = 0, left = m_counts.m_free; left > 0; ++page) {
        if (map.use(page) != CZelPageMap::FREE)
            continue;
        m_free.push_back(page * PAGE);
        --left;
    }
}

int CZelPageFile::inspect(const char *path, CZelPageMap &map, long *owner) {
    CZelPageFile file;
    file.m_isKept = false;
    *owner = 0;
    file.m_file = ZelFileOpen(path, ZEL_FILE_READ, 0);
    if (!file.isOpen())
        return file.refuse(path, std::strerror(errno));
    file.m_path = path;
    *owner = ZelFileOwner(file.m_file);
    const int status = file.mapPages(map, nullptr);
    return status == E_RCMalformed
               ? ZEL_FAIL(status, (file.m_path + ": the size is no multiple of 512 below 2 GiB").c_str())
               : status;
}
