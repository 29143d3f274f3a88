// A plain row: a named set of values that a table can own.
#pragma once

#include "foundations/base/CZelBaseRecord.h"

class CZelBag;
class CZelDoubleList;
class CZelPointer;

class QUINTOR_API CZelRecord : public CZelBaseRecord {
public:
    ZEL_POOLED

    CZelRecord() = default;
    explicit CZelRecord(const CZelVBList *values) : CZelBaseRecord(values) {}
    explicit CZelRecord(CZelVBList *values) : CZelBaseRecord(values) {}
    CZelRecord(const CZelRecord &) = default;
    ~CZelRecord() override;

    // A new plain CZelRecord that copies this one, whatever its class; the argument is not read.
    CZelListable *RLTargetDeepCopy(const CZelListable *source) const override;

    // Bracket reads and writes of a row that others may hold; nothing to do for a plain row.
    virtual void BeginRead();
    virtual void EndRead();
    virtual void BeginWrite();
    virtual void EndWrite();

    // A table takes the row, and gives it up. A plain row is deleted when given up.
    virtual void UsedByDatabase();
    virtual void DroppedFromDatabase();

    // Fills the record from a packed block, which stays the caller's. Any damage leaves the record empty:
    // the last bad pair's code is reported and returned. Null data: E_RCBadArgument, record untouched.
    int ROMDecode(const unsigned char *data, int length);
    bool ROMTryDecode(const unsigned char *data, int length);  // the same with nothing reported: was it whole?
    int RRConsumeAndDecode(unsigned char *data, int length);   // frees the block with free

    // Takes the data atom from the pointer and decodes it. 1 for an empty pointer or an atom without a block;
    // E_RCBadType, nothing changed, for an atom of another type.
    int RRConsumeAndDecode(CZelPointer &pointer);

    // --- through column specifications: lists of CZelExpr keys; defined beside the expressions ---

    // The value below a name; a null name gives null, a null specification reads the name itself.
    const CZelAtom *RRValueOfExprList(const CZelAtom *name, const CZelDoubleList *colSpec) const;
    int RRAddOrSetValueExprList(const CZelAtom &name, CZelDoubleList *colSpec, const CZelAtom *value);

    // Packs only the columns of a bag of CZelDbEntity; a nested column is named by its last key.
    void ROMEncodeSubSet(unsigned char **data, int *length, CZelBag *columns) const;

private:
    void discardDamaged(int status);
    static void RRSubKeysFromExprs(const CZelDoubleList *colSpec, CZelStack &keys);
};
