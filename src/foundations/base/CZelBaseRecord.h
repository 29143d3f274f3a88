// A named set of values in order. It can stand in a CZelDoubleList itself.
#pragma once

#include <iosfwd>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelListable.h"
#include "foundations/base/CZelVBList.h"

class CZelAtomVector;
class CZelROMPer;
class CZelStack;

class QUINTOR_API CZelBaseRecord : public CZelListable {
public:
    CZelBaseRecord() = default;
    explicit CZelBaseRecord(const CZelVBList *values);  // copies the list
    explicit CZelBaseRecord(CZelVBList *values);        // takes it over
    CZelBaseRecord(const CZelBaseRecord &other);        // deep
    CZelBaseRecord &operator=(const CZelBaseRecord &) = delete;
    CZelListable *RLTargetDeepCopy(const CZelListable *source) const override;

    // Adding never looks for the name: look-ups give the first of two equal names. The CZelAtom** forms own
    // the atom from the call on, also on failure, and clear the pointer. Results: 1 or a code
    // (E_RCBadArgument for a null name or binding, E_RCNotFound when there is nothing to replace).
    int RRAddValue(const char *name, const char *value);
    int RRAddValue(const char *name, CZelAtom **value);
    int RRAddValue(const CZelAtom *name, CZelAtom **value);
    int RRAddValue(CZelVarBind *binding);
    int RRSetValueOf(const CZelAtom *name, const CZelAtom *value);
    int RRSetValueOf(const CZelAtom *name, CZelAtom **value);
    int RRAddOrSetValue(const char *name, int value);
    int RRAddOrSetValue(const CZelAtom *name, const CZelAtom *value);
    int RRDeleteValueOf(const CZelAtom &name);  // 1 or E_RCNotFound

    // Writes a copy below a name; null writes an undefined value. Keys as in RRValueOfNested, left on their
    // stack. Missing steps are made (a text key an object, an int key a list); all sets every element, any the
    // first, next appends; all and any make an element in an empty list. E_RCBadValue for a list index above
    // one million, a selector that is none, or more keys than CZelAtom::MAX_NESTING; E_RCBadType for a key
    // that is neither text nor integer or a step into a value of another kind; then nothing has changed,
    // except that with all the elements that could be written are.
    int RRAddOrSetValueNested(const CZelAtom &name, CZelStack &keys, const CZelAtom *value);

    // The value of a name, owned by the record; null when absent.
    const CZelAtom *RRValueOf(const CZelAtom *name) const;
    const CZelAtom *RRValueOf(const char *name) const;
    CZelVarBind *RRValuePairOf(const CZelAtom *name) const;

    // Nested look-ups: a path of keys from the record down. Null when a step is missing. A text key selects
    // a member of an object, an int key an element of a list; all or any read the first element, next null.
    const CZelAtom *RRValueOf(const CZelAtomVector &path) const;
    const CZelAtom *RRValueOf(const char *name, const CZelAtomVector &path) const;

    // One step of a nested look-up: the value under a key, or null.
    static const CZelAtom *RRStep(const CZelAtom *value, const CZelAtom &key);

    const CZelVBList *RRVbIterator() const { return &m_values; }
    CZelVBList *RRTakeValues();        // detaches: the caller owns the list, the record is empty
    CZelAtom *RRRecordAsAtom() const;  // a new object atom of copies

    // All values in the packed form; *data comes from malloc and is the caller's.
    void ROMEncode(unsigned char **data, int *length) const;
    // The same into a builder that is empty. 1, or the code of the last value that is missing in it, reported.
    int ROMEncode(CZelROMPer &packet) const;

    void RRPrint() const;  // to standard output, "name=value" and a line feed for each pair

protected:
    // Keys from the bottom up: the first key leads one level into the value of `name`, the top key reaches
    // the result. *leaf, if given, gets the result too. An empty stack reads the name itself.
    const CZelAtom *RRValueOfNested(const CZelAtom &name, CZelStack &keys, const CZelAtom **leaf) const;
    int RRInitFromVarList(CZelVBList *values);  // takes the list as the record's contents; 1 or E_RCBadArgument

    CZelVBList m_values;

private:
    const CZelAtom *nameBehindLast(const char *name) const;
    static void discard(CZelAtom **value);
    static const CZelAtom *descend(const CZelAtom *value, const CZelAtomVector &path, unsigned int first);
};

QUINTOR_API std::ostream &operator<<(std::ostream &out, const CZelBaseRecord *record);
