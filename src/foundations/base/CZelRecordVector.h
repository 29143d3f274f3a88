// A growable array of records that it does not own; gaps hold null.
#pragma once

#include "foundations/port/ZelExport.h"

class CZelRecord;

class QUINTOR_API CZelRecordVector {
public:
    CZelRecordVector() = default;
    CZelRecordVector(const CZelRecordVector &other);
    CZelRecordVector &operator=(const CZelRecordVector &) = delete;
    virtual ~CZelRecordVector();

    CZelRecord *RRVGetValue(int position) const {  // null outside
        return position < 0 || position >= m_size ? nullptr : m_records[position];
    }
    CZelRecord *RRVGetValueFromEnd(int distance) const {  // 0 is the last; null outside
        return distance < 0 ? nullptr : RRVGetValue(m_size - 1 - distance);
    }
    CZelRecord *RRVGetLast() const { return RRVGetValueFromEnd(0); }
    void RRVSetValue(int position, CZelRecord *record);  // grows as needed; a negative position does nothing
    void RRVSetLast(CZelRecord *record);                 // nothing when empty
    void RRVAddToEnd(CZelRecord *record);
    void RRVAddToBeginning(CZelRecord *record);
    void RRVRemoveLast();
    void RRVRemoveFirst();
    void RRVRemovePos(int position);
    void RRVReset();  // size 0, slots zeroed, capacity kept
    int RRVSize() const { return m_size; }
    int RRVCapacity() const { return m_capacity; }
    void RRVPrint() const;

private:
    CZelRecord **RRVAllocateVector(int index);  // the array itself, or a larger zeroed one: 0, 10, 20, 40...
    void makeRoomFor(int index);

    CZelRecord **m_records = nullptr;
    int m_size = 0;
    int m_capacity = 0;
};
