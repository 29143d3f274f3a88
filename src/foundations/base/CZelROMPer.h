// Builder and reader of ROMP, the packed form of a record: a flat sequence of name/value pairs that can be
// walked pair by pair, laid end to end, and read on a machine of any byte order. The layout is told at the
// head of the source.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class CZelAtom;
class CZelVBList;
class CZelVarBind;

class QUINTOR_API CZelROMPer {
public:
    static constexpr int INITIAL_SIZE = 2048;  // what encoders of records pass
    static constexpr int MAX_DEPTH = 1000;     // of nested lists and objects, written and read

    explicit CZelROMPer(int initialSize);  // an empty packet for writing
    // Opens a packet for reading; it stays the caller's. The flag is E_RBTrue.
    CZelROMPer(unsigned char *data, int length, __boolean flag);
    CZelROMPer(const CZelROMPer &) = delete;
    CZelROMPer &operator=(const CZelROMPer &) = delete;
    virtual ~CZelROMPer();

    // Appends a pair; a null value is packed as no value. 1; E_RCBadArgument for a name that is no text, or a
    // packet opened for reading; E_RCBadValue for a value that is nested too deep or too long for a packet,
    // which is then as it was.
    int RRAddAttrVal(const CZelAtom *name, const CZelAtom *value);
    int RRAppendFrom(const unsigned char *data, int length);  // an already packed block; 1 or a code as above
    int RRAddPad();                                           // an entry that readers skip, for a record without pairs
    int RRCreatedLength() const { return m_length; }          // bytes, appended blocks included
    int RRCopiedLength() const { return m_copied; }           // bytes that came by RRAppendFrom
    unsigned char *RRPacket();                                // complete until the next addition

    // Detaches the packet, which comes from malloc and is as large as it is long; the builder is empty then.
    // A reader gives the pointer it was opened with.
    unsigned char *RRTakePacket();

    // The next pair as a new binding (or in `reuse`, when given), null at the end. *status, if given, is 1, or
    // E_RCBadValue for a damaged pair, which comes as a binding without name and value; the walk goes on behind
    // it. Where a damaged pair's end can't be told either, the walk goes on at the next place that holds a
    // pair's intact head.
    CZelVarBind *RRGetNextAttrVal(int *status, CZelVarBind *reuse);

    // All pairs that are left, good and damaged, at the end of a list: 1, or the code of the last damaged one.
    int RRGetRest(CZelVBList &pairs);

private:
    class Reader;
    class Writer;

    unsigned char *reserve(std::size_t size);
    void grow(std::size_t used, std::size_t needed);
    void seal();
    int read(CZelVBList &pairs, bool one);
    bool readIntact(Reader &reader, CZelVBList &pairs);
    bool checkOn();
    bool skipDamage();
    bool headAt(int position, std::uint32_t *size, std::uint32_t *check) const;
    void skipToHead();

    unsigned char *m_data;
    int m_length = 0;    // bytes in use
    int m_capacity = 0;  // bytes there are; 0 when reading
    int m_copied = 0;
    int m_sealed = 0;                      // bytes up to the first entry without checks
    int m_position = 0;                    // reading
    int m_intact = 0;                      // reading: bytes up to the first entry that is not known to be intact
    const CZelAtom *m_lastName = nullptr;  // read, if it is interned
    unsigned char m_small[INITIAL_SIZE];   // the packet, until it outgrows it
};
