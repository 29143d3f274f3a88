// One row of a joined query: a record per table, by the table's identifier. It owns neither the records nor the
// identifiers.
//
// The entries lie in a small array in the order of their identifiers, so that a copy is one allocation at most
// and a value is found by a few comparisons of pointers.
#pragma once

#include <cstddef>

#include "foundations/base/CZelPool.h"
#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class CZelAtom;
class CZelBag;
class CZelDoubleList;
class CZelRecord;
class CZelTreeList;

// What a tuple holds of one table, and what RTScanRecords puts behind its pointers (from malloc).
struct SZelTupleEntry {
    const CZelAtom *m_table;
    CZelRecord *m_record;
};

class QUINTOR_API CZelTuple {
public:
    ZEL_POOLED

    CZelTuple(const CZelAtom *table, CZelRecord *record);          // a null record is reported (E_RCBadArgument)
    CZelTuple(const CZelTuple &other);                             // the same records; without its encoded form
    CZelTuple(const SZelTupleEntry *entries, std::size_t length);  // tables once each, in the order of identifiers
    CZelTuple &operator=(const CZelTuple &) = delete;
    virtual ~CZelTuple();

    // The encoded form of the whole tuple stays the tuple's; 0 and null until it is made.
    virtual int ROMLength();
    // The values of a bag of CZelDbEntity, built anew. A table that the tuple lacks is reported (E_RCNotFound).
    virtual unsigned char *ROMEncode(CZelBag *entities);
    virtual unsigned char *ROMEncode();
    virtual int ROMDecode(unsigned char *block, int length);  // a tuple is not decoded: nothing, 1

    // 1; E_RCBadArgument for a null record, E_RCDuplicate for a table that is there; both leave the tuple alone.
    int RTAddRecord(const CZelAtom *table, CZelRecord *record);

    // The value of a column, or of what `colSpec` names below it; null when the tuple has no such table or value.
    const CZelAtom *RTValueOf(const CZelAtom *table, const CZelAtom *column) const;
    const CZelAtom *RTValueOf(const char *table, const CZelAtom *column) const;
    const CZelAtom *RTValueOf(const CZelAtom *table, const CZelAtom *column, CZelDoubleList *colSpec) const;
    const CZelAtom *RTValueOf(const char *table, const CZelAtom *column, CZelDoubleList *colSpec) const;
    // *found: does the tuple have a record of that table? *value is set only then, to null for no value.
    void RTValueOf(const char *table, const CZelAtom *column, const CZelAtom **value, __boolean *found) const;
    void RTValueOf(const char *table, const CZelAtom *column, CZelDoubleList *colSpec, const CZelAtom **value,
                   __boolean *found) const;

    CZelRecord *RTRecordOf(const CZelAtom *table) const;  // null when the tuple has none
    CZelRecord *RTRecordOf(const char *table) const;
    const SZelTupleEntry *RTEntryOf(const char *table) const { return find(table); }

    // Records by address: key a long atom of the address, entry a CZelPointer to an SZelTupleEntry from malloc.
    void RTScanRecords(CZelTreeList *records) const;
    void RTEliminateRecordsFromList(CZelTreeList *records) const;  // entries of the tuple's records become null

    // Encode, hand the block (from malloc) to the caller and forget it.
    unsigned char *RRTakeROMP(int &length);
    unsigned char *RRTakeROMP(int &length, CZelBag *entities);

    // A new record of all values of all tables; and one of the values of a bag of CZelDbEntity. They hold what
    // decoding the encoded forms would give.
    CZelRecord *RTRecord() const;
    CZelRecord *RTRecord(CZelBag *entities) const;

    void RTPrint() const;

    std::size_t RTLength() const { return m_length; }
    const SZelTupleEntry *RTEntries() const { return m_entries; }

private:
    static constexpr std::size_t FEW = 4;

    const SZelTupleEntry *find(const char *table) const;
    const SZelTupleEntry *find(const CZelAtom *table) const;
    void grow();
    void forgetBlock();

    SZelTupleEntry *m_entries = m_few;
    std::size_t m_length = 0;
    std::size_t m_capacity = FEW;
    SZelTupleEntry m_few[FEW];
    unsigned char *m_block = nullptr;  // from malloc
    int m_blockLength = 0;
};
