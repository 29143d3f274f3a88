// A growable array of records that it does not own; gaps hold null. The first ten places lie in the object.
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
    void RRVSetValue(int position, CZelRecord *record) {  // grows as needed; a negative position does nothing
        if (position < 0)
            return;
        makeRoomFor(position);
        m_records[position] = record;
        m_size = position < m_size ? m_size : position + 1;
    }
    void RRVSetLast(CZelRecord *record);  // nothing when empty
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
    static constexpr int FIRST_CAPACITY = 10;

    CZelRecord **RRVAllocateVector(int index);  // the array itself, or a larger zeroed one: 0, 10, 20, 40...
    void makeRoomFor(int index) {
        if (index >= m_capacity)
            moveTo(RRVAllocateVector(index));
    }
    void moveTo(CZelRecord **records);
    void freeArray();

    CZelRecord **m_records = nullptr;  // m_first, or from malloc
    int m_size = 0;
    int m_capacity = 0;
    CZelRecord *m_first[FIRST_CAPACITY];  // set when it becomes the array
};
