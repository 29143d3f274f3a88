// Storing, replacing and removing rows, and the accounts of what is stored.

#include <cstring>
#include <memory>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelPageView.h"
#include "foundations/base/CZelROMPer.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/port/CZelError.h"
#include "store/CZelCachedRecord.h"
#include "store/CZelRecordCache.h"

namespace {

// A record that was handed over, until an entry has it. One to be copied stays its owner's.
std::unique_ptr<CZelRecord> handedOver(CZelRecord *record, __boolean copy) {
    return std::unique_ptr<CZelRecord>(copy == E_RBTrue ? nullptr : record);
}

// Not by the type of numbers: records that are alike may be packed into other bytes.
bool areAlike(const CZelRecord &left, const CZelRecord &right) {
    const CZelVarBind *other = right.RRVbIterator()->RVBLHead();
    for (const CZelVarBind *pair = left.RRVbIterator()->RVBLHead(); pair != nullptr && other != nullptr;
         pair = left.RRVbIterator()->RVBLGetNext(pair), other = right.RRVbIterator()->RVBLGetNext(other))
        if (CZelAtom::RACompare(pair->RVBValue(), other->RVBValue()) != 0)
            return false;
    return true;
}

}  // namespace

int CZelRecordCache::RRCCacheRecord(CZelRecord *record, CZelAtom **handle, __boolean copy) {
    std::unique_ptr<CZelRecord> owned = handedOver(record, copy);
    CZelROMPer packet(CZelROMPer::INITIAL_SIZE);
    int status = pack(record, packet);
    if (status != E_RCOk)
        return status;
    CZelAtom *taken = m_handles.take();
    if (taken == nullptr)
        return E_RCNoHandle;
    Place place;
    status = prepare(*record, packet, nullptr, place);
    if (status != E_RCOk) {
        m_handles.giveBack(taken);
        return status;
    }
    static_cast<void>(owned.release());
    enter(m_handles.add(taken, newEntry(record, copy, place, packet.RRCreatedLength())));
    *handle = taken;
    return E_RCOk;
}

// The old row leaves the accounts first, so that it is neither counted nor evicted while room is made for the new
// one; it is put back if that fails.
int CZelRecordCache::RRCUpdateRecord(CZelRecord *record, CZelAtom *handle, __boolean copy) {
    std::unique_ptr<CZelRecord> owned = handedOver(record, copy);
    CZelCachedRecord *former = entryOf(handle, E_RCBadArgument);
    if (former == nullptr)
        return ZEL_FAIL(E_RCBadArgument, "CZelRecordCache::RRCUpdateRecord: no row has this handle");
    CZelROMPer packet(CZelROMPer::INITIAL_SIZE);
    int status = pack(record, packet);
    if (status != E_RCOk)
        return status;
    leave(*former);
    Place place;
    status = prepare(*record, packet, former, place);
    if (status != E_RCOk) {
        enter(*former);
        return status;
    }
    if (!writesThrough() && former->RCRGetStartPos() != CZelPageFile::NO_POSITION)  // reports; pages of a file that
        static_cast<void>(m_file.release(former->RCRGetStartPos()));                // nobody reads back may get lost
    static_cast<void>(owned.release());
    enter(m_handles.replace(handle, newEntry(record, copy, place, packet.RRCreatedLength())));
    return E_RCOk;
}

int CZelRecordCache::RRCDeleteRecord(CZelAtom *handle) {
    if (handle == nullptr || handle->RAType() != E_RDTLong)
        return ZEL_FAIL(E_RCBadArgument, "CZelRecordCache::RRCDeleteRecord: no handle");
    CZelCachedRecord *entry = m_handles.find(*handle);
    if (entry == nullptr)
        return E_RCOk;
    if (entry->RCRGetStartPos() != CZelPageFile::NO_POSITION) {
        const int status = m_file.release(entry->RCRGetStartPos());
        if (status != E_RCOk && status != E_RCBadValue)  // a broken chain does not count at the next start either
            return status;
    }
    leave(*entry);
    m_handles.remove(*handle);
    return E_RCOk;
}

int CZelRecordCache::pack(const CZelRecord *record, CZelROMPer &packet) const {
    if (record == nullptr || m_type == E_RCTNotCreated)
        return ZEL_FAIL(E_RCBadArgument, "CZelRecordCache: no record, or the cache has not been created");
    return record->ROMEncode(packet);
}

// Room in memory and, where the cache writes through, the new chain: all of a store that can fail.
int CZelRecordCache::prepare(const CZelRecord &record, CZelROMPer &packet, const CZelCachedRecord *former,
                             Place &place) {
    const int size = packet.RRCreatedLength();
    const int status = makeRoom(static_cast<unsigned long long>(size));
    if (status != E_RCOk || !writesThrough())
        return status;
    if (former != nullptr)
        place = {former->RCRGetStartPos(), former->RCRStamp()};
    if (former != nullptr && holds(*former, record, packet))
        return m_file.writeNothing();
    return m_file.write(packet.RRPacket(), size, place.m_start, &place.m_start, &place.m_stamp);
}

// Is the record's packet that of the entry in memory, which is in the file too?
bool CZelRecordCache::holds(const CZelCachedRecord &entry, const CZelRecord &record, CZelROMPer &packet) const {
    const int size = packet.RRCreatedLength();
    if (entry.RCRIsRecordInCore() != E_RBTrue || entry.RCRSize() != size || !areAlike(*entry.RCRGetRecord(), record))
        return false;
    CZelROMPer own(CZelROMPer::INITIAL_SIZE);
    return pack(entry.RCRGetRecord(), own) == E_RCOk && own.RRCreatedLength() == size &&
           std::memcmp(own.RRPacket(), packet.RRPacket(), static_cast<std::size_t>(size)) == 0;
}

// Without a record, or where none is kept, the entry says only where the row lies.
CZelCachedRecord CZelRecordCache::newEntry(CZelRecord *record, __boolean copy, const Place &place, int size) {
    const bool isKept = record != nullptr && m_type != E_RCTAllOnDisk;
    CZelCachedRecord entry =
        isKept ? CZelCachedRecord(record, copy, m_persistent) : CZelCachedRecord(place.m_start, m_persistent);
    if (!isKept && copy != E_RBTrue)
        delete record;
    if (isKept && m_persistent == E_RBTrue)
        entry.RCRSetPersistant(place.m_start);
    entry.RCRSetStamp(place.m_stamp);
    entry.RCRSetSize(size);
    entry.RCRSetArrival(++m_arrivals);
    return entry;
}

void CZelRecordCache::enter(CZelCachedRecord &entry) {
    const unsigned long long size = static_cast<unsigned long long>(entry.RCRSize());
    m_totalBytes += size;
    if (entry.RCRIsRecordInCore() != E_RBTrue) {
        setAtPage(entry.RCRGetStartPos(), numberOf(entry));
        return;
    }
    m_inCoreBytes += size;
    if (isBounded())
        m_inCore.add(&entry);
}

void CZelRecordCache::leave(CZelCachedRecord &entry) {
    const unsigned long long size = static_cast<unsigned long long>(entry.RCRSize());
    m_totalBytes -= size;
    if (entry.RCRIsRecordInCore() != E_RBTrue) {
        setAtPage(entry.RCRGetStartPos(), NO_ROW);
        return;
    }
    m_inCoreBytes -= size;
    m_inCore.remove(&entry);
}

void CZelRecordCache::setAtPage(long start, int number) {
    const auto page = static_cast<std::size_t>(start / CZelPageView::PAGE_BYTES);
    if (page >= m_atPage.size())
        m_atPage.resize(page + 1, NO_ROW);
    m_atPage[page] = number;
}
