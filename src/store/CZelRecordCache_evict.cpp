// Making room: which row leaves memory, and how.

#include <memory>

#include "foundations/base/CZelROMPer.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelString.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/ZelPrefetch.h"
#include "store/CZelCachedRecord.h"
#include "store/CZelRecordCache.h"

void CZelRecordCache::reportNothingToEvict() {
    ZEL_REPORT(E_RCBadArgument, "CZelRecordCache::RRCWriteOldestRecToDisk: no row is in memory");
}

// By size, the bytes that are to come count; by proportion, only what is there.
bool CZelRecordCache::isFull(unsigned long long inCoreBytes, unsigned long long size) const {
    if (m_type == E_RCTBySize)
        return inCoreBytes + size > m_byteLimit;
    if (m_type != E_RCTByProportion || m_totalBytes == 0)
        return false;
    const double ratio = static_cast<double>(inCoreBytes) / static_cast<double>(m_totalBytes);
    return static_cast<float>(ratio) > m_proportion;
}

// After each eviction its bytes are what is asked for next: so the walk ends as soon as what was there before it
// had been within the limit, and the row that asked for room may bring memory above it. It ends at the latest when
// nothing is left in memory, whatever the counters say.
int CZelRecordCache::makeRoom(unsigned long long size) {
    while (needsRoom(size)) {
        CZelCachedRecord *oldest = m_inCore.first();
        if (oldest == nullptr) {
            reportNothingToEvict();
            return E_RCOk;
        }
        const int status = evict(*oldest);
        if (status != E_RCOk) {
            CZelString text("CZelRecordCache::RRCCreateSpaceInCache: no row could leave memory, cache ");
            text.RSStrCat(m_name);
            return ZEL_FAIL(status, text.RSString());
        }
        size = static_cast<unsigned long long>(oldest->RCRSize());
    }
    return E_RCOk;
}

int CZelRecordCache::evict(CZelCachedRecord &entry) {
    long start = entry.RCRGetStartPos();
    if (entry.RCRIsRecordOnDisk() != E_RBTrue) {
        CZelROMPer packet(CZelROMPer::INITIAL_SIZE);
        int status = pack(entry.RCRGetRecord(), packet);
        if (status == E_RCOk)
            status = m_file.write(packet.RRPacket(), packet.RRCreatedLength(), CZelPageFile::NO_POSITION, &start);
        if (status != E_RCOk)
            return status;
    }
    m_inCore.remove(&entry);
    entry.RCRSetOnDisk(start);
    setAtPage(start, numberOf(entry));
    m_inCoreBytes -= static_cast<unsigned long long>(entry.RCRSize());
    ZelPrefetch(m_inCore.top());
    return E_RCOk;
}

// A row that comes from the file mostly turns out another one, which has not been touched for long. While the file is
// read and the row is decoded, the memory has the time to find the pieces that are freed then.
void CZelRecordCache::askForOldest() const {
    if (const CZelCachedRecord *oldest = m_inCore.top())
        ZelPrefetch(oldest->RCRGetRecord());
}

void CZelRecordCache::askForItsValues() const {
    if (const CZelCachedRecord *oldest = m_inCore.top())
        oldest->RCRGetRecord()->RRVbIterator()->RVBLPrefetch();
}
