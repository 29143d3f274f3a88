// Chains: writing and emptying.
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include "foundations/base/CZelROMPWrapper.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "store/CZelPageFile.h"

namespace {

constexpr int PAGE = CZelROMPWrapper::PAGE_BYTES;
constexpr int SLICE = CZelROMPWrapper::SLICE_BYTES;

std::size_t pagesFor(int length) {
    return static_cast<std::size_t>((length + SLICE - 1) / SLICE);
}

}  // namespace

int CZelPageFile::write(const unsigned char *encoding, int length, long replaced, long *start,
                        unsigned long long *stamp) {
    if (encoding == nullptr || length <= 0 || start == nullptr)
        return ZEL_FAIL(E_RCBadArgument, "CZelPageFile::write: nothing to write");
    int status = prepareToWrite();
    if (status == 1)
        status = lookUpFormer(replaced, stamp != nullptr ? *stamp : 0);
    if (status == 1 && holds(encoding, length)) {
        if (stamp != nullptr)
            *stamp = m_former.size() == 1 ? m_formerStamp : 0;
        *start = replaced;
        return confirm();
    }
    if (status == 1)
        status = reserve(pagesFor(length));
    if (status == 1)
        status = clearReserved();
    if (status != 1)
        return status;
    takeReserved();
    layOut(encoding, length, m_former.empty() ? NO_POSITION : replaced, m_formerStamp);
    status = writeWhole(!m_former.empty());
    if (status != 1)
        return status;
    m_counts.m_used += static_cast<long>(m_chain.size());
    *start = m_chain.front();
    if (stamp != nullptr)
        *stamp = m_chain.size() == 1 ? m_stamp : 0;
    if (m_chain.size() == 1) {
        m_whole = *start;
        m_wholeStamp = m_stamp;
    }
    if (!m_former.empty())
        bury();
    return 1;
}

// The chain that is to be replaced. One that is broken by now is left where it is, and nothing is replaced. One that
// can't be read now must not stay beside the new one. The stamp of one of one page may be known.
int CZelPageFile::lookUpFormer(long start, unsigned long long stamp) {
    m_former.clear();
    if (start == NO_POSITION)
        return 1;
    if (stamp != 0 && start != m_whole && isStart(start)) {
        m_former.push_back(start);
        m_formerStamp = stamp;
        return 1;
    }
    const int status = follow(start);
    if (status == 1) {
        m_former = m_chain;
        m_formerStamp = m_wholeStamp;
    }
    if (status == E_RCBadValue)
        return 1;
    return status == E_RCPageRead ? E_RCPageWrite : status;
}

// Is it what the former chain, if that one is at hand, encodes?
bool CZelPageFile::holds(const unsigned char *encoding, int length) const {
    if (m_former.empty() || m_former.front() != m_whole)
        return false;
    const CZelPageView first(m_bytes.data());
    const unsigned char *former = m_former.size() == 1 ? first.slice() : m_encoding.data();
    return first.totalLength() == length && std::memcmp(former, encoding, static_cast<std::size_t>(length)) == 0;
}

int CZelPageFile::writeNothing() {
    const int status = prepareToWrite();
    return status == 1 ? confirm() : status;
}

// Who updates a record may count on what came before, be there anything to write or not.
int CZelPageFile::confirm() {
    return m_policy == E_SPOff ? 1 : sync();
}

// The pages of m_chain in m_bytes.
void CZelPageFile::layOut(const unsigned char *encoding, int length, long replaced, unsigned long long replacedStamp) {
    ++m_stamp;
    m_whole = NO_POSITION;
    m_bytes.resize(m_chain.size() * PAGE);
    for (std::size_t i = 0; i < m_chain.size(); ++i) {
        CZelROMPWrapper::Header header;
        header.m_position = m_chain[i];
        header.m_stamp = m_stamp;
        if (i + 1 < m_chain.size())
            header.m_next = m_chain[i + 1];
        if (i == 0) {
            header.m_isFirst = true;
            header.m_replaced = replaced;
            header.m_replacedStamp = replacedStamp;
        }
        CZelROMPWrapper::RRWLayOut(m_bytes.data() + i * PAGE, encoding, length, static_cast<int>(i) * SLICE, header);
    }
}

// All of the chain in m_chain, or nothing.
int CZelPageFile::writeWhole(bool replaces) {
    int status = writeChain();
    if (status == 1 && (m_policy == E_SPFull || (m_policy == E_SPUpdate && replaces)))
        status = sync();
    if (status != 1)
        undo();
    return status;
}

// The chain counts once its first page stands, so that one comes last and by itself.
int CZelPageFile::writeChain() {
    std::size_t end = m_chain.size();
    while (end > 1) {
        std::size_t from = end - 1;
        while (from > 1 && m_chain[from - 1] == m_chain[from] - PAGE)
            --from;
        if (writePages(m_chain, from, end) != 1)
            return E_RCPageWrite;
        end = from;
    }
    return writePages(m_chain, 0, 1);
}

// Requires: the positions of pages [from, to) of the chain follow each other. Their bytes lie in m_bytes.
int CZelPageFile::writePages(const std::vector<long> &chain, std::size_t from, std::size_t to) {
    const auto count = static_cast<unsigned int>((to - from) * PAGE);
    const unsigned char *bytes = m_bytes.data() + from * PAGE;
    errno = 0;
    const long done = ZelFilePWrite(m_file, bytes, count, chain[from]);
    if (done != static_cast<long>(count)) {
        forgetAhead();
        return fail(E_RCPageWrite, "a page was not written whole");
    }
    renewAhead(bytes, done, chain[from]);
    return 1;
}

// Takes back what has been written of the chain in m_chain. A first page that may stand and can't be emptied now is
// emptied before anything else is written.
void CZelPageFile::undo() {
    m_counts.m_used += static_cast<long>(m_chain.size());
    if (empty(m_chain) != 1)
        m_pending.push_back(m_chain);
}

// While a power cut could bring back what a chain has replaced, the chain itself must stand: it is what tells that the
// other one is dead. Only the first page goes before all is certain, so that it can be put back.
int CZelPageFile::release(long start) {
    int status = prepareToWrite();
    if (status == 1)
        status = emptyDead(0);
    if (status == 1 && m_formerMayReturn)
        status = sync();
    if (status == 1)
        status = follow(start);
    if (status != 1)
        return status;
    std::array<unsigned char, PAGE> first;
    std::copy_n(m_bytes.begin(), PAGE, first.begin());
    status = disown(m_chain);
    if (status == 1 && m_policy == E_SPFull)
        status = sync();
    if (status != 1)
        return putBack(first.data()) ? status : 1;
    emptyRest(m_chain);
    giveBack(m_chain);
    return 1;
}

// The first page of m_chain, after a release that failed. False: half of it has been written over and can't be
// mended, so the chain is gone, and it is emptied before anything else is written.
bool CZelPageFile::putBack(const unsigned char *first) {
    forgetAhead();
    if (ZelFilePWrite(m_file, first, PAGE, m_chain.front()) == PAGE)
        return true;
    std::array<unsigned char, PAGE> found;
    if (ZelFilePRead(m_file, found.data(), PAGE, m_chain.front()) != PAGE ||
        std::equal(found.begin(), found.end(), first))
        return true;
    m_pending.push_back(m_chain);
    return false;
}

int CZelPageFile::empty(const std::vector<long> &chain) {
    if (disown(chain) != 1)
        return E_RCPageWrite;
    emptyRest(chain);
    giveBack(chain);
    return 1;
}

// Empties the first page: from then on the chain doesn't count.
int CZelPageFile::disown(const std::vector<long> &chain) {
    m_whole = NO_POSITION;
    m_bytes.assign(chain.size() * PAGE, 0);
    return writePages(chain, 0, 1);
}

// The other pages of a chain that was disowned. Emptying them only puts them in order: those that can't be emptied are
// used again all the same.
void CZelPageFile::emptyRest(const std::vector<long> &chain) {
    for (std::size_t from = 1, to = 1; from < chain.size(); from = to) {
        for (to = from + 1; to < chain.size() && chain[to] == chain[to - 1] + PAGE;)
            ++to;
        (void)writePages(chain, from, to);
    }
}

void CZelPageFile::giveBack(const std::vector<long> &chain) {
    m_free.insert(m_free.end(), chain.begin(), chain.end());
    m_counts.m_free += static_cast<long>(chain.size());
    m_counts.m_used -= static_cast<long>(chain.size());
}

// What can't be emptied yet is reported each time: nothing can be written in the meantime. One of these may be all that
// tells that an older one is dead, and a power cut could take back the emptying of the older one alone.
int CZelPageFile::emptyPending() {
    while (!m_pending.empty()) {
        if (empty(m_pending.back()) != 1)
            return E_RCPageWrite;
        m_pending.pop_back();
        m_formerMayReturn = m_policy != E_SPOff;
        if (m_formerMayReturn && !m_pending.empty() && sync() != 1)
            return E_RCPageWrite;
    }
    return 1;
}

// The former chain is dead, and its pages are free.
void CZelPageFile::bury() {
    giveBack(m_former);
    m_deadPages += static_cast<long>(m_former.size());
    m_dead.push_back(std::move(m_former));
    m_former = std::move(m_spare);
    m_former.clear();
    if (m_policy == E_SPOff)
        return;
    m_formerMayReturn = true;
    (void)emptyDead(0);  // what stays is tried again before anything else is written
}

// Of the dead chains that have pages among those in m_chain, only one that has just these may still stand.
int CZelPageFile::clearReserved() {
    for (const long position : m_chain) {
        if (m_dead.empty() || m_dead.front().front() != position)
            continue;
        if (m_dead.front() == m_chain)
            forgetOldest();
        else if (emptyOldest() != 1)
            return E_RCPageWrite;
    }
    return 1;
}

int CZelPageFile::emptyOldest() {
    if (disown(m_dead.front()) != 1)
        return E_RCPageWrite;
    emptyRest(m_dead.front());
    forgetOldest();
    return 1;
}

int CZelPageFile::emptyDead(long pagesAtMost) {
    while (m_deadPages > pagesAtMost)
        if (emptyOldest() != 1)
            return E_RCPageWrite;
    return 1;
}

void CZelPageFile::forgetOldest() {
    m_deadPages -= static_cast<long>(m_dead.front().size());
    m_spare = std::move(m_dead.front());
    m_dead.pop_front();
}
