// One row's entry in a record cache: where the row is now, and how recently it was used.
#pragma once

#include <cstdint>
#include <memory>

#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class CZelDoubleList;
class CZelRecord;

enum EZelCachedRecordType : int {
    E_CRTUninitialised = 1,
    E_CRTInCore = 2,
    E_CRTOnDisk = 3,
    E_CRTPersistent = 4  // has a chain in the file from the start and always; in memory too or not
};

class QUINTOR_API CZelCachedRecord {
public:
    CZelCachedRecord();  // of no row yet

    // `copy` here and below: holds a copy; otherwise takes the record over.
    CZelCachedRecord(CZelRecord *record, __boolean copy, __boolean persistent);
    CZelCachedRecord(long position, __boolean persistent);
    CZelCachedRecord(const CZelCachedRecord &) = delete;
    CZelCachedRecord(CZelCachedRecord &&other) noexcept;
    CZelCachedRecord &operator=(const CZelCachedRecord &) = delete;
    CZelCachedRecord &operator=(CZelCachedRecord &&other) noexcept;
    ~CZelCachedRecord();

    void RCRSetOnDisk(long position);                       // drops the record
    void RCRSetInCore(CZelRecord *record, __boolean copy);  // forgets the position
    void RCRSetPersistant(CZelRecord *record, __boolean copy, long position);
    void RCRSetPersistant(CZelRecord *record, __boolean copy);
    void RCRSetPersistant(long position);
    void RCRSetPersistant();  // drops the record; without a position E_RCBadArgument is reported

    __boolean RCRIsRecordOnDisk() const;
    __boolean RCRIsRecordInCore() const {
        return ZelBool(isOfType(E_CRTPersistent) ? m_record != nullptr : isOfType(E_CRTInCore));
    }
    void RCRRecordAccess();  // of a held record: one more access, now

    CZelRecord *RCRGetRecord() const { return m_record.get(); }
    CZelRecord *RCRGetCopiedRecord() const;  // new; null when none is held
    CZelDoubleList *RCRWrapRecord() const;   // its encoding as new CZelROMPWrapper; null for none

    // Of no row yet: becomes that of a row which lies in the file only. As constructed with the position, in less time.
    void RCRSetFound(int position, int size, unsigned long long arrival, __boolean persistent) {
        m_startPos = position;
        m_size = size;
        m_arrival = arrival & (~0ULL >> 3);
        m_type = persistent == E_RBTrue ? E_CRTPersistent : E_CRTOnDisk;
    }

    EZelCachedRecordType RCRGetRecordType() const { return static_cast<EZelCachedRecordType>(m_type); }
    long RCRGetRefCount() const { return m_refCount; }
    long RCRGetLastAccess() const { return m_lastAccess; }  // seconds
    long RCRGetStartPos() const { return m_startPos; }      // -1: no chain

    // Of the chain, as CZelPageFile::write gave it; 0: not known.
    unsigned long long RCRStamp() const { return m_stamp; }
    void RCRSetStamp(unsigned long long stamp) { m_stamp = stamp; }

    // Bytes of the record's encoding, kept by the cache; and the order in which records came.
    int RCRSize() const { return m_size; }
    void RCRSetSize(int bytes) { m_size = bytes; }
    unsigned long long RCRArrival() const { return m_arrival; }
    void RCRSetArrival(unsigned long long arrival) { m_arrival = arrival & (~0ULL >> 3); }

    // Where it stands among the records in memory; CZelEvictionHeap's.
    static constexpr unsigned int NO_PLACE = 0xFFFFFFFFU;
    unsigned int RCRHeapPlace() const { return m_heapPlace; }
    void RCRSetHeapPlace(unsigned int place) { m_heapPlace = place; }

    // What gives the seconds, for tests; null for the system's time. Set while no cache is at work.
    using Clock = long (*)();
    static void RCRSetClock(Clock clock);

private:
    bool isOfType(EZelCachedRecordType type) const { return m_type == static_cast<std::uint64_t>(type); }
    void RCRSetType(EZelCachedRecordType type);  // a persistent record stays one
    void hold(CZelRecord *record, __boolean copy);

    // 48 bytes, so that an entry shares a cache line with its handle.
    std::unique_ptr<CZelRecord> m_record;
    unsigned long long m_stamp = 0;
    std::uint64_t m_arrival : 61 = 0;
    std::uint64_t m_type : 3 = E_CRTUninitialised;
    long m_lastAccess = -1;
    int m_refCount = -1;  // goes no further than its type does
    int m_startPos = -1;
    int m_size = 0;
    unsigned int m_heapPlace = NO_PLACE;
};
