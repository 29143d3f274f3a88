#include "foundations/base/CZelRecordVector.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <iostream>

#include "foundations/base/CZelRecord.h"
#include "foundations/base/ZelMalloc.h"

namespace {

CZelRecord **newArray(int capacity) {
    constexpr std::size_t SLOT = sizeof(void *);
    CZelRecord **records = static_cast<CZelRecord **>(ZelMalloc(static_cast<std::size_t>(capacity) * SLOT));
    std::fill_n(records, capacity, nullptr);
    return records;
}

}  // namespace

CZelRecordVector::CZelRecordVector(const CZelRecordVector &other) {
    if (other.m_size == 0)
        return;
    makeRoomFor(other.m_size - 1);
    m_size = other.m_size;
    std::copy_n(other.m_records, m_size, m_records);
}

CZelRecordVector::~CZelRecordVector() {
    freeArray();
}

void CZelRecordVector::RRVSetLast(CZelRecord *record) {
    if (m_size != 0)
        m_records[m_size - 1] = record;
}

void CZelRecordVector::RRVAddToEnd(CZelRecord *record) {
    RRVSetValue(m_size, record);
}

void CZelRecordVector::RRVAddToBeginning(CZelRecord *record) {
    makeRoomFor(m_size);
    std::copy_backward(m_records, m_records + m_size, m_records + m_size + 1);
    m_records[0] = record;
    ++m_size;
}

void CZelRecordVector::RRVRemoveLast() {
    RRVRemovePos(m_size - 1);
}

void CZelRecordVector::RRVRemoveFirst() {
    RRVRemovePos(0);
}

void CZelRecordVector::RRVRemovePos(int position) {
    if (position < 0 || position >= m_size)
        return;
    std::copy(m_records + position + 1, m_records + m_size, m_records + position);
    m_records[--m_size] = nullptr;
}

void CZelRecordVector::RRVReset() {
    std::fill_n(m_records, m_capacity, nullptr);
    m_size = 0;
}

void CZelRecordVector::RRVPrint() const {
    for (int i = 0; i < m_size; ++i) {
        std::cout << "Record " << i << ":\n";
        if (m_records[i] != nullptr)
            m_records[i]->RRPrint();
        else
            std::cout << "<NULL>\n";
        std::cout << '\n';
    }
}

CZelRecord **CZelRecordVector::RRVAllocateVector(int index) {
    if (index < m_capacity)
        return m_records;
    if (m_capacity == 0 && index < FIRST_CAPACITY) {
        m_capacity = FIRST_CAPACITY;
        std::fill_n(m_first, FIRST_CAPACITY, nullptr);
        return m_first;
    }
    long long capacity = m_capacity == 0 ? FIRST_CAPACITY : m_capacity;
    while (capacity <= index)
        capacity *= 2;
    m_capacity = static_cast<int>(std::min<long long>(capacity, INT_MAX));
    return newArray(m_capacity);
}

void CZelRecordVector::moveTo(CZelRecord **records) {
    std::copy_n(m_records, m_size, records);
    freeArray();
    m_records = records;
}

void CZelRecordVector::freeArray() {
    if (m_records != m_first)
        std::free(m_records);
}
