#include "store/CZelTuple.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"

namespace {

bool isNamed(const SZelTupleEntry &entry, const CZelAtom &table) {
    return entry.m_table == &table || entry.m_table->RASameText(table);
}

CZelAtom addressOf(const CZelRecord *record) {
    return CZelAtom(static_cast<long>(reinterpret_cast<std::intptr_t>(record)));
}

SZelTupleEntry *copyOf(const SZelTupleEntry &entry) {
    auto *copy = static_cast<SZelTupleEntry *>(std::malloc(sizeof(SZelTupleEntry)));
    *copy = entry;
    return copy;
}

}  // namespace

CZelTuple::CZelTuple(const CZelAtom *table, CZelRecord *record) {
    RTAddRecord(table, record);
}

CZelTuple::CZelTuple(const CZelTuple &other) : CZelTuple(other.m_entries, other.m_length) {}

CZelTuple::CZelTuple(const SZelTupleEntry *entries, std::size_t length) : m_length(length) {
    if (length > FEW) {
        m_entries = new SZelTupleEntry[length];
        m_capacity = length;
    }
    std::copy_n(entries, length, m_entries);
}

CZelTuple::~CZelTuple() {
    forgetBlock();
    if (m_entries != m_few)
        delete[] m_entries;
}

int CZelTuple::RTAddRecord(const CZelAtom *table, CZelRecord *record) {
    if (record == nullptr || table == nullptr)
        return ZEL_FAIL(E_RCBadArgument, "CZelTuple::RTAddRecord: no record or no table");
    if (find(table) != nullptr)
        return E_RCDuplicate;
    if (m_length == m_capacity)
        grow();
    SZelTupleEntry *place = std::upper_bound(
        m_entries, m_entries + m_length, table,
        [](const CZelAtom *name, const SZelTupleEntry &entry) { return CZelAtom::RACompare(name, entry.m_table) < 0; });
    std::copy_backward(place, m_entries + m_length, m_entries + m_length + 1);
    *place = {table, record};
    ++m_length;
    forgetBlock();
    return 1;
}

void CZelTuple::grow() {
    auto *larger = new SZelTupleEntry[2 * m_capacity];
    std::copy_n(m_entries, m_length, larger);
    if (m_entries != m_few)
        delete[] m_entries;
    m_entries = larger;
    m_capacity *= 2;
}

const SZelTupleEntry *CZelTuple::find(const CZelAtom *table) const {
    for (std::size_t i = 0; table != nullptr && i < m_length; ++i) {
        if (isNamed(m_entries[i], *table))
            return &m_entries[i];
    }
    return nullptr;
}

const SZelTupleEntry *CZelTuple::find(const char *table) const {
    for (std::size_t i = 0; table != nullptr && i < m_length; ++i) {
        if (m_entries[i].m_table->RATextView() == table)
            return &m_entries[i];
    }
    return nullptr;
}

CZelRecord *CZelTuple::RTRecordOf(const CZelAtom *table) const {
    const SZelTupleEntry *entry = find(table);
    return entry != nullptr ? entry->m_record : nullptr;
}

CZelRecord *CZelTuple::RTRecordOf(const char *table) const {
    const SZelTupleEntry *entry = find(table);
    return entry != nullptr ? entry->m_record : nullptr;
}

const CZelAtom *CZelTuple::RTValueOf(const CZelAtom *table, const CZelAtom *column) const {
    const CZelRecord *record = RTRecordOf(table);
    return record != nullptr && column != nullptr ? record->RRValueOf(column) : nullptr;
}

const CZelAtom *CZelTuple::RTValueOf(const char *table, const CZelAtom *column) const {
    const CZelRecord *record = RTRecordOf(table);
    return record != nullptr && column != nullptr ? record->RRValueOf(column) : nullptr;
}

const CZelAtom *CZelTuple::RTValueOf(const CZelAtom *table, const CZelAtom *column, CZelDoubleList *colSpec) const {
    const CZelRecord *record = RTRecordOf(table);
    return record != nullptr ? record->RRValueOfExprList(column, colSpec) : nullptr;
}

const CZelAtom *CZelTuple::RTValueOf(const char *table, const CZelAtom *column, CZelDoubleList *colSpec) const {
    const CZelRecord *record = RTRecordOf(table);
    return record != nullptr ? record->RRValueOfExprList(column, colSpec) : nullptr;
}

void CZelTuple::RTValueOf(const char *table, const CZelAtom *column, const CZelAtom **value, __boolean *found) const {
    RTValueOf(table, column, nullptr, value, found);
}

void CZelTuple::RTValueOf(const char *table, const CZelAtom *column, CZelDoubleList *colSpec, const CZelAtom **value,
                          __boolean *found) const {
    const CZelRecord *record = RTRecordOf(table);
    *found = ZelBool(record != nullptr);
    if (record != nullptr)
        *value = record->RRValueOfExprList(column, colSpec);
}

void CZelTuple::RTScanRecords(CZelTreeList *records) const {
    for (std::size_t i = 0; records != nullptr && i < m_length; ++i) {
        const CZelAtom address = addressOf(m_entries[i].m_record);
        if (records->RTLGet(&address) == nullptr)
            records->RTLAdd(&address, static_cast<void *>(copyOf(m_entries[i])), true);
    }
}

void CZelTuple::RTEliminateRecordsFromList(CZelTreeList *records) const {
    if (records == nullptr) {
        ZEL_REPORT(E_RCBadArgument, "CZelTuple::RTEliminateRecordsFromList: no records");
        return;
    }
    for (std::size_t i = 0; i < m_length; ++i) {
        const CZelAtom address = addressOf(m_entries[i].m_record);
        CZelPointer *node = records->RTLGet(&address);
        if (node != nullptr)
            node->RPSetData(nullptr);
    }
}

void CZelTuple::RTPrint() const {
    std::puts("CZelTuple begin");
    for (std::size_t i = 0; i < m_length; ++i) {
        std::printf("S_TableId %s\nS_Record ", m_entries[i].m_table->RAString());
        m_entries[i].m_record->RRPrint();
        std::puts("");
    }
    std::puts("CZelTuple end");
}
