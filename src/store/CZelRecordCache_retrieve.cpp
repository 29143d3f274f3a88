// Getting rows, from memory or from the file.

#include <memory>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelPageView.h"
#include "foundations/base/CZelROMPer.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/port/CZelError.h"
#include "store/CZelCachedRecord.h"
#include "store/CZelRecordCache.h"

namespace {

constexpr const char *UNREADABLE = "CZelRecordCache::RRCRetrieveRecord: a row can't be read from its file";

}  // namespace

CZelRecord *CZelRecordCache::RRCRetrieveRecord(CZelAtom *handle) {
    bool copy = true;
    return RRCRetrieveRecord(handle, copy);
}

CZelRecord *CZelRecordCache::RRCRetrieveRecord(CZelAtom *handle, bool &copy) {
    CZelCachedRecord *entry = entryOf(handle, E_RCBadArgument);
    if (entry == nullptr)
        return nullptr;
    if (entry->RCRIsRecordInCore() != E_RBTrue)
        return fetch(*entry, copy);
    touch(*entry);
    return copy ? entry->RCRGetCopiedRecord() : entry->RCRGetRecord();
}

// Null for an unknown handle; what is no handle is reported with the code.
CZelCachedRecord *CZelRecordCache::entryOf(const CZelAtom *handle, int code) const {
    if (handle != nullptr && handle->RAType() == E_RDTLong)
        return m_handles.find(*handle);
    ZEL_REPORT(code, "CZelRecordCache: a row is asked for without its handle");
    return nullptr;
}

// Counters only grow, except when the clock is set back.
void CZelRecordCache::touch(CZelCachedRecord &entry) {
    if (!isBounded())
        return;
    const long former = entry.RCRGetLastAccess();
    entry.RCRRecordAccess();
    if (entry.RCRGetLastAccess() < former)
        m_inCore.leavesEarlier(&entry);
}

// Room is made before anything of the row changes: if there is none, it stays where it is and is the caller's copy.
CZelRecord *CZelRecordCache::fetch(CZelCachedRecord &entry, bool &copy) {
    std::unique_ptr<CZelRecord> record(readFromDisk(entry));
    if (record == nullptr) {
        ZEL_REPORT(E_RCBadArgument, UNREADABLE);
        return nullptr;
    }
    const bool isKept =
        m_type != E_RCTAllOnDisk && makeRoom(static_cast<unsigned long long>(entry.RCRSize())) == E_RCOk;
    if (isKept)
        bringIn(entry, record.get(), copy);
    else
        copy = true;
    return record.release();
}

bool CZelRecordCache::RRCLookAt(CZelAtom *handle, SZelCachedRow &row) {
    row = {};
    CZelCachedRecord *entry = entryOf(handle, E_RCBadArgument);
    if (entry == nullptr)
        return false;
    if (entry->RCRIsRecordInCore() == E_RBTrue) {
        touch(*entry);
        row.m_record = entry->RCRGetRecord();
        return true;
    }
    return lookAtFile(entry->RCRGetStartPos(), row);
}

void CZelRecordCache::RRCAskForValues(const CZelAtom &handle) const {
    const CZelCachedRecord *entry = m_handles.find(handle);
    const CZelRecord *record = entry != nullptr ? entry->RCRGetRecord() : nullptr;
    if (record != nullptr)
        record->RRVbIterator()->RVBLPrefetch();
}

std::vector<int> CZelRecordCache::RRCInMemory() const {
    std::vector<int> numbers;
    numbers.reserve(m_inCore.length());
    for (std::size_t place = 0; place < m_inCore.length(); ++place)
        numbers.push_back(numberOf(m_inCore.at(place)));
    return numbers;
}

const CZelRecord *CZelRecordCache::RRCRecordInMemory(int number) const {
    const CZelCachedRecord *entry = m_handles.find(static_cast<long>(number));
    return entry != nullptr && entry->RCRIsRecordInCore() == E_RBTrue ? entry->RCRGetRecord() : nullptr;
}

bool CZelRecordCache::RRCLookAtPage(std::size_t page, SZelCachedRow &row) {
    row = {};
    return lookAtFile(static_cast<long>(page) * CZelPageView::PAGE_BYTES, row);
}

bool CZelRecordCache::lookAtFile(long start, SZelCachedRow &row) {
    if (m_file.look(start, &row.m_encoding, &row.m_length) == E_RCOk)
        return true;
    ZEL_REPORT(E_RCBadArgument, UNREADABLE);
    return false;
}

CZelRecord *CZelRecordCache::RRCCopyRecord(CZelAtom *handle) {
    SZelCachedRow row;
    askForOldest();
    if (!RRCLookAt(handle, row))
        return nullptr;
    askForItsValues();
    return RRCCopyOf(row);
}

CZelRecord *CZelRecordCache::RRCCopyOf(const SZelCachedRow &row) {
    if (row.m_record != nullptr)
        return new CZelRecord(*row.m_record);
    auto record = std::make_unique<CZelRecord>();
    if (record->ROMDecode(row.m_encoding, row.m_length) == E_RCOk)
        return record.release();
    ZEL_REPORT(E_RCBadArgument, UNREADABLE);
    return nullptr;
}

CZelRecord *CZelRecordCache::readFromDisk(const CZelCachedRecord &entry) {
    const unsigned char *encoding = nullptr;
    int length = 0;
    askForOldest();
    if (m_file.look(entry.RCRGetStartPos(), &encoding, &length) != E_RCOk)
        return nullptr;
    askForItsValues();
    auto record = std::make_unique<CZelRecord>();
    return record->ROMDecode(encoding, length) == E_RCOk ? record.release() : nullptr;
}

// The row is safe in memory before its pages are freed, so a failure of that only costs the pages.
void CZelRecordCache::bringIn(CZelCachedRecord &entry, CZelRecord *record, bool copy) {
    const long place = entry.RCRGetStartPos();
    setAtPage(place, NO_ROW);
    if (m_persistent == E_RBTrue) {
        entry.RCRSetPersistant(record, ZelBool(copy));
    } else {
        entry.RCRSetInCore(record, ZelBool(copy));
        static_cast<void>(m_file.release(place));  // reports
    }
    m_inCoreBytes += static_cast<unsigned long long>(entry.RCRSize());
    touch(entry);
    if (isBounded())
        m_inCore.add(&entry);
}

CZelAtom *CZelRecordCache::RRCRetrieveROMP(CZelAtom *handle) {
    const CZelCachedRecord *entry = entryOf(handle, E_RCNull);
    if (entry == nullptr)
        return nullptr;
    unsigned char *encoding = nullptr;
    int length = 0;
    if (entry->RCRIsRecordInCore() == E_RBTrue)
        entry->RCRGetRecord()->ROMEncode(&encoding, &length);
    else if (m_file.read(entry->RCRGetStartPos(), &encoding, &length) != E_RCOk)
        return nullptr;
    return new CZelAtom(encoding, length);
}
