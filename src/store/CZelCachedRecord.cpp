#include "store/CZelCachedRecord.h"

#include <climits>
#include <ctime>

#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelROMPWrapper.h"
#include "foundations/base/CZelROMPer.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/port/CZelError.h"

namespace {

long systemTime() {
    return static_cast<long>(std::time(nullptr));
}

CZelCachedRecord::Clock presentTime = systemTime;

}  // namespace

CZelCachedRecord::CZelCachedRecord() = default;
CZelCachedRecord::CZelCachedRecord(CZelCachedRecord &&other) noexcept = default;
CZelCachedRecord &CZelCachedRecord::operator=(CZelCachedRecord &&other) noexcept = default;
CZelCachedRecord::~CZelCachedRecord() = default;

CZelCachedRecord::CZelCachedRecord(CZelRecord *record, __boolean copy, __boolean persistent)
    : m_type(static_cast<std::uint64_t>(persistent == E_RBTrue ? E_CRTPersistent : E_CRTInCore)) {
    hold(record, copy);
}

CZelCachedRecord::CZelCachedRecord(long position, __boolean persistent)
    : m_type(static_cast<std::uint64_t>(persistent == E_RBTrue ? E_CRTPersistent : E_CRTOnDisk)),
      m_startPos(static_cast<int>(position)) {}

void CZelCachedRecord::RCRSetClock(Clock clock) {
    presentTime = clock != nullptr ? clock : systemTime;
}

void CZelCachedRecord::RCRSetType(EZelCachedRecordType type) {
    if (!isOfType(E_CRTPersistent))
        m_type = static_cast<std::uint64_t>(type);
}

void CZelCachedRecord::hold(CZelRecord *record, __boolean copy) {
    CZelRecord *held = copy == E_RBTrue && record != nullptr ? new CZelRecord(*record) : record;
    if (held != m_record.get())
        m_record.reset(held);
}

void CZelCachedRecord::RCRSetOnDisk(long position) {
    hold(nullptr, E_RBFalse);
    RCRSetType(E_CRTOnDisk);
    m_refCount = -1;
    m_lastAccess = -1;
    m_startPos = static_cast<int>(position);
}

void CZelCachedRecord::RCRSetInCore(CZelRecord *record, __boolean copy) {
    hold(record, copy);
    RCRSetType(E_CRTInCore);
    m_refCount = 0;
    m_lastAccess = 0;
    m_startPos = -1;
}

void CZelCachedRecord::RCRSetPersistant(CZelRecord *record, __boolean copy, long position) {
    hold(record, copy);
    RCRSetPersistant(position);
}

void CZelCachedRecord::RCRSetPersistant(CZelRecord *record, __boolean copy) {
    hold(record, copy);
}

void CZelCachedRecord::RCRSetPersistant(long position) {
    m_type = static_cast<std::uint64_t>(E_CRTPersistent);
    m_refCount = 0;
    m_lastAccess = 0;
    m_startPos = static_cast<int>(position);
}

void CZelCachedRecord::RCRSetPersistant() {
    hold(nullptr, E_RBFalse);
    m_refCount = -1;
    m_lastAccess = -1;
    if (m_startPos == -1)
        ZEL_REPORT(E_RCBadArgument, "CZelCachedRecord::RCRSetPersistant: the record has no place in the file");
}

__boolean CZelCachedRecord::RCRIsRecordOnDisk() const {
    return ZelBool(isOfType(E_CRTPersistent) ? m_startPos >= 0 : isOfType(E_CRTOnDisk));
}

void CZelCachedRecord::RCRRecordAccess() {
    if (m_record == nullptr)
        return;
    m_refCount += static_cast<int>(m_refCount < INT_MAX);
    m_lastAccess = presentTime();
}

CZelRecord *CZelCachedRecord::RCRGetCopiedRecord() const {
    return m_record != nullptr ? new CZelRecord(*m_record) : nullptr;
}

CZelDoubleList *CZelCachedRecord::RCRWrapRecord() const {
    if (m_record == nullptr)
        return nullptr;
    CZelROMPer packet(CZelROMPer::INITIAL_SIZE);
    static_cast<void>(m_record->ROMEncode(packet));  // reports what it can't pack
    const unsigned char *encoding = packet.RRPacket();
    const int length = packet.RRCreatedLength();
    CZelDoubleList *pages = new CZelDoubleList;
    for (int offset = 0; offset < length;) {
        CZelROMPWrapper *page = new CZelROMPWrapper(encoding, length, offset);
        page->RRWSetIsFirstPkt(ZelBool(offset == 0));
        pages->RDLAddToListEnd(page);
        offset += page->RRWGetDataLen();
    }
    return pages;
}
