// Builder and reader of ROMP, the packed form of a record: a flat sequence of name/value pairs that can be
// walked pair by pair, laid end to end, and read on a machine of any byte order. The layout is told at the
// head of the source.
#pragma once

#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class CZelAtom;
class CZelVarBind;

class QUINTOR_API CZelROMPer {
public:
    static constexpr int INITIAL_SIZE = 2048;  // what encoders of records pass
    static constexpr int MAX_DEPTH = 1000;     // of nested lists and objects, when reading

    explicit CZelROMPer(int initialSize);  // an empty packet for writing
    // Opens a packet for reading; it stays the caller's. The flag is E_RBTrue.
    CZelROMPer(unsigned char *data, int length, __boolean flag);
    CZelROMPer(const CZelROMPer &) = delete;
    CZelROMPer &operator=(const CZelROMPer &) = delete;
    virtual ~CZelROMPer();

    int RRAddAttrVal(const CZelAtom *name, const CZelAtom *value);  // 1, or E_RCBadArgument, E_RCBadValue (too long)
    int RRAppendFrom(const unsigned char *data, int length);        // an already packed block; 1 or a code
    int RRCreatedLength() const { return m_length; }                // bytes, appended blocks included
    int RRCopiedLength() const { return m_copied; }                 // bytes that came by RRAppendFrom
    unsigned char *RRPacket() const { return m_data; }
    unsigned char *RRTakePacket();  // detaches; from malloc unless opened for reading

    // The next pair as a new binding (or in `reuse`, when given), null at the end. *status is 1, or the code
    // of a damaged pair, which comes as a binding that means nothing; the walk goes on behind it.
    CZelVarBind *RRGetNextAttrVal(int *status, CZelVarBind *reuse);

private:
    unsigned char *m_data;
    int m_length;    // bytes in use
    int m_capacity;  // bytes allocated; 0 when reading
    int m_copied = 0;
    int m_position = 0;  // reading
    bool m_owned;
};
